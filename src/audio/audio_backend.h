#pragma once

#include <QByteArray>
#include <QString>

#include <memory>
#include <span>
#include <string_view>

namespace vornic {

class AudioControl;

/// One row of the table of sound backends.
///
/// The table is constant; its functions are called on the main thread.
struct AudioBackendEntry {
    std::string_view id;   ///< as in the environment variable VORNIC_AUDIO
    bool selectedByItself; ///< false: only when asked for by its id
    /// The backend's devices; never null. A backend of which a process has only one gives that one.
    std::shared_ptr<AudioControl> (*create)();
};

/// All backends, best first.
[[nodiscard]] std::span<const AudioBackendEntry> audioBackends();

/// The backend named \a id, or the first that is selected by itself when \a id is empty. Never null: for an id
/// that is not in the table it has no devices and carries a sentence for the user that lists the ids.
[[nodiscard]] std::shared_ptr<AudioControl> createAudioControl(const QByteArray &id);

/// The process's audio devices, chosen at the first call, which may also connect to the sound server.
///
/// The environment variable VORNIC_AUDIO forces a backend by its id. On the main thread.
[[nodiscard]] AudioControl &mainAudioControl();

/// Why no backend was chosen for this process, one sentence for the user; empty when one was, even if it has no
/// devices at the moment.
[[nodiscard]] QString noAudioReason();

} // namespace vornic
