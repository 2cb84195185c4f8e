#pragma once

#include "app/window/unfinished_recordings.h"
#include "app/window/unfinished_sheet.h"

#include <QObject>
#include <QString>

namespace vornic {

class MainWindow;
class VornicAppDelegate;
class WindowQuestions;
struct StoredRecording;

/// What the window does with recordings that were not finished: tells of them, lists them, makes their movies and
/// deletes them.
///
/// Made by WindowProgram after the window, whose line and menu it serves; main thread only.
class Recovery : public QObject
{
    Q_OBJECT
public:
    /// Borrows all for life.
    Recovery(VornicAppDelegate &delegate, WindowQuestions &questions, MainWindow &window);

    /// Looks for them, and tells in the window what is found.
    void start() { m_recordings.cleanUpAndRead(); }
    /// There is one more, which the window tells of though the ones before were to be kept.
    void recordingKept();

    [[nodiscard]] UnfinishedRecordings &recordings() { return m_recordings; }

private:
    void showRecordings();
    void followSession();
    void keepAll();
    void makeMovie(const QString &id);
    void askToDelete(const QString &id);
    void writeMovie(const QString &id, const QString &file);

    VornicAppDelegate &m_delegate;
    WindowQuestions &m_questions;
    MainWindow &m_window;
    UnfinishedRecordings m_recordings;
    UnfinishedSheet m_sheet;
    bool m_isKept = false; ///< the user wants to hear no more of them until the next start
    bool m_isWriting = false;
};

} // namespace vornic
