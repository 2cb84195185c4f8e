#include "base/standard_output.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <cerrno>

namespace vornic {

void occupyClosedStandardDescriptors()
{
    for (const int descriptor : { STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO }) {
        if (::fcntl(descriptor, F_GETFD) >= 0)
            continue;
        // The lowest free number is this one. It is opened the wrong way round, so that a write fails as it would have.
        const int way = descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY;
        static_cast<void>(::open("/dev/null", way));
    }
}

bool writeToStandardOutput(const QByteArray &text)
{
    for (qsizetype done = 0; done < text.size();) {
        const ssize_t written
            = ::write(STDOUT_FILENO, text.constData() + done, static_cast<std::size_t>(text.size() - done));
        if (written > 0) {
            done += written;
        } else if (written < 0 && errno == EAGAIN) {
            pollfd watched { STDOUT_FILENO, POLLOUT, 0 };
            ::poll(&watched, 1, -1);
        } else if (written == 0 || errno != EINTR) {
            return false;
        }
    }
    return true;
}

} // namespace vornic
