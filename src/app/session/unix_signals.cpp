#include "app/session/unix_signals.h"

#include "app/session/signal_watch.h"

#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <utility>

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
    HandledSignal { SIGUSR1, SA_RESTART },
};

std::array<struct sigaction, handledSignals.size()> actionsBefore {};

/// The handler may only do what is safe in a signal: it writes the number to the first socket, and to the watch where the
/// program is to end. Neither may hold it up, and whoever was interrupted keeps its errno.
std::array<int, 2> sockets { -1, -1 };
int watched = -1;

void handleSignal(int number)
{
    const int error = errno;
    const auto byte = static_cast<unsigned char>(number);
    static_cast<void>(!::write(sockets[0], &byte, sizeof byte));
    if (watched >= 0 && number != SIGUSR1)
        static_cast<void>(!::send(watched, &byte, sizeof byte, MSG_DONTWAIT | MSG_NOSIGNAL));
    errno = error;
}

} // namespace

UnixSignals::UnixSignals(std::function<void()> unheard, QObject *parent)
    : QObject(parent)
    , m_watch(unheard ? std::make_unique<SignalWatch>(std::move(unheard)) : nullptr)
{
    watched = m_watch ? m_watch->descriptor() : -1;
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
    watched = -1;
    m_watch.reset();
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
        if (number == SIGUSR1) {
            emit pauseAsked();
            continue;
        }
        if (m_watch)
            m_watch->heard();
        if (number == SIGQUIT)
            emit leaveAsked();
        else
            emit terminationAsked(number);
    }
}

} // namespace vornic
