#pragma once

#include "movie_test_support.h"
#include "support/screen_painter.h"
#include "support/test_pictures.h"
#include "support/xvfb_server.h"

#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QProcessEnvironment>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <csignal>
#include <functional>
#include <memory>
#include <thread>

namespace vornic {

/// The built program, with folders and a display of the test's own.
class RecordingTest : public ::testing::Test
{
protected:
    struct Result {
        int status = -1;
        QString output;
        QString error;
    };

    void startServer(QSize size = { 1280, 720 }, const QStringList &arguments = {})
    {
        server = test::XvfbServer::start({ size, 24, arguments });
        ASSERT_TRUE(server);
        painter = test::ScreenPainter::connect();
        ASSERT_TRUE(painter);
    }

    QProcessEnvironment environment() const
    {
        QProcessEnvironment variables = QProcessEnvironment::systemEnvironment();
        variables.insert("XDG_CACHE_HOME", folder.filePath("cache"));
        variables.insert("XDG_CONFIG_HOME", folder.filePath("config"));
        return variables;
    }

    std::unique_ptr<QProcess> start(const QString &program, const QStringList &arguments) const
    {
        auto process = std::make_unique<QProcess>();
        process->setProcessEnvironment(environment());
        process->setWorkingDirectory(folder.path());
        process->start(program, arguments);
        return process;
    }

    static Result finish(QProcess &process)
    {
        Result result;
        if (!process.waitForFinished(120'000)) {
            process.kill();
            process.waitForFinished();
            return result;
        }
        result.status = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
        result.output = QString::fromLocal8Bit(process.readAllStandardOutput());
        result.error = QString::fromUtf8(process.readAllStandardError());
        return result;
    }

    std::unique_ptr<QProcess> startVornic(const QStringList &arguments) const
    {
        return start(QStringLiteral(VORNIC_PROGRAM), arguments);
    }

    /// Runs the program to its end. Where the machine that tests has little disk, recordings go on.
    Result vornic(const QStringList &arguments) const { return finish(*startVornic(arguments)); }

    Result record(const QStringList &options, const QString &file = "o.mp4") const
    {
        return vornic(QStringList { "record", "--ignore-low-space" } + options + QStringList { file });
    }

    /// Reads standard error until it holds \a text; false after half a minute.
    static bool waitForText(QProcess &process, const QString &text, QString &seen)
    {
        QElapsedTimer timer;
        timer.start();
        while (!seen.contains(text) && timer.elapsed() < 30'000) {
            process.waitForReadyRead(50);
            seen += QString::fromUtf8(process.readAllStandardError());
        }
        return seen.contains(text);
    }

    QString movie(const QString &file = "o.mp4") const { return folder.filePath(file); }
    /// What a folder holds, hidden files too.
    QStringList entries(const QString &path = {}) const
    {
        return QDir(folder.filePath(path)).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    }
    static QSize sizeOf(const QString &file)
    {
        const QJsonObject video = testing::streamOf(testing::probe(file), "video");
        return { video["width"].toInt(), video["height"].toInt() };
    }
    static double secondsOf(const QString &file)
    {
        return testing::streamOf(testing::probe(file), "video")["duration"].toString().toDouble();
    }

    QTemporaryDir folder;
    std::unique_ptr<test::XvfbServer> server;
    std::unique_ptr<test::ScreenPainter> painter;
};

/// The largest difference of a channel in the inner part of \a patch from \a colour. At the edges, as far as
/// a compression block of 16 pixels reaches, no lossy picture is flat.
inline int differenceFrom(const QImage &picture, const QRect &patch, QRgb colour)
{
    int most = 0;
    for (int y = patch.top() + 16; y <= patch.bottom() - 16; ++y)
        for (int x = patch.left() + 16; x <= patch.right() - 16; ++x) {
            const QRgb pixel = picture.pixel(x, y);
            most = std::max({ most,
                              std::abs(qRed(pixel) - qRed(colour)),
                              std::abs(qGreen(pixel) - qGreen(colour)),
                              std::abs(qBlue(pixel) - qBlue(colour)) });
        }
    return most;
}

} // namespace vornic
