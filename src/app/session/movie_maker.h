#pragma once

#include "app/session/front_end.h"
#include "app/session/recording_counts.h"

#include <QObject>
#include <QString>
#include <QVariant>

#include <memory>

namespace vornic {

class MovieJob;
class PKMuxerContext;
class VNBufferMgr;
class VNOption;
struct Error;
struct Recording;

/// Makes the movie of a recording: tells how far it is, asks for another file where it cannot be written, and writes it
/// again where it has become larger than it was to be.
///
/// Made by RecordingSession for all its recordings; lives on the main thread.
class MovieMaker : public QObject
{
    Q_OBJECT
public:
    /// Borrows all for life.
    MovieMaker(const FrontEnd &frontEnd, VNOption &options, VNBufferMgr &spool);
    ~MovieMaker() override;

    /// What is made from now on is the movie of \a recording.
    void adopt(std::shared_ptr<Recording> recording);
    /// Makes it, with the spool's muxer context. The end is told.
    void start();
    /// Ends as if it had been cancelled, without starting.
    void putOff();
    /// Gives it up soon; the recording is kept.
    void cancel();
    /// Tells the user and the desktop of the movie that is complete.
    void recordcomplete();

    /// Never null.
    [[nodiscard]] MovieJob &job() { return *m_job; }

    /// Of the adopted recording.
    [[nodiscard]] RecordingCounts counts() const;

signals:
    /// Nothing is under way any more; where there is no movie, the recording's failure says why.
    void ended();

private:
    void muxerReported(const QString &action, const QVariant &value);
    void muxerFailed(const Error &error);
    void writeTo(const QString &path);
    void writeWith(const std::shared_ptr<PKMuxerContext> &context);
    bool writeSmaller();

    FrontEnd m_frontEnd;
    VNOption &m_options;
    VNBufferMgr &m_spool;
    std::shared_ptr<Recording> m_recording;
    std::unique_ptr<MovieJob> m_job;
};

} // namespace vornic
