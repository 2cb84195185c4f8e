#include "audio/audio_device_table.h"

#include "audio/audio_control.h"

#include <algorithm>
#include <utility>

namespace vornic {

namespace {

template<typename Devices>
bool hasName(const Devices &devices, const QString &name)
{
    return std::ranges::any_of(devices, [&](const auto &device) { return device.name == name; });
}

} // namespace

bool AudioDeviceTable::update(std::vector<AudioInputFacts> inputs,
                              const QByteArray &defaultSource,
                              const QByteArray &defaultOutput)
{
    const auto system = std::ranges::find_if(inputs, [&](const AudioInputFacts &input) {
        return input.isMonitor && !defaultOutput.isEmpty() && input.output == defaultOutput;
    });
    if (system != inputs.end())
        m_systemSource = system->source;
    std::ranges::stable_sort(inputs, {}, [&](const AudioInputFacts &input) {
        return input.source == defaultSource ? 0 : input.isMonitor ? 2 : 1;
    });
    std::vector<Device> devices;
    for (const AudioInputFacts &input : inputs) {
        m_ids.try_emplace(input.source, static_cast<std::uint32_t>(m_ids.size() + 1));
        devices.push_back({ input.source, distinctName(input, devices), input.isMonitor });
    }
    return std::exchange(m_devices, devices) != devices;
}

/// The description itself where no device has it yet, else with the next free number.
QString AudioDeviceTable::distinctName(const AudioInputFacts &input, const std::vector<Device> &taken) const
{
    const QString wanted = input.description.isEmpty() ? QString::fromUtf8(input.source) : input.description;
    QString name = wanted;
    for (int number = 2; hasName(taken, name); ++number)
        name = QStringLiteral("%1 (%2)").arg(wanted).arg(number);
    return name;
}

QStringList AudioDeviceTable::names() const
{
    QStringList names;
    for (const Device &device : m_devices)
        names += device.name;
    return names;
}

std::uint32_t AudioDeviceTable::idOf(const QString &name) const
{
    const auto found = std::ranges::find(m_devices, name, &Device::name);
    return found == m_devices.end() ? 0 : m_ids.at(found->source);
}

QByteArray AudioDeviceTable::sourceOf(std::uint32_t id) const
{
    if (id == AudioControl::systemSoundID)
        return m_systemSource;
    const auto found = std::ranges::find(m_ids, id, [](const auto &entry) { return entry.second; });
    return found == m_ids.end() ? QByteArray() : found->first;
}

bool AudioDeviceTable::isMonitor(std::uint32_t id) const
{
    const auto found = std::ranges::find(m_devices, sourceOf(id), &Device::source);
    return found != m_devices.end() && found->isMonitor;
}

bool AudioDeviceTable::isThere(std::uint32_t id) const
{
    const QByteArray source = sourceOf(id);
    return !source.isEmpty() && std::ranges::find(m_devices, source, &Device::source) != m_devices.end();
}

} // namespace vornic
