#include "audio/audio_control.h"
#include "audio/audio_device_table.h"

#include <gtest/gtest.h>

namespace vornic {

namespace {

const AudioInputFacts monitor { "out.monitor", "Monitor of Speakers", true };
const AudioInputFacts laptop { "pci-1", "Built-in Microphone", false };
const AudioInputFacts desk { "usb-1", "USB Microphone", false };
const AudioInputFacts otherDesk { "usb-2", "USB Microphone", false };

} // namespace

TEST(AudioDeviceTableTest, TheDefaultIsFirstThenMicrophonesThenMonitors)
{
    AudioDeviceTable table;
    EXPECT_TRUE(table.update({ monitor, laptop, desk }, "usb-1"));
    EXPECT_EQ(table.names(), QStringList({ "USB Microphone", "Built-in Microphone", "Monitor of Speakers" }));
    EXPECT_TRUE(table.update({ monitor, laptop, desk }, "out.monitor"));
    EXPECT_EQ(table.names(), QStringList({ "Monitor of Speakers", "Built-in Microphone", "USB Microphone" }));
}

TEST(AudioDeviceTableTest, EqualNamesAreMadeDistinctAndLeadBack)
{
    AudioDeviceTable table;
    table.update({ desk, otherDesk, { "usb-3", "USB Microphone (2)", false } }, {});
    EXPECT_EQ(table.names(),
              QStringList({ "USB Microphone", "USB Microphone (2)", "USB Microphone (2) (2)" }));
    EXPECT_EQ(table.sourceOf(table.idOf("USB Microphone")), "usb-1");
    EXPECT_EQ(table.sourceOf(table.idOf("USB Microphone (2)")), "usb-2");
    EXPECT_EQ(table.sourceOf(table.idOf("USB Microphone (2) (2)")), "usb-3");
}

TEST(AudioDeviceTableTest, ADeviceKeepsItsNumber)
{
    AudioDeviceTable table;
    table.update({ laptop, desk }, "usb-1");
    const std::uint32_t id = table.idOf("USB Microphone");
    table.update({ laptop }, "pci-1");
    EXPECT_EQ(table.idOf("USB Microphone"), 0U);
    EXPECT_EQ(table.sourceOf(id), "usb-1");
    EXPECT_FALSE(table.isThere(id));
    table.update({ monitor, desk }, "out.monitor");
    EXPECT_EQ(table.idOf("USB Microphone"), id);
    EXPECT_TRUE(table.isThere(id));
    EXPECT_FALSE(table.isThere(0));
}

TEST(AudioDeviceTableTest, OnlyWhatShowsIsAChange)
{
    AudioDeviceTable table;
    EXPECT_FALSE(table.update({}, {}));
    EXPECT_TRUE(table.update({ laptop, desk }, "pci-1"));
    EXPECT_FALSE(table.update({ laptop, desk }, "pci-1"));
    EXPECT_FALSE(table.update({ laptop, desk }, "gone"));
    EXPECT_TRUE(table.update({ laptop, { "usb-1", "Renamed", false } }, "pci-1"));
    EXPECT_TRUE(table.update({}, {}));
}

TEST(AudioDeviceTableTest, WhatTheSystemPlaysIsTheMonitorOfTheDefaultOutput)
{
    constexpr std::uint32_t system = AudioControl::systemSoundID;
    const AudioInputFacts speakers { "out.monitor", "Monitor of Speakers", true, "out" };
    const AudioInputFacts headset { "usb.monitor", "Monitor of Headset", true, "usb" };
    AudioDeviceTable table;
    EXPECT_FALSE(table.isThere(system));
    table.update({ laptop }, "pci-1", "out");
    EXPECT_FALSE(table.isThere(system)) << "an output without a monitor";
    table.update({ laptop, speakers, headset }, "pci-1", "out");
    EXPECT_EQ(table.sourceOf(system), "out.monitor");
    EXPECT_TRUE(table.isThere(system));
    table.update({ laptop, speakers, headset }, "pci-1", "usb");
    EXPECT_EQ(table.sourceOf(system), "usb.monitor");
    table.update({ laptop }, "pci-1", {});
    EXPECT_FALSE(table.isThere(system));
    EXPECT_EQ(table.idOf("Monitor of Headset"), 0U);
    table.update({ laptop, speakers }, "pci-1", "out");
    EXPECT_EQ(table.sourceOf(system), "out.monitor");
    EXPECT_TRUE(table.isMonitor(table.idOf("Monitor of Speakers")));
    EXPECT_FALSE(table.isMonitor(table.idOf("Built-in Microphone")));
    EXPECT_FALSE(table.isMonitor(0));
}

TEST(AudioDeviceTableTest, UnknownNamesAndNumbersAreNoDevice)
{
    AudioDeviceTable table;
    table.update({ laptop, { "nameless", "", false } }, {});
    EXPECT_EQ(table.idOf("Kitchen"), 0U);
    EXPECT_EQ(table.idOf({}), 0U);
    EXPECT_TRUE(table.sourceOf(0).isEmpty());
    EXPECT_TRUE(table.sourceOf(99).isEmpty());
    EXPECT_EQ(table.names().at(1), "nameless");
}

} // namespace vornic
