#include "app/window/recovery.h"

#include "app/VornicAppDelegate.h"
#include "app/session/new_movie_file.h"
#include "app/window/alert_box.h"
#include "app/window/main_window.h"
#include "app/window/unfinished_line.h"
#include "app/window/unfinished_text.h"
#include "app/window/window_questions.h"

#include <utility>

namespace vornic {

Recovery::Recovery(VornicAppDelegate &delegate, WindowQuestions &questions, MainWindow &window)
    : m_delegate(delegate)
    , m_questions(questions)
    , m_window(window)
    , m_sheet(m_recordings)
{
    UnfinishedLine &line = window.unfinishedLine();
    connect(&m_recordings, &UnfinishedRecordings::changed, this, &Recovery::showRecordings);
    connect(&m_recordings,
            &UnfinishedRecordings::pictureRead,
            this,
            [&line](const QString &id, const QImage &picture) {
                if (id == line.id())
                    line.showPicture(picture);
            });
    connect(&m_recordings, &UnfinishedRecordings::removalFailed, this, [this](const QString &sentence) {
        m_questions.alertError(sentence);
    });
    connect(&line, &UnfinishedLine::movieAsked, this, &Recovery::makeMovie);
    connect(&line, &UnfinishedLine::deletionAsked, this, &Recovery::askToDelete);
    connect(&line, &UnfinishedLine::keepAsked, this, &Recovery::keepAll);
    const auto list = [this] { m_sheet.beginSheet(&m_window); };
    connect(&line, &UnfinishedLine::listAsked, this, list);
    connect(&window, &MainWindow::unfinishedAsked, this, list);
    connect(&m_sheet, &UnfinishedSheet::movieAsked, this, &Recovery::makeMovie);
    connect(&m_sheet, &UnfinishedSheet::deletionAsked, this, &Recovery::askToDelete);
    connect(&delegate, &VornicAppDelegate::stateChanged, this, &Recovery::followSession);
    connect(&delegate.session(), &RecordingSession::recordingRefused, this, &Recovery::followSession);
    showRecordings();
}

void Recovery::recordingKept()
{
    m_isKept = false;
    m_recordings.read();
}

void Recovery::showRecordings()
{
    const QList<StoredRecording> &all = m_recordings.all();
    UnfinishedLine &line = m_window.unfinishedLine();
    const QString before = line.id();
    m_window.setHasUnfinished(!all.isEmpty());
    line.showRecordings(m_isKept ? QList<StoredRecording>() : all);
    if (!line.id().isEmpty() && line.id() != before)
        m_recordings.askForPicture(line.id());
    if (all.isEmpty())
        m_sheet.endSheet();
}

/// One thing at a time: while a recording runs or a movie is written, nothing else is begun.
void Recovery::followSession()
{
    const bool isFree = !m_delegate.isRecording();
    m_window.unfinishedLine().setActionsEnabled(isFree);
    m_sheet.setActionsEnabled(isFree);
    if (isFree && std::exchange(m_isWriting, false))
        m_recordings.read();
}

void Recovery::keepAll()
{
    m_isKept = true;
    showRecordings();
}

void Recovery::makeMovie(const QString &id)
{
    const StoredRecording *recording = m_recordings.find(id);
    if (!recording || m_delegate.isRecording())
        return;
    m_sheet.endSheet();
    m_questions.runSavePanelFor(movieFileFor(recording->movie, recording->start.toLocalTime()),
                                [this, id](const std::optional<QString> &path) {
                                    if (path)
                                        writeMovie(id, *path);
                                });
}

void Recovery::writeMovie(const QString &id, const QString &file)
{
    m_recordings.whenLetGo([this, id, file] {
        if (m_delegate.isRecording())
            return;
        m_isWriting = true;
        m_recordings.forget(id);
        m_delegate.session().recover(id, file);
    });
}

void Recovery::askToDelete(const QString &id)
{
    const StoredRecording *recording = m_recordings.find(id);
    if (!recording || m_delegate.isRecording())
        return;
    QWidget *above = m_sheet.window() ? m_sheet.window() : &m_window;
    AlertBox box(above,
                 AlertBox::Kind::Question,
                 tr("Delete the recording?"),
                 unfinishedSentence({ *recording }) + u' ' + tr("Once deleted, it cannot be brought back."));
    box.addButton(tr("Keep"), QDialog::Rejected);
    box.addButton(tr("Delete"), QDialog::Accepted);
    if (box.exec() == QDialog::Accepted)
        m_recordings.remove(id);
}

} // namespace vornic
