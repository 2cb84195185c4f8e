#include "audio/PKAudioControl.h"

#include "audio/PKAudioControlDelegate.h"
#include "audio/PKAudioRecorder.h"
#include "audio/pulse_connection.h"
#include "base/clock.h"
#include "base/main_queue.h"

#include <pulse/context.h>
#include <pulse/introspect.h>
#include <pulse/operation.h>
#include <pulse/subscribe.h>

#include <utility>

namespace vornic {

namespace {

/// A server that hangs holds the program up no longer than this, seconds.
constexpr double firstAnswerWait = 1.0;

/// Operations report to callbacks; nobody waits for them or cancels them.
void forget(pa_operation *operation)
{
    if (operation)
        pa_operation_unref(operation);
}

} // namespace

/// The delegate and the list that it knows already; main thread only.
struct PKAudioControl::Announcement {
    PKAudioControlDelegate *delegate = nullptr;
    QStringList lastRead; ///< the names last given out
    QStringList known;    ///< the names that the delegate has been told of
};

PKAudioControl &PKAudioControl::sharedAudioControl()
{
    static PKAudioControl control;
    return control;
}

PKAudioControl::PKAudioControl(const QByteArray &server)
    : m_deadline(absoluteTimeSeconds() + firstAnswerWait)
    , m_announcement(std::make_shared<Announcement>())
    , m_connection(std::make_unique<PulseConnection>(server, [this] { serverChanged(); }))
{
    m_connection->start();
}

PKAudioControl::~PKAudioControl() = default;

QStringList PKAudioControl::inputDevicesName()
{
    const PulseConnection::Lock lock(*m_connection);
    m_connection->waitUntil(m_deadline, [this] { return m_hasAnswer; });
    m_announcement->lastRead = m_table.names();
    return m_announcement->lastRead;
}

std::uint32_t PKAudioControl::deviceIDFromName(const QString &name)
{
    const PulseConnection::Lock lock(*m_connection);
    return m_table.idOf(name);
}

bool PKAudioControl::hasSystemSound()
{
    const PulseConnection::Lock lock(*m_connection);
    m_connection->waitUntil(m_deadline, [this] { return m_hasAnswer; });
    return m_table.isThere(systemSoundID);
}

bool PKAudioControl::isSystemSound(std::uint32_t deviceID)
{
    const PulseConnection::Lock lock(*m_connection);
    return m_table.isThere(deviceID) && m_table.sourceOf(deviceID) == m_table.sourceOf(systemSoundID);
}

bool PKAudioControl::isMonitor(std::uint32_t deviceID)
{
    const PulseConnection::Lock lock(*m_connection);
    return m_table.isMonitor(deviceID);
}

void PKAudioControl::setDelegate(PKAudioControlDelegate *delegate)
{
    m_announcement->delegate = delegate;
    m_announcement->known = m_announcement->lastRead;
}

std::unique_ptr<AudioRecorder> PKAudioControl::createRecorder(std::uint32_t deviceID)
{
    return std::make_unique<PKAudioRecorder>(deviceID, *this);
}

void PKAudioControl::addRecorder(PKAudioRecorder &recorder)
{
    m_recorders.push_back(&recorder);
}

void PKAudioControl::removeRecorder(PKAudioRecorder &recorder)
{
    std::erase(m_recorders, &recorder);
}

void PKAudioControl::serverChanged()
{
    m_isReading = false;
    m_readsAgain = false;
    if (m_connection->readyContext()) {
        subscribe();
        readDevices();
        return;
    }
    m_arriving.clear();
    m_defaultSource.clear();
    m_defaultOutput.clear();
    takeList();
}

void PKAudioControl::subscribe()
{
    pa_context *context = m_connection->readyContext();
    pa_context_set_subscribe_callback(
        context,
        [](pa_context *, pa_subscription_event_type_t, std::uint32_t, void *self) {
            static_cast<PKAudioControl *>(self)->readDevices();
        },
        this);
    const auto events
        = static_cast<pa_subscription_mask_t>(PA_SUBSCRIPTION_MASK_SOURCE | PA_SUBSCRIPTION_MASK_SERVER);
    forget(pa_context_subscribe(context, events, nullptr, nullptr));
}

/// Asks for the default source and then for all sources; what changes meanwhile is asked for afterwards.
void PKAudioControl::readDevices()
{
    pa_context *context = m_connection->readyContext();
    if (!context || std::exchange(m_isReading, true)) {
        m_readsAgain = true;
        return;
    }
    m_readsAgain = false;
    m_arriving.clear();
    forget(pa_context_get_server_info(
        context,
        [](pa_context *, const pa_server_info *info, void *self) {
            auto &control = *static_cast<PKAudioControl *>(self);
            control.m_defaultSource = info ? info->default_source_name : "";
            control.m_defaultOutput = info ? info->default_sink_name : "";
        },
        this));
    forget(pa_context_get_source_info_list(
        context,
        [](pa_context *, const pa_source_info *info, int end, void *self) {
            auto &control = *static_cast<PKAudioControl *>(self);
            if (end == 0)
                control.takeSource(*info);
            else
                control.takeList();
        },
        this));
}

void PKAudioControl::takeSource(const pa_source_info &source)
{
    m_arriving.push_back({ source.name,
                           QString::fromUtf8(source.description),
                           source.monitor_of_sink != PA_INVALID_INDEX,
                           source.monitor_of_sink_name });
}

void PKAudioControl::takeList()
{
    m_hasAnswer = true;
    if (m_table.update(std::exchange(m_arriving, {}), m_defaultSource, m_defaultOutput))
        devicesChanged();
    for (PKAudioRecorder *recorder : m_recorders)
        recorder->devicesListed();
    m_connection->wake();
    m_isReading = false;
    if (m_readsAgain)
        readDevices();
}

void PKAudioControl::devicesChanged()
{
    main_queue::async([this, names = m_table.names(), weak = std::weak_ptr(m_announcement)] {
        const std::shared_ptr<Announcement> announcement = weak.lock();
        // The control is gone, or the delegate has read this list already.
        if (!announcement || !announcement->delegate || std::exchange(announcement->known, names) == names)
            return;
        announcement->delegate->audioControlInputDeviceChanged(*this);
    });
}

} // namespace vornic
