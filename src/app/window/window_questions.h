#pragma once

#include "app/session/recording_questions.h"

#include <QCoreApplication>

namespace vornic {

struct MainWindowLink;

/// Panels, sheets and message boxes on the main window.
///
/// Owned by WindowFrontEnd, whose link to the main window it borrows; main thread only.
class WindowQuestions final : public RecordingQuestions
{
    Q_DECLARE_TR_FUNCTIONS(vornic::WindowQuestions)
public:
    explicit WindowQuestions(const MainWindowLink &main);

    void askAboutFreeSpace(std::function<void(bool goOn)> answer) override;
    void runSavePanel(const QString &name,
                      const QString &type,
                      std::function<void(std::optional<QString> path)> answer) override;
    void showHint(std::function<void(int response)> answer) override;
    void askForOtherFile(const QString &type,
                         std::function<void(std::optional<QString> path)> answer) override;
    [[nodiscard]] bool confirmQuit(const QString &message, const QString &informativeText) override;
    void alert(const QString &message, const QString &informativeText) override;
    void alertError(const QString &sentence) override;

private:
    const MainWindowLink &m_main;
    QString m_movieFolder; ///< where the last movie was put; first the user's folder for movies
};

} // namespace vornic
