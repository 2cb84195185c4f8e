#pragma once

namespace vornic {

class VNOption;

/// What the user may change now: nothing while a recording runs, and nothing that has no effect on the next one.
///
/// A plain value, made for each question; main thread only.
struct AllowedEdits {
    VNOption *options; ///< borrowed; null: there are none, and nothing of them may be changed
    bool isRecording;
    bool hasAudioDevices;

    [[nodiscard]] bool recordRegion() const;
    [[nodiscard]] bool logo() const;
    [[nodiscard]] bool font() const;
    [[nodiscard]] bool audioRecord() const { return !isRecording && hasAudioDevices; }
    /// Sound is switched on, and there is some to be recorded.
    [[nodiscard]] bool sound() const;
    [[nodiscard]] bool systemLevel() const;
    [[nodiscard]] bool stopAfter() const;
};

} // namespace vornic
