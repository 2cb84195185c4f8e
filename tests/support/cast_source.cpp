#include "support/cast_source.h"

#include "support/wait_until.h"

#include <pipewire/pipewire.h>
#include <spa/buffer/meta.h>
#include <spa/param/buffers.h>
#include <spa/param/video/format-utils.h>
#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstring>
#include <mutex>

namespace vornic::test {

namespace {

constexpr int maxPointerEdge = 16;
constexpr std::size_t pointerBytes
    = sizeof(spa_meta_cursor) + sizeof(spa_meta_bitmap) + std::size_t { maxPointerEdge } * maxPointerEdge * 4;
constexpr std::size_t maxRegions = 4;

std::uint32_t bytesOf(QSize size)
{
    return static_cast<std::uint32_t>(size.width() * size.height() * 4);
}

/// Parameters as the library takes them, in memory of their own.
class Pods
{
public:
    Pods() { spa_pod_builder_init(&m_builder, m_memory.data(), static_cast<std::uint32_t>(m_memory.size())); }

    void begin(std::uint32_t type, std::uint32_t id)
    {
        spa_pod_builder_push_object(&m_builder, &m_frame, type, id);
    }
    void end() { params.push_back(static_cast<const spa_pod *>(spa_pod_builder_pop(&m_builder, &m_frame))); }
    spa_pod_builder &at(std::uint32_t key)
    {
        spa_pod_builder_prop(&m_builder, key, 0);
        return m_builder;
    }
    void addFormat(QSize size);
    void addBuffers(QSize size);
    void addMeta(std::uint32_t type, std::size_t bytes);

    std::vector<const spa_pod *> params;

private:
    std::array<std::uint8_t, 2048> m_memory;
    spa_pod_builder m_builder {};
    spa_pod_frame m_frame {};
};

void Pods::addFormat(QSize size)
{
    begin(SPA_TYPE_OBJECT_Format, SPA_PARAM_EnumFormat);
    spa_pod_builder_id(&at(SPA_FORMAT_mediaType), SPA_MEDIA_TYPE_video);
    spa_pod_builder_id(&at(SPA_FORMAT_mediaSubtype), SPA_MEDIA_SUBTYPE_raw);
    spa_pod_builder_id(&at(SPA_FORMAT_VIDEO_format), SPA_VIDEO_FORMAT_BGRx);
    spa_pod_builder_rectangle(&at(SPA_FORMAT_VIDEO_size),
                              static_cast<std::uint32_t>(size.width()),
                              static_cast<std::uint32_t>(size.height()));
    spa_pod_builder_fraction(&at(SPA_FORMAT_VIDEO_framerate), 0, 1);
    spa_pod_frame range {};
    spa_pod_builder &builder = at(SPA_FORMAT_VIDEO_maxFramerate);
    spa_pod_builder_push_choice(&builder, &range, SPA_CHOICE_Range, 0);
    for (const std::uint32_t rate : { 60U, 1U, 60U })
        spa_pod_builder_fraction(&builder, rate, 1);
    spa_pod_builder_pop(&builder, &range);
    end();
}

void Pods::addBuffers(QSize size)
{
    begin(SPA_TYPE_OBJECT_ParamBuffers, SPA_PARAM_Buffers);
    spa_pod_builder_int(&at(SPA_PARAM_BUFFERS_buffers), 4);
    spa_pod_builder_int(&at(SPA_PARAM_BUFFERS_blocks), 1);
    spa_pod_builder_int(&at(SPA_PARAM_BUFFERS_size), static_cast<std::int32_t>(bytesOf(size)));
    spa_pod_builder_int(&at(SPA_PARAM_BUFFERS_stride), size.width() * 4);
    spa_pod_frame flags {};
    spa_pod_builder &builder = at(SPA_PARAM_BUFFERS_dataType);
    spa_pod_builder_push_choice(&builder, &flags, SPA_CHOICE_Flags, 0);
    spa_pod_builder_int(&builder, 1 << SPA_DATA_MemFd);
    spa_pod_builder_pop(&builder, &flags);
    end();
}

void Pods::addMeta(std::uint32_t type, std::size_t bytes)
{
    begin(SPA_TYPE_OBJECT_ParamMeta, SPA_PARAM_Meta);
    spa_pod_builder_id(&at(SPA_PARAM_META_type), type);
    spa_pod_builder_int(&at(SPA_PARAM_META_size), static_cast<std::int32_t>(bytes));
    end();
}

template<typename T>
T *metadata(const spa_buffer &buffer, std::uint32_t type)
{
    return static_cast<T *>(spa_buffer_find_meta_data(&buffer, type, sizeof(T)));
}

spa_region regionOf(const QRect &rectangle)
{
    return { { rectangle.x(), rectangle.y() },
             { static_cast<std::uint32_t>(rectangle.width()),
               static_cast<std::uint32_t>(rectangle.height()) } };
}

void fillDamage(const spa_buffer &buffer, const std::vector<QRect> &damage)
{
    auto *const regions = static_cast<spa_region *>(
        spa_buffer_find_meta_data(&buffer, SPA_META_VideoDamage, maxRegions * sizeof(spa_region)));
    if (!regions)
        return;
    for (std::size_t i = 0; i < maxRegions; ++i)
        regions[i] = i < damage.size() ? regionOf(damage[i]) : spa_region {};
}

void fillPointer(const spa_buffer &buffer, const SourceFrame &frame)
{
    auto *const cursor = metadata<spa_meta_cursor>(buffer, SPA_META_Cursor);
    if (!cursor)
        return;
    *cursor = {};
    if (!frame.pointer)
        return;
    cursor->id = 1;
    cursor->position = { frame.pointer->x(), frame.pointer->y() };
    cursor->hotspot = { frame.hotSpot.x(), frame.hotSpot.y() };
    const QImage &picture = frame.pointerPicture;
    if (picture.isNull())
        return;
    cursor->bitmap_offset = sizeof *cursor;
    auto *const bitmap = reinterpret_cast<spa_meta_bitmap *>(cursor + 1);
    *bitmap = { SPA_VIDEO_FORMAT_BGRA,
                { static_cast<std::uint32_t>(picture.width()), static_cast<std::uint32_t>(picture.height()) },
                picture.width() * 4,
                sizeof *bitmap };
    for (int y = 0; y < picture.height(); ++y)
        std::memcpy(reinterpret_cast<std::byte *>(bitmap + 1) + y * picture.width() * 4,
                    picture.constScanLine(y),
                    static_cast<std::size_t>(picture.width()) * 4);
}

} // namespace

struct CastSource::Handles {
    Handles() = default;
    ~Handles()
    {
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
    spa_hook hook {};
};

struct CastSource::Callbacks {
    static CastSource &source(void *data) { return *static_cast<CastSource *>(data); }

