#include "pictures/picture_file.h"
#include "support/named_pipe.h"
#include "support/test_pictures.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace vornic {
namespace {

class PictureFile : public testing::Test
{
protected:
    [[nodiscard]] QString path(const char *name) const { return folder.filePath(QString::fromLatin1(name)); }
    /// Reads what cannot be read; the reason.
    [[nodiscard]] static QString reasonAgainst(const QString &path)
    {
        QString reason;
        EXPECT_FALSE(isPictureFile(path));
        EXPECT_TRUE(readPictureFile(path, &reason).isNull());
        return reason;
    }

    QTemporaryDir folder;
};

TEST_F(PictureFile, IsWhatItsContentsSay)
{
    const QImage picture = test::noisePicture({ 9, 6 }, 1);
    ASSERT_TRUE(picture.save(path("picture.jpg"), "PNG"));
    EXPECT_TRUE(isPictureFile(path("picture.jpg")));
    QString reason = QStringLiteral("of another time");
    EXPECT_EQ(readPictureFile(path("picture.jpg"), &reason).image(), Picture(picture).image());
    EXPECT_EQ(reason, QString());
}

TEST_F(PictureFile, MayBeALinkToAFile)
{
    const QImage picture = test::noisePicture({ 9, 6 }, 1);
    ASSERT_TRUE(picture.save(path("picture.png")));
    ASSERT_TRUE(QFile::link(path("picture.png"), path("link")));
    EXPECT_TRUE(isPictureFile(path("link")));
    EXPECT_EQ(readPictureFile(path("link")).image(), Picture(picture).image());
}

TEST_F(PictureFile, ANamedPipeIsNotOpened)
{
    test::NamedPipe pipe(path("pipe.png"));
    ASSERT_TRUE(pipe.isMade());
    ASSERT_TRUE(QFile::link(path("pipe.png"), path("link")));
    EXPECT_EQ(reasonAgainst(path("pipe.png")), "it is not a regular file");
    EXPECT_EQ(reasonAgainst(path("link")), "it is not a regular file");
    EXPECT_FALSE(pipe.wasOpened());
}

TEST_F(PictureFile, APipeWhoseNameIsLikeThatOfAMissingFileIsNotOpened)
{
    // The toolkit looks for a missing file under names with the suffixes of pictures, too.
    test::NamedPipe pipe(path("logo.png"));
    ASSERT_TRUE(pipe.isMade());
    EXPECT_EQ(reasonAgainst(path("logo")), "there is no such file");
    EXPECT_FALSE(pipe.wasOpened());
}

TEST_F(PictureFile, WhatCannotBeReadHasAReason)
{
    EXPECT_EQ(reasonAgainst(QString()), "there is no such file");
    EXPECT_EQ(reasonAgainst(folder.path()), "it is not a regular file");
    EXPECT_EQ(reasonAgainst(QStringLiteral("/dev/zero")), "it is not a regular file");
    QFile text(path("text.png"));
    ASSERT_TRUE(text.open(QIODevice::WriteOnly) && text.write("none") == 4);
    text.close();
    EXPECT_FALSE(reasonAgainst(text.fileName()).isEmpty());
}

} // namespace
} // namespace vornic
