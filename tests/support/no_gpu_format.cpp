// Tells xdg-desktop-portal-wlr 0.7, into which it is loaded, of a format for the buffers of a GPU, where the compositor
// has none and names none: without one it gives no stream at all. The format is never used, because no modifier comes
// with it.

#include <dlfcn.h>

#include <algorithm>
#include <cstdint>
#include <string_view>

struct wl_proxy;
extern "C" const char *wl_proxy_get_class(wl_proxy *proxy);

namespace {

using Handler = void (*)();
using AddListener = int (*)(wl_proxy *, Handler *, void *);
using BufferEvent = void (*)(void *, void *, std::uint32_t, std::uint32_t, std::uint32_t, std::uint32_t);
using GpuBufferEvent = void (*)(void *, void *, std::uint32_t, std::uint32_t, std::uint32_t);

// The events of zwlr_screencopy_frame_v1, version 3.
constexpr int eventCount = 7;
constexpr int bufferEvent = 0;
constexpr int gpuBufferEvent = 5;
constexpr std::uint32_t xrgb8888 = 0x34325258;

Handler *theirs = nullptr;
Handler ours[eventCount];

void tellBuffer(void *data,
                void *frame,
                std::uint32_t format,
                std::uint32_t width,
                std::uint32_t height,
                std::uint32_t stride)
{
    reinterpret_cast<GpuBufferEvent>(theirs[gpuBufferEvent])(data, frame, xrgb8888, width, height);
    reinterpret_cast<BufferEvent>(theirs[bufferEvent])(data, frame, format, width, height, stride);
}

} // namespace

extern "C" int wl_proxy_add_listener(wl_proxy *proxy, Handler *listener, void *data)
{
    static const auto real = reinterpret_cast<AddListener>(dlsym(RTLD_NEXT, "wl_proxy_add_listener"));
    if (wl_proxy_get_class(proxy) != std::string_view("zwlr_screencopy_frame_v1"))
        return real(proxy, listener, data);
    theirs = listener;
    std::copy_n(listener, eventCount, ours);
    ours[bufferEvent] = reinterpret_cast<Handler>(tellBuffer);
    return real(proxy, ours, data);
}
