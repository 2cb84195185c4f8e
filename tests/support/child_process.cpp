#include "support/child_process.h"

#include "support/wait_until.h"

#include <QByteArray>
#include <QFile>
#include <QList>

#include <fcntl.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <vector>

namespace vornic::test {

namespace {

QList<QByteArray> bytesOf(const QStringList &strings)
{
    QList<QByteArray> bytes;
    for (const QString &string : strings)
        bytes += string.toLocal8Bit();
    return bytes;
}

std::vector<char *> pointersTo(QList<QByteArray> &strings)
{
    std::vector<char *> pointers;
    for (QByteArray &string : strings)
        pointers.push_back(string.data());
    pointers.push_back(nullptr);
    return pointers;
}

QList<QByteArray> environmentWith(const QStringList &additions)
{
    QList<QByteArray> entries = bytesOf(additions);
    const auto isReplaced = [&](const QByteArray &entry) {
        const QByteArray name = entry.left(entry.indexOf('=') + 1);
        return std::any_of(entries.begin(), entries.end(), [&](const auto &e) { return e.startsWith(name); });
    };
    QList<QByteArray> result;
    for (char **entry = environ; *entry; ++entry) {
        if (!isReplaced(*entry))
            result += QByteArray(*entry);
    }
    return result + entries;
}

/// In the new process, where only calls that are safe in a signal handler may be made.
[[noreturn]] void become(char *const *arguments, char *const *environment, pid_t parent, int inherited)
{
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != parent)
        _exit(126);
    if (inherited >= 0)
        fcntl(inherited, F_SETFD, 0);
    execvpe(arguments[0], arguments, environment);
    _exit(127);
}

} // namespace

QStringList printingTo(const QString &log, const QStringList &command)
{
    const QString append = QStringLiteral("log=$1; shift; exec \"$@\" >> \"$log\" 2>&1");
    return QStringList { "sh", "-c", append, "sh", log } + command;
}

QString contentsOf(const QString &file)
{
    QFile opened(file);
    return opened.open(QIODevice::ReadOnly) ? QString::fromUtf8(opened.readAll()).trimmed() : QString();
}

std::unique_ptr<ChildProcess>
ChildProcess::start(const QStringList &command, const QStringList &environment, int inherited)
{
    QList<QByteArray> arguments = bytesOf(command);
    QList<QByteArray> variables = environmentWith(environment);
    const std::vector<char *> argumentPointers = pointersTo(arguments);
    const std::vector<char *> variablePointers = pointersTo(variables);
    const pid_t parent = getpid();
    const pid_t pid = fork();
    if (pid == 0)
        become(argumentPointers.data(), variablePointers.data(), parent, inherited);
    return pid > 0 ? std::unique_ptr<ChildProcess>(new ChildProcess(pid)) : nullptr;
}

ChildProcess::ChildProcess(pid_t pid)
    : m_pid(pid)
{
}

ChildProcess::~ChildProcess()
{
    stop();
}

bool ChildProcess::reap(bool blocks)
{
    int status = 0;
    if (!m_isReaped && waitpid(m_pid, &status, blocks ? 0 : WNOHANG) == m_pid) {
        m_isReaped = true;
        m_exitStatus = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    }
    return m_isReaped;
}

bool ChildProcess::isRunning()
{
    return !reap(false);
}

int ChildProcess::wait()
{
    reap(true);
    return m_exitStatus;
}

void ChildProcess::stop(int signalNumber)
{
    if (!isRunning())
        return;
    kill(m_pid, signalNumber);
    if (!waitUntil([this] { return !isRunning(); }, std::chrono::seconds(5))) {
        kill(m_pid, SIGKILL);
        reap(true);
    }
}

} // namespace vornic::test
