#pragma once

#include "app/session/recording_questions.h"

#include <QCoreApplication>
#include <QList>
#include <QPointer>

#include <memory>

class QFileDialog;

namespace vornic {

class AlertBox;
class Countdown;
struct MainWindowLink;

/// Panels, sheets and message boxes on the main window.
///
/// Owned by WindowFrontEnd, whose link to the main window it borrows; main thread only.
class WindowQuestions final : public RecordingQuestions
{
    Q_DECLARE_TR_FUNCTIONS(vornic::WindowQuestions)
public:
    explicit WindowQuestions(const MainWindowLink &main);
    ~WindowQuestions();
    WindowQuestions(const WindowQuestions &) = delete;
    WindowQuestions &operator=(const WindowQuestions &) = delete;

    void askAboutFreeSpace(std::function<void(bool goOn)> answer) override;
    void runSavePanel(const QString &name,
                      const QString &type,
                      std::function<void(std::optional<QString> path)> answer) override;
    /// The same with \a proposed as the movie's file, whose folder is there.
    void runSavePanelFor(const QString &proposed, std::function<void(std::optional<QString> path)> answer);
    void askToRecordWithoutSound(std::function<void(bool goOn)> answer) override;
    void showHint(std::function<void(int response)> answer) override;
    [[nodiscard]] QString parentWindow() const override;
    void countDown(std::function<void(bool goOn)> answer) override;
    /// Whether it is counted down now.
    [[nodiscard]] bool isCountingDown() const { return m_countdown != nullptr; }
    void cancelCountdown();
    void askForOtherFile(const QString &type,
                         std::function<void(std::optional<QString> path)> answer) override;
    [[nodiscard]] bool confirmQuit(const QString &message, const QString &informativeText) override;
    void alert(const QString &message, const QString &informativeText) override;
    void alertError(const QString &sentence) override;

    /// Answers what a recording asks or tells now as if it had been left: the boxes, and the save panel.
    void dismiss();
    /// Nothing is asked: what stands, if anything does, only tells something.
    [[nodiscard]] bool onlyTells() const;
    /// Takes as read what only tells something, and calls \a next once whoever told it has gone on.
    void dismissTold(std::function<void()> next);
    /// From here on nobody answers: the same, and all that comes then is answered so at once, and logged.
    void end();

private:
    /// The answer to \a box; that of leaving it where nobody answers. \a sentence is logged then.
    [[nodiscard]] int answerTo(AlertBox &box, const QString &sentence);
    void goOnBehindTold();
    void openSavePanel(const QString &folder,
                       const QString &name,
                       const QString &type,
                       std::function<void(std::optional<QString> path)> answer);

    const MainWindowLink &m_main;
    std::unique_ptr<Countdown> m_countdown; ///< null but while it is counted down
    QList<QPointer<AlertBox>> m_boxes;      ///< that stand, one above the other
    std::function<void()> m_behindTold;     ///< empty but while boxes that were dismissed are left
    QPointer<QFileDialog> m_savePanel;
    bool m_isPanelToCome = false; ///< it is told what was wrong with a file, and another is asked for then
    bool m_hasEnded = false;      ///< nobody answers any more
};

} // namespace vornic
