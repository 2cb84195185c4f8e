#pragma once

#include "app/session/recording_progress.h"
#include "app/session/sound_notices.h"

#include <optional>

namespace vornic {

/// The clock of a recording on standard error, and what is told of its sound.
///
/// On a terminal the clock redraws its line; elsewhere it is a plain line every ten seconds. Main thread only.
class CommandLineProgress final : public RecordingProgress, public SoundNotices
{
public:
    /// \a durationSeconds: after which the recording ends by itself.
    explicit CommandLineProgress(std::optional<double> durationSeconds);

    void showStopItem(const QString &title, const QRectF &recorded) override;
    void setStopItemTitle(const QString &title) override;
    void showPaused(bool isPaused) override;
    void hideStopItem() override;
    void showRoom(const RecordingRoom &room) override;
    void warnOfLittleRoom(const RecordingRoom &room) override;
    void sizeIsReached() override;
    void soundIsMissing(const std::function<void()> &goOn) override;
    void oneSoundIsLost(const QString &name, bool isLost) override;
    void nothingIsHeard(const QString &name) override;

private:
    std::optional<double> m_durationSeconds;
    bool m_isTerminal;
    QString m_lastTitle;
    QString m_room; ///< behind the clock; empty in the first second
};

} // namespace vornic
