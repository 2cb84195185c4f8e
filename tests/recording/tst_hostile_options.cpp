#include "options/hostile_archives.h"
#include "record_window_fixture.h"

#include <QSettings>

namespace vornic {
namespace {

/// The program with stored options that nobody has chosen.
class HostileOptions : public RecordWindowTest
{
protected:
    void SetUp() override
    {
        startServer();
        openbox = server->startOpenbox();
        ASSERT_TRUE(openbox);
    }
    void store(const QByteArray &archive) const
    {
        QSettings settings(folder.filePath("config/kavlor/Vornic.conf"), QSettings::IniFormat);
        settings.setValue("com.kavlor.options", archive);
    }
    /// Ends when it is asked to, and stores what it has read of \a archive, in a way of its own.
    void expectEnds(const QByteArray &archive)
    {
        program->terminate();
        EXPECT_EQ(finish(*program).status, 0);
        QSettings settings(folder.filePath("config/kavlor/Vornic.conf"), QSettings::IniFormat);
        EXPECT_NE(settings.value("com.kavlor.options").toByteArray(), archive);
        EXPECT_FALSE(settings.contains("com.kavlor.options.broken")) << "the options were not even decoded";
    }
    void startAndEnd(const std::vector<test::HostileArchive> &archives)
    {
        for (const test::HostileArchive &archive : archives) {
            SCOPED_TRACE(archive.name);
            store(archive.bytes);
            ASSERT_NO_FATAL_FAILURE(startProgram());
            expectEnds(archive.bytes);
        }
    }
};

TEST_F(HostileOptions, WithAnyRectangleTheProgramStartsAndEnds)
{
    startAndEnd(test::hostileRectangles());
}

TEST_F(HostileOptions, WithAnyTextTheProgramStartsAndEnds)
{
    startAndEnd(test::hostileTexts());
}

TEST_F(HostileOptions, WithAnyNumbersTheProgramStartsAndEnds)
{
    startAndEnd(test::hostileNumbers());
}

TEST_F(HostileOptions, WithAnyPictureTheProgramStartsAndEnds)
{
    startAndEnd(test::hostilePictures());
}

} // namespace
} // namespace vornic
