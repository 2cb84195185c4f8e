#include "app/window/window_questions.h"

#include "app/session/output_check.h"
#include "app/session/start_settings.h"
#include "app/window/VNAlertFreeSpace.h"
#include "app/window/VNHintWndCtroller.h"
#include "app/window/alert_box.h"
#include "app/window/countdown.h"
#include "app/window/file_panel.h"
#include "app/window/main_window_link.h"
#include "app/window/movie_folder.h"
#include "app/window/portal_window.h"
#include "app/window/save_panel.h"
#include "base/log.h"
#include "controls/dialog_skin.h"

#include <QApplication>
#include <QFileInfo>

#include <algorithm>
#include <utility>

namespace vornic {

WindowQuestions::WindowQuestions(const MainWindowLink &main)
    : m_main(main)
{
}

WindowQuestions::~WindowQuestions() = default;

void WindowQuestions::askAboutFreeSpace(std::function<void(bool)> answer)
{
    VNAlertFreeSpace::shareAlertFreeSpace().beginSheetForWindow(m_main.visible(), std::move(answer));
}

void WindowQuestions::runSavePanel(const QString &name,
                                   const QString &type,
                                   std::function<void(std::optional<QString>)> answer)
{
    const QString folder = movie_folder::current();
    openSavePanel(folder,
                  movie_folder::unusedName(folder, name.isEmpty() ? tr("Untitled") : name, type),
                  type,
                  std::move(answer));
}

void WindowQuestions::runSavePanelFor(const QString &proposed,
                                      std::function<void(std::optional<QString>)> answer)
{
    const QFileInfo file(proposed);
    openSavePanel(file.absolutePath(), file.completeBaseName(), file.suffix(), std::move(answer));
}

void WindowQuestions::openSavePanel(const QString &folder,
                                    const QString &name,
                                    const QString &type,
                                    std::function<void(std::optional<QString>)> answer)
{
    if (m_hasEnded) {
        answer(std::nullopt);
        return;
    }
    auto *panel = new SavePanel(m_main.visible(), type);
    panel->setWindowTitle(tr("Save the recording as"));
    panel->setNameFilter(tr("Movies (*.%1)").arg(type));
    panel->setDirectory(folder);
    panel->selectFile(name);
    dressDialog(*panel);
    m_savePanel = panel;
    runFilePanel(*panel, [this, type, answer = std::move(answer)](const std::optional<QString> &path) {
        const QString reason = path ? whyNoMovieCanBeWritten(*path) : QString();
        if (!reason.isEmpty()) {
            // Told now, and not after the hint; what was typed is there again.
            m_isPanelToCome = true;
            alertError(reason);
            m_isPanelToCome = false;
            runSavePanel(QFileInfo(*path).completeBaseName(), type, answer);
            return;
        }
        if (path)
            movie_folder::setCurrent(QFileInfo(*path).absolutePath());
        answer(path);
    });
}

void WindowQuestions::showHint(std::function<void(int)> answer)
{
    VNHintWndCtroller &hint = VNHintWndCtroller::shareHintWndCtroller();
    if (hint.showAgain())
        hint.beginSheetModalForWindow(m_main.visible(), std::move(answer));
    else
        answer(responseContinue);
}

void WindowQuestions::askToRecordWithoutSound(std::function<void(bool)> answer)
{
    AlertBox box(m_main.visible(),
                 AlertBox::Kind::Question,
                 tr("Record without sound?"),
                 tr("Sound is on, but there is no audio input."));
    box.addButton(tr("Cancel"), QDialog::Rejected);
    box.addButton(tr("Record without sound"), QDialog::Accepted);
    answer(answerTo(box, {}) == QDialog::Accepted);
}

QString WindowQuestions::parentWindow() const
{
    return portalNameOf(m_main.visible(), QGuiApplication::platformName());
}

void WindowQuestions::countDown(std::function<void(bool)> answer)
{
    const int seconds = start_settings::countdownSeconds();
    if (seconds == 0) {
        answer(true);
        return;
    }
    m_countdown = std::make_unique<Countdown>(seconds, [this, answer = std::move(answer)](bool goOn) {
        m_countdown.release()->deleteLater();
        answer(goOn);
    });
}

void WindowQuestions::cancelCountdown()
{
    if (m_countdown)
        m_countdown->cancel();
}

void WindowQuestions::askForOtherFile(const QString &type, std::function<void(std::optional<QString>)> answer)
{
    runSavePanel(tr("Untitled"), type, [this, type, answer = std::move(answer)](const auto &path) {
        if (path) {
            answer(path);
            return;
        }
        enum Answer { Later, SaveElsewhere };
        AlertBox box(
            m_main.visible(),
            AlertBox::Kind::Question,
            tr("The recording is kept"),
            tr("The main window leads back to it and makes the movie later, also after the next start."));
        box.addButton(tr("OK"), Later);
        box.addButton(tr("Save elsewhere"), SaveElsewhere);
        if (answerTo(box, {}) == Later)
            answer(std::nullopt);
        else
            askForOtherFile(type, answer);
    });
}

bool WindowQuestions::confirmQuit(const QString &message, const QString &informativeText)
{
    AlertBox box(m_main.visible(), AlertBox::Kind::Question, message, informativeText);
    box.addButton(tr("No"), QDialog::Rejected);
    box.addButton(tr("Yes"), QDialog::Accepted);
    return answerTo(box, {}) == QDialog::Accepted;
}

void WindowQuestions::alert(const QString &message, const QString &informativeText)
{
    AlertBox box(m_main.visible(), AlertBox::Kind::Question, message, informativeText);
    box.addButton(tr("OK"), QDialog::Accepted);
    static_cast<void>(answerTo(box, QStringLiteral("%1. %2.").arg(message, informativeText)));
}

void WindowQuestions::alertError(const QString &sentence)
{
    AlertBox box(m_main.visible(), AlertBox::Kind::Failure, tr("Error"), sentence);
    box.addButton(tr("OK"), QDialog::Accepted);
    static_cast<void>(answerTo(box, sentence));
}

int WindowQuestions::answerTo(AlertBox &box, const QString &sentence)
{
    if (m_hasEnded) {
        if (!sentence.isEmpty())
            logMessage(sentence);
        return box.answerOfEscape();
    }
    m_boxes += &box;
    const int answer = box.exec();
    m_boxes.removeOne(&box);
    goOnBehindTold();
    return answer;
}

/// Not at once: whoever told it may have more to do when the box is left.
void WindowQuestions::goOnBehindTold()
{
    if (m_behindTold && m_boxes.isEmpty())
        QMetaObject::invokeMethod(qApp, std::exchange(m_behindTold, {}), Qt::QueuedConnection);
}

void WindowQuestions::dismiss()
{
    // One that is left may open another.
    for (const QPointer<AlertBox> &box : QList(m_boxes)) {
        if (box)
            box->reject();
    }
    if (m_savePanel && m_savePanel->isVisible())
        m_savePanel->reject();
}

bool WindowQuestions::onlyTells() const
{
    const auto isInTheWay = [this](const QWidget *window) {
        const auto *box = qobject_cast<const AlertBox *>(window);
        const bool tells = box && box->onlyTells() && m_boxes.contains(box);
        return window->isVisible() && window->isModal() && !tells;
    };
    return !m_isPanelToCome && std::ranges::none_of(QApplication::topLevelWidgets(), isInTheWay);
}

void WindowQuestions::dismissTold(std::function<void()> next)
{
    if (m_boxes.isEmpty()) {
        next();
        return;
    }
    m_behindTold = std::move(next);
    for (const QPointer<AlertBox> &box : QList(m_boxes)) {
        if (box && box->onlyTells())
            box->reject();
    }
}

void WindowQuestions::end()
{
    m_hasEnded = true;
    dismiss();
}

} // namespace vornic
