#include "base/native_path.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <random>

namespace vornic {
namespace {

TEST(NativePath, ATextIsItsUtf8)
{
    for (const char *path :
         { "", "/", "a.mp4", "/tmp/Größe/\xE6\x97\xA5\xE6\x9C\xAC/\xF0\x9F\x8E\xAC.mp4" }) {
        EXPECT_EQ(pathFromNative(path), QString::fromUtf8(path));
        EXPECT_EQ(nativePath(QString::fromUtf8(path)), path);
    }
}

TEST(NativePath, ALatin1NameKeepsItsByte)
{
    const QString path = pathFromNative("/tmp/Gr\366\337e.mp4");
    EXPECT_EQ(path.size(), 14);
    EXPECT_TRUE(path.startsWith("/tmp/Gr"));
    EXPECT_TRUE(path.endsWith("e.mp4"));
    EXPECT_EQ(nativePath(path), "/tmp/Gr\366\337e.mp4");
}

TEST(NativePath, EveryRowOfBytesComesBack)
{
    // Also those of surrogates, of overlong forms, beyond U+10FFFF, and the byte order mark.
    for (const QByteArray &bytes : { QByteArray("\357\273\277a"),
                                     QByteArray("\xED\xB2\x80"),
                                     QByteArray("\xED\xA0\x80\xED\xB0\x80"),
                                     QByteArray("\xC0\x80"),
                                     QByteArray("\xF4\x90\x80\x80"),
                                     QByteArray("\xF0\x9F\x8E\xAC\x80\xF0\x9F\x8E"),
                                     QByteArray("\x80\xF0\x9F\x8E\xAC") })
        EXPECT_EQ(nativePath(pathFromNative(bytes)).toHex(), bytes.toHex());
    std::mt19937 random(1);
    for (int turn = 0; turn < 100000; ++turn) {
        QByteArray bytes;
        for (unsigned count = random() % 8; count > 0; --count)
            bytes += static_cast<char>((random() % 2 == 0 ? 0x80U : 0U) | (1 + random() % 0x7F));
        ASSERT_EQ(nativePath(pathFromNative(bytes)).toHex(), bytes.toHex());
    }
}

TEST(NativePath, AUriTakesEveryByteThroughText)
{
    const QString path = pathFromNative("/tmp/100% Gr\366\337e #1.mp4");
    EXPECT_EQ(fileUri(path), "file:///tmp/100%25%20Gr%F6%DFe%20%231.mp4");
    EXPECT_EQ(pathFromFileUri(fileUri(path)), path);
    EXPECT_EQ(pathFromFileUri("/tmp/100%25.mp4"), "/tmp/100%25.mp4");
}

TEST(NativePath, FolderAndName)
{
    EXPECT_EQ(folderOfPath("a.mp4"), ".");
    EXPECT_EQ(folderOfPath("/a.mp4"), "/");
    EXPECT_EQ(folderOfPath("b/c/a.mp4"), "b/c");
    EXPECT_EQ(nameOfPath("a.mp4"), "a.mp4");
    EXPECT_EQ(nameOfPath("/b/a.mp4"), "a.mp4");
}

TEST(NativePath, WhatStandsAtOne)
{
    const QTemporaryDir folder;
    const QString inside = folder.path() + u'/' + pathFromNative("\xFF");
    EXPECT_FALSE(isTaken(inside));
    EXPECT_TRUE(isFolder(folder.path()));
    ASSERT_TRUE(QFile::link("/nowhere/at/all", folder.filePath("link")));
    EXPECT_TRUE(isTaken(folder.filePath("link")));
    EXPECT_FALSE(isThere(folder.filePath("link")));
    EXPECT_FALSE(isFolder(folder.filePath("link")));
    EXPECT_TRUE(isThere(folder.path()));
    ASSERT_TRUE(QFile::link(folder.path(), folder.filePath("self")));
    EXPECT_TRUE(isFolder(folder.filePath("self")));
}

} // namespace
} // namespace vornic
