#include "app/session/stored_options.h"
#include "base/log.h"
#include "base/user_defaults.h"
#include "display/fake_display.h"
#include "options/VNOption.h"

#include <QStringList>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace vornic {
namespace {

class StoredOptionsTest : public testing::Test
{
protected:
    StoredOptionsTest()
    {
        qputenv("XDG_CONFIG_HOME", m_home.path().toUtf8());
        setMainDisplay(std::make_shared<FakeDisplay>(QSize(1440, 900)));
        setLogSink([this](const QString &line) { m_logged += line; });
    }
    ~StoredOptionsTest() override
    {
        setLogSink({});
        setMainDisplay(nullptr);
    }

    QTemporaryDir m_home;
    QStringList m_logged;
};

TEST_F(StoredOptionsTest, TheFirstStartHasDefaults)
{
    const auto options = loadOptions();
    ASSERT_TRUE(options);
    EXPECT_EQ(options->selectedRect(), QRectF(320, 150, 800, 600));
}

TEST_F(StoredOptionsTest, WhatIsStoredComesBack)
{
    VNOption options;
    options.setRecordRegion(1);
    storeOptions(options);
    EXPECT_EQ(loadOptions()->recordRegion(), 1);
}

TEST_F(StoredOptionsTest, BrokenOnesYieldNoneOnceAndAreSetAside)
{
    for (const QByteArray &broken :
         { QByteArray("broken"), QByteArray(), QByteArray("\xA0rest", 5), QByteArray(1000, '\xFF') }) {
        user_defaults::setValue("com.kavlor.options", broken);
        m_logged.clear();
        EXPECT_FALSE(loadOptions());
        EXPECT_EQ(m_logged.size(), 1);
        EXPECT_EQ(user_defaults::value("com.kavlor.options.broken").toByteArray(), broken);
        EXPECT_TRUE(loadOptions());
        EXPECT_EQ(m_logged.size(), 1);
    }
}

} // namespace
} // namespace vornic
