#include "display/portal/cast_stream.h"

#include "base/thread.h"
#include "display/portal/cast_buffer.h"
#include "display/portal/cast_picture.h"

#include <pipewire/pipewire.h>
#include <unistd.h>

#include <ctime>
#include <mutex>
#include <utility>

namespace vornic {

namespace {

constexpr auto where = "the stream of the screen";
/// How long a stream may pause: a compositor that changes its size takes a tenth of a second. One whose session manager is
/// gone pauses for good, and says nothing.
constexpr std::time_t longestPauseSeconds = 2;

void initializeLibrary()
{
    static std::once_flag isDone;
    std::call_once(isDone, [] { pw_init(nullptr, nullptr); });
}

/// The library has only macros for these two, which are written for C.
const spa_loop_utils_methods &methodsOf(const pw_loop &loop)
{
    return *static_cast<const spa_loop_utils_methods *>(loop.utils->iface.cb.funcs);
}

spa_source *addTimer(const pw_loop &loop, spa_source_timer_func_t function, void *data)
{
    return methodsOf(loop).add_timer(loop.utils->iface.cb.data, function, data);
}

/// Zero seconds stop it.
void setTimer(const pw_loop &loop, spa_source &timer, std::time_t seconds)
{
    timespec time {};
    time.tv_sec = seconds;
    methodsOf(loop).update_timer(loop.utils->iface.cb.data, &timer, &time, nullptr, false);
}

} // namespace

/// What the library has made for the stream, and how it is undone.
struct CastStream::Handles {
    Handles() = default;
    ~Handles()
    {
        if (stream) {
            // What ends by itself would be told otherwise. And before the thread is stopped: what is to be called there is
            // then called on the thread that the pictures come on.
            pw_thread_loop_lock(loop);
            spa_hook_remove(&hook);
            pw_thread_loop_unlock(loop);
        }
        if (loop)
            pw_thread_loop_stop(loop);
        if (stream)
            pw_stream_destroy(stream);
        if (core)
            pw_core_disconnect(core);
        if (context)
            pw_context_destroy(context);
        if (loop)
            pw_thread_loop_destroy(loop);
    }
    Handles(const Handles &) = delete;
    Handles &operator=(const Handles &) = delete;

    pw_thread_loop *loop = nullptr;
    pw_context *context = nullptr;
    pw_core *core = nullptr;
    pw_stream *stream = nullptr;
    spa_source *pauseTimer = nullptr; ///< the loop's
    spa_hook hook {};
};

/// What the library calls. Nothing may be thrown through it.
struct CastStream::Callbacks {
    template<typename Work>
    static void guard(void *data, const Work &work)
    {
        runGuarded(where, [&] { work(*static_cast<CastStream *>(data)); });
    }

    static void
    stateChanged(void *data, pw_stream_state /*old*/, pw_stream_state state, const char * /*error*/)
    {
        guard(data, [state](CastStream &stream) { stream.stateChanged(state); });
    }

    static void paramChanged(void *data, std::uint32_t id, const spa_pod *param)
    {
        if (id == SPA_PARAM_Format)
            guard(data, [param](CastStream &stream) { stream.formatChanged(param); });
    }

    static void process(void *data)
    {
        guard(data, [](CastStream &stream) { stream.process(); });
    }

    static void pauseIsOver(void *data, std::uint64_t /*expirations*/)
    {
        guard(data, [](CastStream &stream) { stream.end(); });
    }

