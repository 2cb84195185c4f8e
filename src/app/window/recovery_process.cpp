#include "app/window/recovery_process.h"

#include <QByteArrayList>
#include <QCoreApplication>
#include <QFile>
#include <QString>

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <utility>
#include <vector>

namespace vornic {

namespace {

/// What a new program is started with: texts that end with a zero, and for exec() their addresses behind which a null is.
class ExecTexts
{
public:
    explicit ExecTexts(QByteArrayList texts)
        : m_texts(std::move(texts))
    {
        for (QByteArray &text : m_texts)
            m_addresses.push_back(text.data());
        m_addresses.push_back(nullptr);
    }

    [[nodiscard]] char *const *data() const { return m_addresses.data(); }

private:
    QByteArrayList m_texts;
    std::vector<char *> m_addresses;
};

/// That of this process without the display, which would be waited for where it is there but does not answer.
QByteArrayList environmentWithoutDisplay()
{
    QByteArrayList environment;
    for (char **entry = environ; *entry; ++entry) {
        if (const QByteArray text(*entry); !text.startsWith("DISPLAY="))
            environment += text;
    }
    return environment;
}

/// In the new process, where only what is safe in a signal may be called: other threads may have held locks. What it has
/// inherited, the lock of the recording too, is closed by the new program's start.
[[noreturn]] void becomeProgram(int end, const ExecTexts &arguments, const ExecTexts &environment)
{
    ::setsid(); // what ends the terminal's programs does not end this one
    char byte = 0;
    while (::read(end, &byte, 1) < 0 && errno == EINTR) { } // until the other end closes with its process
    ::execve(arguments.data()[0], arguments.data(), environment.data());
    ::_exit(127);
}

} // namespace

bool recoverAfterThisProcess(const QString &id)
{
    const ExecTexts arguments(
        { QFile::encodeName(QCoreApplication::applicationFilePath()), "recover", id.toLatin1() });
    const ExecTexts environment(environmentWithoutDisplay());
    std::array<int, 2> pipe { -1, -1 };
    if (::pipe2(pipe.data(), O_CLOEXEC) != 0)
        return false;
    const pid_t child = ::fork();
    if (child == 0) {
        ::close(pipe[1]);
        becomeProgram(pipe[0], arguments, environment);
    }
    ::close(pipe[0]);
    return child > 0; // the other end stays open for as long as this process lives
}

} // namespace vornic
