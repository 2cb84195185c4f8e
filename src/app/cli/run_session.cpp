#include "app/cli/run_session.h"

#include "app/cli/answer.h"
#include "app/cli/command_line_front_end.h"
#include "app/cli/exit_status.h"
#include "app/session/recording.h"
#include "app/session/recording_session.h"
#include "app/session/unix_signals.h"

#include <QCoreApplication>

namespace vornic {

namespace {

QString describeCounts(const RecordingCounts &counts)
{
    return QCoreApplication::translate(
               "vornic", "%1 frames grabbed, %2 frames written, %3 frames skipped, %4 s of audio")
        .arg(counts.framesGrabbed)
        .arg(counts.framesWritten)
        .arg(counts.framesSkipped)
        .arg(counts.audioSeconds, 0, 'f', 1);
}

void runLoop(RecordingSession &session, CommandLineFrontEnd &frontEnd, const std::function<void()> &begin)
{
    const UnixSignals signalled;
    QObject::connect(&signalled, &UnixSignals::terminationAsked, &session, [&session, &frontEnd] {
        const bool knowsOfLater = frontEnd.movie().hasToldOfLater();
        frontEnd.movie().endAsked();
        if (session.phase() != RecordingSession::Phase::Writing)
            session.terminate();
        else if (knowsOfLater)
            session.later();
    });
    QObject::connect(&signalled, &UnixSignals::leaveAsked, &session, [&session, &frontEnd] {
        frontEnd.movie().leaveAsked();
        session.leave();
    });
    QObject::connect(&signalled, &UnixSignals::pauseAsked, &session, [&session] { session.pauseOrResume(); });
    const auto terminate = [&session] { session.terminate(); };
    QObject::connect(&session, &RecordingSession::recordingRefused, &session, terminate);
    QObject::connect(&session, &RecordingSession::stateChanged, &session, [&session] {
        if (!session.isRecording())
            session.terminate();
    });
    QObject::connect(&session,
                     &RecordingSession::readyToTerminate,
                     QCoreApplication::instance(),
                     &QCoreApplication::quit,
                     Qt::QueuedConnection);
    begin();
    QCoreApplication::exec();
}

} // namespace

int runSession(RecordingSession &session, CommandLineFrontEnd &frontEnd, const std::function<void()> &begin)
{
    runLoop(session, frontEnd, begin);
    const RecordingCounts counts = session.counts();
    if (!session.recording().failure.isEmpty() || counts.framesWritten == 0)
        return exit_status::failed;
    // Signals end the program again, should nobody read this.
    return answer(describeCounts(counts).toUtf8() + '\n' + pathForAnswer(session.recording().path) + '\n',
                  exit_status::done,
                  exit_status::incomplete);
}

} // namespace vornic