    static const pw_stream_events &streamEvents()
    {
        static const pw_stream_events events = [] {
            pw_stream_events made {};
            made.version = PW_VERSION_STREAM_EVENTS;
            made.state_changed = stateChanged;
            made.param_changed = paramChanged;
            made.process = process;
            return made;
        }();
        return events;
    }
};

std::unique_ptr<CastStream>
CastStream::open(int remoteFd, std::uint32_t node, std::shared_ptr<CastPicture> picture, Listener listener)
{
    std::unique_ptr<CastStream> stream(new CastStream(std::move(picture), std::move(listener)));
    return stream->connect(remoteFd, node) ? std::move(stream) : nullptr;
}

CastStream::CastStream(std::shared_ptr<CastPicture> picture, Listener listener)
    : m_picture(std::move(picture))
    , m_listener(std::move(listener))
    , m_handles(std::make_unique<Handles>())
{
}

CastStream::~CastStream() = default;

/// All is made before the thread runs, so that nothing has to be locked.
bool CastStream::connect(int remoteFd, std::uint32_t node)
{
    initializeLibrary();
    Handles &made = *m_handles;
    made.loop = pw_thread_loop_new("vornic cast", nullptr);
    pw_loop *const loop = made.loop ? pw_thread_loop_get_loop(made.loop) : nullptr;
    made.context = loop ? pw_context_new(loop, nullptr, 0) : nullptr;
    if (!made.context) {
        ::close(remoteFd);
        return false;
    }
    made.core = pw_context_connect_fd(made.context, remoteFd, nullptr, 0);
    if (!made.core)
        return false;
    made.pauseTimer = addTimer(*loop, Callbacks::pauseIsOver, this);
    made.stream = pw_stream_new(made.core,
                                "vornic",
                                pw_properties_new(PW_KEY_MEDIA_TYPE,
                                                  "Video",
                                                  PW_KEY_MEDIA_CATEGORY,
                                                  "Capture",
                                                  PW_KEY_MEDIA_ROLE,
                                                  "Screen",
                                                  nullptr));
    if (!made.stream)
        return false;
    pw_stream_add_listener(made.stream, &made.hook, &Callbacks::streamEvents(), this);
    CastParams params;
    params.addFormats();
    const auto flags = static_cast<pw_stream_flags>(PW_STREAM_FLAG_AUTOCONNECT | PW_STREAM_FLAG_MAP_BUFFERS
                                                    | PW_STREAM_FLAG_DONT_RECONNECT);
    return made.pauseTimer
        && pw_stream_connect(made.stream,
                             PW_DIRECTION_INPUT,
                             node,
                             flags,
                             params.all().data(),
                             static_cast<std::uint32_t>(params.all().size()))
        >= 0
        && pw_thread_loop_start(made.loop) >= 0;
}

void CastStream::stateChanged(int state)
{
    if (state == PW_STREAM_STATE_STREAMING)
        m_hasStreamed = true;
    const bool isPause = state == PW_STREAM_STATE_PAUSED && m_hasStreamed;
    setTimer(
        *pw_thread_loop_get_loop(m_handles->loop), *m_handles->pauseTimer, isPause ? longestPauseSeconds : 0);
    if (state == PW_STREAM_STATE_ERROR || state == PW_STREAM_STATE_UNCONNECTED)
        end();
}

void CastStream::formatChanged(const spa_pod *param)
{
    m_format = castFormatIn(param);
    if (!m_format)
        return;
    CastParams params;
    params.addBuffers();
    params.addMetadata();
    pw_stream_update_params(
        m_handles->stream, params.all().data(), static_cast<std::uint32_t>(params.all().size()));
}

/// Reads all that has come; of several pictures only the newest is copied.
void CastStream::process()
{
    struct GiveBack {
        pw_stream *stream;
        void operator()(pw_buffer *buffer) const { pw_stream_queue_buffer(stream, buffer); }
    };
    using Lent = std::unique_ptr<pw_buffer, GiveBack>;
    const GiveBack giveBack { m_handles->stream };
    Lent newest(nullptr, giveBack);
    std::optional<CastPixels> pixels;
    while (Lent buffer { pw_stream_dequeue_buffer(m_handles->stream), giveBack }) {
        if (!m_format)
            continue;
        const CastFrame frame = readCastBuffer(*buffer->buffer, *m_format);
        m_picture->note(frame);
        if (!frame.pixels)
            continue;
        pixels = frame.pixels;
        newest = std::move(buffer);
    }
    if (!pixels)
        return;
    m_picture->show(*pixels);
    newest.reset();
    if (!std::exchange(m_hasShown, true))
        m_listener.firstPictureCame();
}

void CastStream::end()
{
    if (std::exchange(m_hasEnded, true))
        return;
    m_picture->end();
    m_listener.ended();
}

} // namespace vornic
