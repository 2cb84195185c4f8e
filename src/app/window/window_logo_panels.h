#pragma once

#include "app/session/logo_panels.h"

#include <QCoreApplication>
#include <QPointer>

class QFontDialog;

namespace vornic {

struct MainWindowLink;

/// The panels of the logo's picture and font.
///
/// Owned by WindowFrontEnd, whose link to the main window it borrows; main thread only.
class WindowLogoPanels final : public LogoPanels
{
    Q_DECLARE_TR_FUNCTIONS(vornic::WindowLogoPanels)
public:
    explicit WindowLogoPanels(const MainWindowLink &main);

    void chooseLogoImage(std::function<void(std::optional<QString> path)> answer) override;
    void orderFrontFontPanel(const QFont &selected, std::function<void(const QFont &font)> changed) override;

private:
    const MainWindowLink &m_main;
    QPointer<QFontDialog> m_fontPanel; ///< null while it is closed
};

} // namespace vornic
