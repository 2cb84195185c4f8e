#include "app/window/window_logo_panels.h"

#include "app/window/file_panel.h"
#include "app/window/main_window_link.h"
#include "controls/beside_window.h"
#include "controls/dialog_skin.h"
#include "controls/image_panel.h"

#include <QFontDialog>

#include <utility>

namespace vornic {

WindowLogoPanels::WindowLogoPanels(const MainWindowLink &main)
    : m_main(main)
{
}

void WindowLogoPanels::chooseLogoImage(std::function<void(std::optional<QString>)> answer)
{
    runFilePanel(*new ImagePanel(m_main.visible(), tr("Choose the logo's picture")), std::move(answer));
}

void WindowLogoPanels::orderFrontFontPanel(const QFont &selected, std::function<void(const QFont &)> changed)
{
    if (!m_fontPanel) {
        m_fontPanel = new QFontDialog(m_main.visible());
        m_fontPanel->setAttribute(Qt::WA_DeleteOnClose);
        m_fontPanel->setOptions(QFontDialog::DontUseNativeDialog | QFontDialog::NoButtons);
        m_fontPanel->setWindowTitle(tr("The logo's font"));
        m_fontPanel->setCurrentFont(selected);
        addCloseButton(*m_fontPanel);
        dressDialog(*m_fontPanel);
        if (const QWidget *window = m_main.visible())
            placeBeside(*m_fontPanel, *window);
        QObject::connect(m_fontPanel, &QFontDialog::currentFontChanged, m_fontPanel, std::move(changed));
    }
    m_fontPanel->show();
    m_fontPanel->raise();
    m_fontPanel->activateWindow();
}

} // namespace vornic
