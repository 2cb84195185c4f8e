#include "app/session/unix_signals.h"

#include <sys/socket.h>
#include <unistd.h>

#include <csignal>

namespace vornic {

namespace {

struct HandledSignal {
    int number;
    int flags;
};

constexpr std::array handledSignals {
    HandledSignal { SIGINT, SA_RESTART },
    HandledSignal { SIGTERM, SA_RESTART },
    HandledSignal { SIGHUP, SA_RESTART },
    HandledSignal { SIGQUIT, SA_RESTART | static_cast<int>(SA_RESETHAND) },
};

std::array<struct sigaction, handledSignals.size()> actionsBefore {};

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
    for (std::size_t i = 0; i < handledSignals.size(); ++i) {
        struct sigaction action {
        };
        action.sa_handler = handleSignal;
        action.sa_flags = handledSignals[i].flags;
        ::sigaction(handledSignals[i].number, nullptr, &actionsBefore[i]);
        if (handledSignals[i].number != SIGHUP || actionsBefore[i].sa_handler != SIG_IGN)
            ::sigaction(handledSignals[i].number, &action, nullptr);
    }
}

UnixSignals::~UnixSignals()
{
    for (std::size_t i = 0; i < handledSignals.size(); ++i)
        ::sigaction(handledSignals[i].number, &actionsBefore[i], nullptr);
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
    while (::read(sockets[1], &number, sizeof number) == 1) {
        if (number == SIGQUIT)
            emit leaveAsked();
        else
            emit terminationAsked(number);
    }
}

} // namespace vornic
