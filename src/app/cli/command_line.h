#pragma once

#include "options/record_quality.h"

#include <QCoreApplication>
#include <QRect>
#include <QString>
#include <QStringList>

#include <cstdint>
#include <optional>

namespace vornic {

/// What the user asked for on the command line; a plain value.
struct CommandLine {
    Q_DECLARE_TR_FUNCTIONS(vornic::CommandLine)
public:
    enum class Action { Window, Record, Recover, Devices, Help, Version, WrongUsage };

    Action action = Action::Window;
    QString problem;  ///< WrongUsage: one sentence
    QString helpText; ///< Help

    // Window
    /// What the window does at once, the one that runs already where there is one.
    enum class Task { Show, RecordFullDisplay, RecordRectangle, Stop, Toggle, Pause };
    Task task = Task::Show;

    QString file; ///< the movie; empty where the window's save panel asks for it, or recover finds a name

    // Record
    std::optional<QRect> region; ///< pixels from the top left of the main display, y down; none: all of it
    RecordQuality quality = RecordQuality::High;
    bool audio = false;
    QString audioDevice;         ///< empty: the first
    bool systemAudio = false;    ///< what the system plays, too
    bool separateTracks = false; ///< of both
    std::optional<double> durationSeconds;
    std::optional<std::uint64_t> maxSize; ///< of the movie, bytes
    bool overwrite = false;               ///< also of a movie that is recovered
    bool ignoreLowSpace = false;

    // Recover
    QString recording;                         ///< its id, or how that begins; empty: all are listed
    bool deletes = false;                      ///< in place of making the movie
    std::optional<RecordQuality> otherQuality; ///< than the one that it was recorded with

    [[nodiscard]] bool hasSound() const { return audio || systemAudio; }
};

/// Reads the arguments; the first one is the program's name. Problems are told in the language of the
/// translators that are installed.
[[nodiscard]] CommandLine parseCommandLine(const QStringList &arguments);

/// A number of bytes: "2G", "700 MB", "1.5M", "1500000"; K, M and G are powers of 1000. Nothing for anything else.
[[nodiscard]] std::optional<std::uint64_t> parseSize(const QString &text);

/// "X,Y,W,H", "X,Y WxH" or "WxH+X+Y" in whole pixels with a size above 0; nothing for anything else.
[[nodiscard]] std::optional<QRect> parseRegion(const QString &text);

} // namespace vornic
