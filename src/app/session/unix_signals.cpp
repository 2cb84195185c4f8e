#include "app/session/unix_signals.h"

#include <sys/socket.h>
#include <unistd.h>

#include <csignal>

namespace vornic {

namespace {

constexpr std::array handledSignals { SIGINT, SIGTERM, SIGHUP };

/// The handler may only do what is safe in a signal: it writes the number to the first socket.
std::array<int, 2> sockets { -1, -1 };

void handleSignal(int number)
{
    const auto byte = static_cast<unsigned char>(number);
    static_cast<void>(!::write(sockets[0], &byte, sizeof byte));
}

} // namespace

UnixSignals::UnixSignals(QObject *parent)
    : QObject(parent)
{
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0, sockets.data()) != 0)
        return;
    m_notifier = std::make_unique<QSocketNotifier>(sockets[1], QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &UnixSignals::readSignal);
    struct sigaction action {
    };
    action.sa_handler = handleSignal;
    action.sa_flags = SA_RESTART;
    for (const int number : handledSignals)
        ::sigaction(number, &action, nullptr);
}

UnixSignals::~UnixSignals()
{
    for (const int number : handledSignals)
        std::signal(number, SIG_DFL);
    m_notifier.reset();
    for (int &socket : sockets) {
        if (socket >= 0)
            ::close(socket);
        socket = -1;
    }
}

void UnixSignals::readSignal()
{
    unsigned char number = 0;
    while (::read(sockets[1], &number, sizeof number) == 1)
        emit terminationAsked(number);
}

} // namespace vornic
