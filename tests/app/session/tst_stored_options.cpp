#include "app/session/stored_options.h"
#include "base/log.h"
#include "base/user_defaults.h"
#include "display/fake_display.h"
#include "options/VNOption.h"

#include <QDir>
#include <QFile>
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
    EXPECT_TRUE(storeOptions(options));
    EXPECT_EQ(whyOptionsCannotBeStored(), QString());
    EXPECT_EQ(loadOptions()->recordRegion(), 1);
}

TEST_F(StoredOptionsTest, OnesThatCannotBeStoredAreTold)
{
    const VNOption options;
    ASSERT_TRUE(storeOptions(options));
    // A folder in the file's place stops the superuser too.
    const QString file = user_defaults::location();
    ASSERT_TRUE(QFile::remove(file) && QDir().mkpath(file + "/in/the/way"));
    EXPECT_FALSE(storeOptions(options));
    const QString sentence = "The options cannot be saved: " + file + " cannot be written to.";
    EXPECT_EQ(m_logged, QStringList { sentence });
    EXPECT_EQ(whyOptionsCannotBeStored(), sentence);
    ASSERT_TRUE(QDir(file).removeRecursively());
    EXPECT_TRUE(storeOptions(options));
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
