#include "capture/spool/spool_file.h"

#include "base/log.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace vornic {

std::shared_ptr<SpoolFile> SpoolFile::create(int folder, const QByteArray &name)
{
    const int descriptor
        = ::openat(folder, name.constData(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600);
    return descriptor < 0 ? nullptr : std::shared_ptr<SpoolFile>(new SpoolFile(descriptor));
}

std::shared_ptr<SpoolFile> SpoolFile::open(int folder, const QByteArray &name)
{
    // Without O_NONBLOCK a named pipe would be waited for.
    const int descriptor = ::openat(folder, name.constData(), O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    if (descriptor < 0)
        return nullptr;
    std::shared_ptr<SpoolFile> file(new SpoolFile(descriptor));
    struct stat status {
    };
    if (::fstat(descriptor, &status) != 0)
        return nullptr;
    if (!S_ISREG(status.st_mode) || status.st_uid != ::geteuid()) {
        errno = EPERM;
        return nullptr;
    }
    return file;
}

SpoolFile::~SpoolFile()
{
    const int error = errno;
    ::close(m_descriptor);
    errno = error;
}

std::uint64_t SpoolFile::size() const
{
    struct stat status {
    };
    return ::fstat(m_descriptor, &status) == 0 ? static_cast<std::uint64_t>(status.st_size) : 0;
}

bool SpoolFile::write(std::uint64_t offset, QByteArrayView bytes)
{
    qsizetype done = 0;
    while (done < bytes.size()) {
        const ssize_t written = ::pwrite(m_descriptor,
                                         bytes.data() + done,
                                         static_cast<std::size_t>(bytes.size() - done),
                                         static_cast<off_t>(offset) + done);
        if (written > 0) {
            done += written;
        } else if (written == 0 || errno != EINTR) {
            fail("write");
            if (::ftruncate(m_descriptor, static_cast<off_t>(offset)) != 0)
                logMessage(QStringLiteral("Failed to cut the spool off: %1").arg(qt_error_string()));
            return false;
        }
    }
    return true;
}

QByteArray SpoolFile::read(std::uint64_t offset, std::uint64_t length) const
{
    const std::uint64_t end = size();
    if (offset > end || length > end - offset)
        return {};
    QByteArray bytes(static_cast<qsizetype>(length), Qt::Uninitialized);
    qsizetype done = 0;
    while (done < bytes.size()) {
        const ssize_t count = ::pread(m_descriptor,
                                      bytes.data() + done,
                                      static_cast<std::size_t>(bytes.size() - done),
                                      static_cast<off_t>(offset) + done);
        if (count > 0)
            done += count;
        else if (count == 0 || errno != EINTR)
            return {};
    }
    return bytes;
}

bool SpoolFile::sync()
{
    // Some file systems cannot sync; what was written is still there.
    if (::fdatasync(m_descriptor) == 0 || errno == EINVAL || errno == ENOTSUP)
        return true;
    return fail("sync");
}

/// Always false; errno tells why.
bool SpoolFile::fail(const char *what)
{
    int none = 0;
    m_firstError.compare_exchange_strong(none, errno);
    logMessage(QStringLiteral("Failed to %1 the spool: %2").arg(QLatin1StringView(what), qt_error_string()));
    return false;
}

bool SpoolFile::lock() const
{
    return ::flock(m_descriptor, LOCK_EX | LOCK_NB) == 0;
}

void SpoolFile::unlock() const
{
    ::flock(m_descriptor, LOCK_UN);
}

} // namespace vornic
