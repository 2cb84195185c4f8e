#include "desktop/open_document.h"
#include "support/wait_until.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace vornic {
namespace {

using test::waitUntil;

/// A folder of programs that holds nothing but, if the test wants it, an opener.
class OpenDocumentTest : public testing::Test
{
protected:
    OpenDocumentTest() { qputenv("PATH", m_programs.path().toUtf8()); }
    ~OpenDocumentTest() override { qputenv("PATH", m_path); }

    /// It writes down what it is to open, and ends with \a status.
    void makeOpener(int status) const
    {
        QFile opener(m_programs.filePath("xdg-open"));
        ASSERT_TRUE(opener.open(QIODevice::WriteOnly));
        opener.write("#!/bin/sh\nprintf %s \"$1\" > \"" + report().toUtf8() + "\"\nexit "
                     + QByteArray::number(status) + "\n");
        opener.setPermissions(QFile::ReadOwner | QFile::ExeOwner);
    }
    [[nodiscard]] QString report() const { return m_programs.filePath("report"); }
    [[nodiscard]] QString opened() const
    {
        QFile file(report());
        return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
    }

    const QByteArray m_path = qgetenv("PATH");
    const QTemporaryDir m_programs;
    int failures = 0;
};

TEST_F(OpenDocumentTest, TheDesktopsOpenerGetsTheFile)
{
    makeOpener(0);
    openDocument("/some where/mövie.mp4", [this] { ++failures; });
    EXPECT_TRUE(waitUntil([this] { return opened() == "/some where/mövie.mp4"; }));
    EXPECT_FALSE(waitUntil([this] { return failures > 0; }, std::chrono::milliseconds(300)));
}

TEST_F(OpenDocumentTest, AFileThatNoProgramOpensHasFailed)
{
    makeOpener(3);
    openDocument("/movie.mp4", [this] { ++failures; });
    EXPECT_TRUE(waitUntil([this] { return failures == 1; }));
}

TEST_F(OpenDocumentTest, WithoutAnOpenerItHasFailed)
{
    openDocument("/movie.mp4", [this] { ++failures; });
    EXPECT_TRUE(waitUntil([this] { return failures == 1; }));
}

} // namespace
} // namespace vornic
