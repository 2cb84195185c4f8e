#include "app/session/start_settings.h"
#include "base/user_defaults.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace vornic {
namespace {

class StartSettingsTest : public testing::Test
{
protected:
    StartSettingsTest() { qputenv("XDG_CONFIG_HOME", m_home.path().toUtf8()); }

    QTemporaryDir m_home;
};

TEST_F(StartSettingsTest, WithoutStoredValuesNothingIsCountedDownAndThereIsAKey)
{
    EXPECT_EQ(start_settings::countdownSeconds(), 0);
    EXPECT_EQ(start_settings::shortcut(), "Ctrl+Alt+R");
    EXPECT_EQ(start_settings::pauseShortcut(), "Ctrl+Alt+P");
}

TEST_F(StartSettingsTest, WhatIsChosenIsStored)
{
    start_settings::setCountdownSeconds(5);
    start_settings::setShortcut("Meta+F9");
    start_settings::setPauseShortcut("Meta+F8");
    EXPECT_EQ(start_settings::pauseShortcut(), "Meta+F8");
    EXPECT_EQ(start_settings::countdownSeconds(), 5);
    EXPECT_EQ(start_settings::shortcut(), "Meta+F9");
}

TEST_F(StartSettingsTest, NoKeyIsAChoiceToo)
{
    start_settings::setShortcut({});
    EXPECT_TRUE(start_settings::shortcut().isEmpty());
}

TEST_F(StartSettingsTest, AStoredCountdownThatCannotBeChosenCountsAsNone)
{
    for (const QVariant &stored : { QVariant(4), QVariant(-3), QVariant(1'000'000), QVariant("soon") }) {
        user_defaults::setValue("com.kavlor.countdown", stored);
        EXPECT_EQ(start_settings::countdownSeconds(), 0) << stored.toString().toStdString();
    }
}

} // namespace
} // namespace vornic
