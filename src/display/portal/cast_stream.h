#pragma once

#include "display/portal/cast_params.h"

#include <cstdint>
#include <functional>
#include <memory>

struct pw_buffer;
struct pw_context;
struct pw_core;
struct pw_stream;
struct pw_thread_loop;
struct spa_source;

namespace vornic {

class CastPicture;

/// The stream of a screen cast, as it comes from PipeWire.
///
/// Made and ended on the main thread. It has a thread of the library's, on which its callbacks run: all but open() and the
/// destructor happens there. Each buffer is given back as soon as it was read, so that the compositor never waits.
class CastStream
{
public:
    /// Called on the stream's thread.
    struct Listener {
        std::function<void()> firstPictureCame;
        std::function<void()> ended; ///< once: nothing comes any more
    };

    /// The pictures of \a node go to \a picture, which is told of their end, too. \a remoteFd, a connection to PipeWire,
    /// is taken. Null where the library refuses.
    [[nodiscard]] static std::unique_ptr<CastStream>
    open(int remoteFd, std::uint32_t node, std::shared_ptr<CastPicture> picture, Listener listener);
    /// Waits for its thread; nobody is told anything afterwards.
    ~CastStream();
    CastStream(const CastStream &) = delete;
    CastStream &operator=(const CastStream &) = delete;

private:
    struct Callbacks;
    struct Handles;

    CastStream(std::shared_ptr<CastPicture> picture, Listener listener);
    [[nodiscard]] bool connect(int remoteFd, std::uint32_t node);
    void stateChanged(int state);
    void formatChanged(const spa_pod *param);
    void process();
    void end();

    const std::shared_ptr<CastPicture> m_picture;
    const Listener m_listener;
    std::unique_ptr<Handles> m_handles;
    std::optional<CastFormat> m_format; ///< on the stream's thread, as all below
    bool m_hasStreamed = false;
    bool m_hasShown = false;
    bool m_hasEnded = false;
};

} // namespace vornic
