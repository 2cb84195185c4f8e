#include "app/cli/run_session.h"

#include "app/cli/command_line_front_end.h"
#include "app/session/recording_session.h"
#include "app/session/unix_signals.h"
#include "base/native_path.h"

#include <QCoreApplication>

#include <cstdio>

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

} // namespace

int runSession(RecordingSession &session, CommandLineFrontEnd &frontEnd, const std::function<void()> &begin)
{
    const UnixSignals signalled;
    const auto terminate = [&session] { session.terminate(); };
    QObject::connect(&signalled, &UnixSignals::terminationAsked, &session, terminate);
    QObject::connect(
        &signalled, &UnixSignals::terminationAsked, &session, [&frontEnd] { frontEnd.signalCame(); });
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

    const RecordingCounts counts = session.counts();
    if (!session.failure().isEmpty() || counts.framesWritten == 0)
        return 1;
    std::printf("%s\n%s\n",
                describeCounts(counts).toUtf8().constData(),
                nativePath(session.outfileName()).constData());
    return 0;
}

} // namespace vornic