    static void state(void *data, pw_stream_state /*old*/, pw_stream_state state, const char * /*error*/)
    {
        source(data).stateChanged(state);
    }
    static void param(void *data, std::uint32_t id, const spa_pod *param)
    {
        if (id == SPA_PARAM_Format && param)
            source(data).formatAgreed(param);
    }
    static void add(void *data, pw_buffer *buffer) { source(data).addMemory(*buffer); }
    static void remove(void *data, pw_buffer *buffer) { source(data).removeMemory(*buffer); }

    static const pw_stream_events &all()
    {
        static const pw_stream_events events = [] {
            pw_stream_events made {};
            made.version = PW_VERSION_STREAM_EVENTS;
            made.state_changed = state;
            made.param_changed = param;
            made.add_buffer = add;
            made.remove_buffer = remove;
            return made;
        }();
        return events;
    }
};

std::unique_ptr<CastSource> CastSource::start(int remoteFd, QSize size)
{
    std::unique_ptr<CastSource> source(new CastSource(size));
    if (source->connect(remoteFd) && waitUntil([&] { return source->node() != PW_ID_ANY; }))
        return source;
    std::fprintf(stderr, "PipeWire takes no stream.\n");
    return nullptr;
}

CastSource::CastSource(QSize size)
    : m_size(size)
    , m_node(PW_ID_ANY)
    , m_handles(std::make_unique<Handles>())
{
    pw_init(nullptr, nullptr);
}

CastSource::~CastSource() = default;

bool CastSource::connect(int remoteFd)
{
    Handles &made = *m_handles;
    made.loop = pw_thread_loop_new("source", nullptr);
    made.context = pw_context_new(pw_thread_loop_get_loop(made.loop), nullptr, 0);
    made.core = made.context ? pw_context_connect_fd(made.context, remoteFd, nullptr, 0) : nullptr;
    if (!made.core)
        return false;
    made.stream
        = pw_stream_new(made.core, "source", pw_properties_new(PW_KEY_MEDIA_CLASS, "Video/Source", nullptr));
    pw_stream_add_listener(made.stream, &made.hook, &Callbacks::all(), this);
    Pods pods;
    pods.addFormat(m_size);
    const auto flags = static_cast<pw_stream_flags>(PW_STREAM_FLAG_DRIVER | PW_STREAM_FLAG_ALLOC_BUFFERS);
    return pw_stream_connect(made.stream, PW_DIRECTION_OUTPUT, PW_ID_ANY, flags, pods.params.data(), 1) >= 0
        && pw_thread_loop_start(made.loop) >= 0;
}

void CastSource::stateChanged(int state)
{
    m_isStreaming = state == PW_STREAM_STATE_STREAMING;
    if (state == PW_STREAM_STATE_PAUSED)
        m_node = pw_stream_get_node_id(m_handles->stream);
}

void CastSource::formatAgreed(const spa_pod *param)
{
    spa_video_info_raw info {};
    spa_format_video_raw_parse(param, &info);
    m_agreedSize = QSize(static_cast<int>(info.size.width), static_cast<int>(info.size.height));
    Pods pods;
    pods.addBuffers(m_agreedSize);
    pods.addMeta(SPA_META_Header, sizeof(spa_meta_header));
    pods.addMeta(SPA_META_VideoDamage, maxRegions * sizeof(spa_region));
    pods.addMeta(SPA_META_Cursor, pointerBytes);
    pods.addMeta(SPA_META_VideoTransform, sizeof(spa_meta_videotransform));
    pw_stream_update_params(
        m_handles->stream, pods.params.data(), static_cast<std::uint32_t>(pods.params.size()));
}

void CastSource::addMemory(pw_buffer &buffer)
{
    spa_data &data = buffer.buffer->datas[0];
    data.type = SPA_DATA_MemFd;
    data.fd = memfd_create("source", MFD_CLOEXEC);
    data.maxsize = bytesOf(m_agreedSize);
    if (ftruncate(static_cast<int>(data.fd), data.maxsize) == 0)
        data.data
            = mmap(nullptr, data.maxsize, PROT_READ | PROT_WRITE, MAP_SHARED, static_cast<int>(data.fd), 0);
    ++m_bufferCount;
}

void CastSource::removeMemory(pw_buffer &buffer)
{
    const spa_data &data = buffer.buffer->datas[0];
    munmap(data.data, data.maxsize);
    close(static_cast<int>(data.fd));
    --m_bufferCount;
}

void CastSource::resize(QSize size)
{
    pw_thread_loop_lock(m_handles->loop);
    m_size = size;
    Pods pods;
    pods.addFormat(size);
    pw_stream_update_params(m_handles->stream, pods.params.data(), 1);
    pw_thread_loop_unlock(m_handles->loop);
}

bool CastSource::send(const SourceFrame &frame)
{
    pw_thread_loop_lock(m_handles->loop);
    const bool fits = frame.picture.isNull() || frame.picture.size() == m_agreedSize;
    pw_buffer *const buffer = fits && m_isStreaming ? pw_stream_dequeue_buffer(m_handles->stream) : nullptr;
    if (buffer) {
        fill(*buffer, frame);
        pw_stream_queue_buffer(m_handles->stream, buffer);
    }
    pw_thread_loop_unlock(m_handles->loop);
    return buffer != nullptr;
}

bool CastSource::sendUntil(const SourceFrame &frame, const std::function<bool()> &isSo)
{
    return waitUntil(
        [&] {
            static_cast<void>(send(frame));
            return isSo();
        },
        std::chrono::seconds(20),
        everyMillisecond);
}

void CastSource::fill(pw_buffer &buffer, const SourceFrame &frame)
{
    const spa_buffer &filled = *buffer.buffer;
    const spa_data &data = filled.datas[0];
    const bool isOfPointer = frame.picture.isNull();
    if (isOfPointer)
        *data.chunk = { 0, 0, 0, SPA_CHUNK_FLAG_CORRUPTED };
    else
        *data.chunk = { 0, bytesOf(frame.picture.size()), frame.picture.width() * 4, SPA_CHUNK_FLAG_NONE };
    for (int y = 0; y < frame.picture.height(); ++y)
        std::memcpy(static_cast<std::byte *>(data.data) + y * frame.picture.width() * 4,
                    frame.picture.constScanLine(y),
                    static_cast<std::size_t>(frame.picture.width()) * 4);
    if (auto *const header = metadata<spa_meta_header>(filled, SPA_META_Header))
        *header = { 0, 0, 0, 0, m_counts ? ++m_sequence : 0 };
    if (auto *const transform = metadata<spa_meta_videotransform>(filled, SPA_META_VideoTransform))
        transform->transform = static_cast<std::uint32_t>(frame.transform);
    fillDamage(filled, frame.damage);
    fillPointer(filled, frame);
}

} // namespace vornic::test
