#pragma once

#include <QElapsedTimer>
#include <QProcess>
#include <QStringList>

#include <gtest/gtest.h>

#include <functional>

namespace vornic {

/// A program that a test talks to by lines.
///
/// Made by tests; main thread.
class LineProgram
{
public:
    /// \a scaleFactor is that of the toolkit, as a user sets it; \a platform is where the toolkit shows its windows.
    LineProgram(const QString &program,
                const QStringList &arguments,
                double scaleFactor = 1,
                const QString &platform = QStringLiteral("xcb"))
    {
        m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        QProcessEnvironment variables = QProcessEnvironment::systemEnvironment();
        variables.insert("QT_QPA_PLATFORM", platform);
        variables.insert("QT_SCALE_FACTOR", QString::number(scaleFactor));
        m_process.setProcessEnvironment(variables);
        m_process.start(program, arguments);
    }
    ~LineProgram()
    {
        m_process.closeWriteChannel();
        m_process.terminate();
        if (!m_process.waitForFinished(10'000))
            m_process.kill();
        m_process.waitForFinished();
    }
    LineProgram(const LineProgram &) = delete;
    LineProgram &operator=(const LineProgram &) = delete;

    /// Waits for a line that \a isIt; what was told before it is passed by. Null after some seconds, and at once where
    /// the program has ended.
    QString waitFor(const std::function<bool(const QString &)> &isIt, int maxMs = 20'000)
    {
        QElapsedTimer timer;
        timer.start();
        while (true) {
            while (m_process.canReadLine()) {
                const QString line = QString::fromUtf8(m_process.readLine()).trimmed();
                told += line;
                if (isIt(line))
                    return line;
            }
            if (timer.elapsed() >= maxMs || m_process.state() == QProcess::NotRunning)
                return {};
            m_process.waitForReadyRead(static_cast<int>(maxMs - timer.elapsed()));
        }
    }
    bool waitForLine(const QString &text)
    {
        return !waitFor([&](const QString &line) { return line == text; }).isNull();
    }
    /// Whether a line that begins like this comes within \a maxMs.
    bool tells(const QString &begin, int maxMs)
    {
        return !waitFor([&](const QString &line) { return line.startsWith(begin); }, maxMs).isNull();
    }
    /// Waits for its end; whether it came within some seconds.
    bool hasEnded() { return m_process.waitForFinished(20'000); }
    /// Does not wait for an answer.
    void write(const QString &line)
    {
        m_process.write(line.toUtf8() + '\n');
        m_process.waitForBytesWritten();
    }
    /// Returns once it has done that.
    void say(const QString &line)
    {
        write(line);
        ASSERT_TRUE(waitForLine("ok")) << qPrintable(line);
    }

    QStringList told; ///< all lines so far

private:
    QProcess m_process;
};

} // namespace vornic
