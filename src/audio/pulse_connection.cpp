#include "audio/pulse_connection.h"

#include "base/clock.h"

#include <pulse/context.h>
#include <pulse/rtclock.h>
#include <pulse/thread-mainloop.h>
#include <pulse/timeval.h>

#include <algorithm>
#include <utility>

namespace vornic {

namespace {

/// A server that comes back is noticed within a second.
constexpr pa_usec_t retryAfter = 400'000;

} // namespace

PulseConnection::Lock::Lock(PulseConnection &connection)
    : m_loop(connection.isOwnThread() ? nullptr : connection.m_loop)
{
    if (m_loop)
        pa_threaded_mainloop_lock(m_loop);
}

PulseConnection::Lock::~Lock()
{
    if (m_loop)
        pa_threaded_mainloop_unlock(m_loop);
}

PulseConnection::PulseConnection(QByteArray server, std::function<void()> onChange)
    : m_server(std::move(server))
    , m_onChange(std::move(onChange))
    , m_loop(pa_threaded_mainloop_new())
{
}

void PulseConnection::start()
{
    pa_threaded_mainloop_set_name(m_loop, "vornic audio");
    connect(true);
    pa_threaded_mainloop_start(m_loop);
}

PulseConnection::~PulseConnection()
{
    pa_threaded_mainloop_stop(m_loop);
    dropContext();
    pa_threaded_mainloop_free(m_loop);
}

bool PulseConnection::isOwnThread() const
{
    return pa_threaded_mainloop_in_thread(m_loop) != 0;
}

pa_context *PulseConnection::readyContext() const
{
    return m_context && pa_context_get_state(m_context) == PA_CONTEXT_READY ? m_context : nullptr;
}

void PulseConnection::connect(bool mayStartServer)
{
    dropContext();
    m_context = pa_context_new(pa_threaded_mainloop_get_api(m_loop), "Vornic");
    if (!m_context)
        return;
    pa_context_set_state_callback(
        m_context,
        [](pa_context *, void *self) { static_cast<PulseConnection *>(self)->contextChanged(); },
        this);
    const char *server = m_server.isEmpty() ? nullptr : m_server.constData();
    if (pa_context_connect(
            m_context, server, mayStartServer ? PA_CONTEXT_NOFLAGS : PA_CONTEXT_NOAUTOSPAWN, nullptr)
        < 0)
        contextChanged();
}

void PulseConnection::contextChanged()
{
    const pa_context_state_t state = pa_context_get_state(m_context);
    const bool isLost = !PA_CONTEXT_IS_GOOD(state);
    if (isLost)
        connectLater();
    if (isLost || state == PA_CONTEXT_READY) {
        m_onChange();
        wake();
    }
}

void PulseConnection::connectLater()
{
    if (m_retry)
        return;
    m_retry = pa_context_rttime_new(
        m_context,
        pa_rtclock_now() + retryAfter,
        [](pa_mainloop_api *, pa_time_event *, const timeval *, void *self) {
            static_cast<PulseConnection *>(self)->connect(false);
        },
        this);
}

void PulseConnection::dropContext()
{
    if (m_retry)
        pa_threaded_mainloop_get_api(m_loop)->time_free(std::exchange(m_retry, nullptr));
    if (!m_context)
        return;
    pa_context_set_state_callback(m_context, nullptr, nullptr);
    pa_context_disconnect(m_context);
    pa_context_unref(std::exchange(m_context, nullptr));
}

void PulseConnection::wake()
{
    pa_threaded_mainloop_signal(m_loop, 0);
}

bool PulseConnection::waitUntil(double deadline, const std::function<bool()> &holds)
{
    const double left = deadline - absoluteTimeSeconds();
    if (holds() || left <= 0 || !m_context)
        return holds();
    pa_time_event *alarm = pa_context_rttime_new(
        m_context,
        pa_rtclock_now() + static_cast<pa_usec_t>(left * PA_USEC_PER_SEC),
        [](pa_mainloop_api *, pa_time_event *, const timeval *, void *self) {
            static_cast<PulseConnection *>(self)->wake();
        },
        this);
    while (!holds() && absoluteTimeSeconds() < deadline)
        pa_threaded_mainloop_wait(m_loop);
    pa_threaded_mainloop_get_api(m_loop)->time_free(alarm);
    return holds();
}

} // namespace vornic
