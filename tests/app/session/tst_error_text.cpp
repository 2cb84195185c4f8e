#include "app/session/error_text.h"
#include "base/error.h"

#include <QCoreApplication>
#include <QDir>
#include <QTranslator>

#include <gtest/gtest.h>

#include <array>

namespace vornic::testing {
namespace {

struct Row {
    Error error;
    const char *sentence;
};

using enum ErrorKind;
using enum ErrorSubject;

const QString movie = QStringLiteral("/x/o.mp4");
const QString reason = QStringLiteral("Input/output error");

const std::array rows {
    Row { { Unavailable, VideoEncoder, {}, {} },
          "The H.264 video encoder (libx264) is missing on this system." },
    Row { { Unavailable, AudioEncoder, {}, {} }, "The AAC audio encoder is missing on this system." },
    Row { { Unsupported, VideoEncoder, QStringLiteral("7"), {} },
          "There is no video encoder with the number 7." },
    Row { { Unsupported, AudioEncoder, QStringLiteral("101"), {} },
          "There is no audio encoder with the number 101." },
    Row { { Unsupported, MovieFormat, QStringLiteral("2"), {} },
          "There is no movie format with the number 2." },
    Row { { PermissionDenied, File, movie, reason },
          "You have no permission to write movies to the folder /x." },
    Row { { ReadOnlyVolume, File, movie, reason }, "The folder /x lies on a volume that can only be read." },
    Row { { FolderMissing, File, movie, reason }, "The folder /x does not exist." },
    Row { { DiskFull, File, movie, reason },
          "The disk is full: the movie could not be written to /x/o.mp4." },
    Row { { FileTooLarge, File, movie, reason },
          "The movie is larger than the file system, or a limit of this session, allows: it could not be "
          "written to "
          "/x/o.mp4." },
    Row { { OutOfMemory, File, movie, {} }, "There is not enough memory to write the movie." },
    Row { { Incomplete, File, movie, QStringLiteral("30 of 31 frames") },
          "The movie that was written to /x/o.mp4 is not whole." },
    Row { { Cancelled, File, movie, reason }, "The movie was not made: its writing was ended." },
    Row { { Empty, Recording, {}, {} }, "The recording holds no frames." },
    Row { { Failed, File, movie, reason },
          "The movie could not be written to /x/o.mp4: Input/output error." },
    Row { { Failed, File, movie, {} }, "The movie could not be written to /x/o.mp4: no reason was given." },
    Row { { Failed, VideoEncoder, {}, reason }, "The video encoder failed: Input/output error." },
    Row { { Failed, VideoEncoder, QStringLiteral("0 x 48"), reason },
          "The video encoder cannot make a movie of 0 x 48 pixels: Input/output error." },
    Row { { Failed, AudioEncoder, {}, reason }, "The sound could not be encoded: Input/output error." },
};

TEST(ErrorText, everyErrorHasItsSentence)
{
    for (const Row &row : rows)
        EXPECT_EQ(errorText(row.error).toStdString(), row.sentence);
}

TEST(ErrorText, aFolderIsNamedSoThatItCanBeFound)
{
    const std::string above = QDir::cleanPath(QDir::current().absoluteFilePath("..")).toStdString();
    for (const ErrorKind kind : { PermissionDenied, ReadOnlyVolume, FolderMissing }) {
        const std::string sentence
            = errorText({ kind, File, QStringLiteral("../o.mp4"), reason }).toStdString();
        EXPECT_NE(sentence.find("he folder " + above), std::string::npos) << sentence;
    }
}

TEST(ErrorText, everySentenceIsTranslated)
{
    int argumentCount = 1;
    std::array<char, 11> name { "error-text" };
    char *arguments = name.data();
    const QCoreApplication application(argumentCount, &arguments);
    QTranslator german;
    ASSERT_TRUE(german.load(QStringLiteral(":/i18n/vornic_de.qm")));
    ASSERT_TRUE(QCoreApplication::installTranslator(&german));
    for (const Row &row : rows) {
        const std::string translated = errorText(row.error).toStdString();
        EXPECT_NE(translated, row.sentence);
        EXPECT_EQ(translated.find('%'), std::string::npos) << translated;
    }
}

} // namespace
} // namespace vornic::testing
