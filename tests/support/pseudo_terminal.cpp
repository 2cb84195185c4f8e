#include "support/pseudo_terminal.h"

#include <QFile>

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cstdlib>

namespace vornic::test {

PseudoTerminal::PseudoTerminal()
    : m_controller(::posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC))
{
    if (m_controller >= 0 && ::grantpt(m_controller) == 0 && ::unlockpt(m_controller) == 0)
        m_device = ::open(QFile::encodeName(device()).constData(), O_RDWR | O_NOCTTY | O_CLOEXEC);
}

PseudoTerminal::~PseudoTerminal()
{
    if (m_device >= 0)
        ::close(m_device);
    if (m_controller >= 0)
        ::close(m_controller);
}

QString PseudoTerminal::device() const
{
    std::array<char, 64> path {};
    return m_controller >= 0 && ::ptsname_r(m_controller, path.data(), path.size()) == 0
        ? QFile::decodeName(path.data())
        : QString();
}

const QByteArray &PseudoTerminal::written()
{
    std::array<char, 4096> bytes {};
    for (ssize_t count = 0; (count = ::read(m_controller, bytes.data(), bytes.size())) > 0;)
        m_written.append(bytes.data(), count);
    return m_written;
}

} // namespace vornic::test
