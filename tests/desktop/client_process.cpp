#include "client_process.h"

#include "support/built_program.h"
#include "support/private_bus.h"

#include <QProcessEnvironment>

#include <gtest/gtest.h>
#include <signal.h>

namespace vornic::test {

ClientProcess::ClientProcess(const QStringList &arguments, const QStringList &environment)
{
    QProcessEnvironment variables = QProcessEnvironment::systemEnvironment();
    for (const QString &entry : environment) {
        if (const qsizetype equals = entry.indexOf('='); equals >= 0)
            variables.insert(entry.left(equals), entry.mid(equals + 1));
        else
            variables.remove(entry);
    }
    m_process.setProcessEnvironment(variables);
    m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    m_process.start(program(), arguments);
}

ClientProcess::~ClientProcess()
{
    m_process.kill();
    m_process.waitForFinished();
}

QString ClientProcess::program()
{
    return builtProgram("tests/desktop/vornic_desktop_client");
}

QString ClientProcess::nextLine()
{
    const bool isThere
        = eventually([&] { return m_process.canReadLine() || m_process.state() == QProcess::NotRunning; });
    return isThere ? QString::fromUtf8(m_process.readLine()).trimmed() : QString();
}

void ClientProcess::signal(int signalNumber)
{
    ASSERT_GT(m_process.processId(), 0) << "the program has ended"; // 0 is the whole group for kill()
    ::kill(static_cast<pid_t>(m_process.processId()), signalNumber);
}

int ClientProcess::end()
{
    m_process.closeWriteChannel();
    const bool hasEnded = eventually([&] { return m_process.state() == QProcess::NotRunning; });
    return hasEnded && m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode() : -1;
}

} // namespace vornic::test
