#pragma once

#include "app/session/movie_progress.h"

#include <QElapsedTimer>

namespace vornic {

/// The movie that is written, on standard error, and what the person who waits for it was told.
///
/// On a terminal the bar redraws its line; elsewhere there is a plain line every ten percent. Main thread only.
class CommandLineMovie final : public MovieProgress
{
public:
    CommandLineMovie();

    /// The program was asked to end: tells what is going on where it was asked before, and how to put the movie off
    /// while it is written.
    void endAsked();
    /// The program was asked to leave everything for later.
    void leaveAsked();
    [[nodiscard]] bool isAskedToEnd() const { return m_isAskedToEnd; }
    /// The user knows that to ask again puts the movie off.
    [[nodiscard]] bool hasToldOfLater() const { return m_hasToldOfLater; }

    void beginProgress(std::uint64_t frames) override;
    void setProgress(double percent) override;
    void endProgress() override;
    void movieIsWrittenAgain() override;
    void recordingKept(const QString &id) override;
    void movieRenamed(const QString &meant, const QString &path) override;

private:
    void tellOfLater();

    bool m_isTerminal;
    int m_lastPercent = -1;
    bool m_isWriting = false;
    bool m_isAskedToEnd = false;
    bool m_hasToldOfLater = false;
    QElapsedTimer m_encoding;
};

} // namespace vornic
