#pragma once

#include "movie_test_support.h"
#include "support/built_program.h"
#include "support/wait_until.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QProcessEnvironment>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <csignal>
#include <memory>

namespace vornic {

/// The built program, with folders of the test's own.
class ProgramTest : public ::testing::Test
{
protected:
    struct Result {
        int status = -1;
        QString output;
        QString error;
    };

    virtual QProcessEnvironment environment() const
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

    /// A process that has ended has the id 0, and kill() takes that for the whole group: all tests that run beside it.
    static void signal(const QProcess &process, int number)
    {
        ASSERT_GT(process.processId(), 0) << "the program has ended";
        ::kill(static_cast<pid_t>(process.processId()), number);
    }

    static Result finish(QProcess &process)
    {
        Result result;
        // One whose end was met while its output was read has nothing to be waited for.
        if (process.state() != QProcess::NotRunning && !process.waitForFinished(120'000)) {
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
        return start(test::vornicProgram(), arguments);
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
        return test::waitUntil(
            [&] {
                process.waitForReadyRead(10);
                seen += QString::fromUtf8(process.readAllStandardError());
                return seen.contains(text);
            },
            std::chrono::seconds(30));
    }

    /// Lets \a time of a recording pass: how long it is, is what is tested.
    static void letPass(std::chrono::milliseconds time)
    {
        const QDeadlineTimer end(time);
        test::waitUntil([&end] { return end.hasExpired(); });
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
    static double secondsOf(const QString &file, const QString &type = QStringLiteral("video"))
    {
        return testing::streamOf(testing::probe(file), type)["duration"].toString().toDouble();
    }

    QTemporaryDir folder;
};

} // namespace vornic
