#include "codec/part_file.h"

#include "base/native_path.h"
#include "codec/movie_failure.h"

#include <QByteArrayList>
#include <QRegularExpression>
#include <QUuid>

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace vornic {

namespace {

/// Names tried, each of which somebody removed before it could be locked.
constexpr int maxAttempts = 100;

QByteArray newName()
{
    return QStringLiteral(".vornic-%1.part")
        .arg(QUuid::createUuid().toString(QUuid::WithoutBraces))
        .toLatin1();
}

bool isNameOfPartFile(const QByteArray &name)
{
    static const QRegularExpression pattern(
        QStringLiteral(R"(\A\.vornic-[0-9a-f]{8}(-[0-9a-f]{4}){3}-[0-9a-f]{12}\.part\z)"));
    return pattern.match(QString::fromLatin1(name)).hasMatch();
}

bool leadsTo(int folder, const QByteArray &name, int descriptor)
{
    struct stat named {
    };
    struct stat opened {
    };
    return ::fstatat(folder, name.constData(), &named, AT_SYMLINK_NOFOLLOW) == 0
        && ::fstat(descriptor, &opened) == 0 && named.st_dev == opened.st_dev
        && named.st_ino == opened.st_ino;
}

bool isOwnRegularFile(const struct stat &file)
{
    return S_ISREG(file.st_mode) && file.st_uid == ::geteuid();
}

/// The lock is kept while the file is removed, so that no writer takes it in between.
bool removeIfStale(int folder, const QByteArray &name)
{
    struct stat file {
    };
    // Not even opened where it is no file of ours: to open a pipe or a device can have effects.
    if (::fstatat(folder, name.constData(), &file, AT_SYMLINK_NOFOLLOW) != 0 || !isOwnRegularFile(file))
        return false;
    const int descriptor = ::openat(folder, name.constData(), O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    if (descriptor < 0)
        return false;
    const bool isRemoved = ::flock(descriptor, LOCK_EX | LOCK_NB) == 0 && ::fstat(descriptor, &file) == 0
        && isOwnRegularFile(file) && leadsTo(folder, name, descriptor)
        && ::unlinkat(folder, name.constData(), 0) == 0;
    ::close(descriptor);
    return isRemoved;
}

QByteArrayList namesIn(DIR *folder)
{
    QByteArrayList names;
    // NOLINTNEXTLINE(concurrency-mt-unsafe): no other thread reads this stream
    while (const dirent *entry = ::readdir(folder))
        names += QByteArray(entry->d_name);
    return names;
}

} // namespace

PartFile::PartFile(const QString &filename)
    : m_place(filename)
{
    for (int attempt = 0; attempt < maxAttempts; ++attempt) {
        m_name = newName();
        m_descriptor = ::openat(m_place.borrowedFolder(),
                                m_name.constData(),
                                O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC,
                                0666); // less the umask
        if (m_descriptor < 0)
            throw MovieFailure(writingError(filename, -errno));
        if (lock())
            return;
        removeAndClose();
    }
    throw MovieFailure(writingError(filename, -EBUSY));
}

PartFile::~PartFile()
{
    removeAndClose();
}

bool PartFile::lock() const
{
    if (::flock(m_descriptor, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK)
        return false;
    // On a file system without locks a cleaner gets none either, and leaves the file alone.
    return isAtItsPath();
}

void PartFile::removeAndClose()
{
    if (!m_isFinished && isAtItsPath())
        ::unlinkat(m_place.borrowedFolder(), m_name.constData(), 0);
    ::close(m_descriptor);
}

bool PartFile::isAtItsPath() const
{
    return leadsTo(m_place.borrowedFolder(), m_name, m_descriptor);
}

int PartFile::sync() const
{
    // Some file systems cannot sync anything; what was written is still there.
    const int error = ::fsync(m_descriptor) == 0 ? 0 : errno;
    return error == EINVAL || error == ENOTSUP ? 0 : -error;
}

int PartFile::finish(const std::optional<FileIdentity> &replaced)
{
    QByteArray name;
    if (const int result = m_place.moveInto(m_name, replaced, name); result < 0)
        return result;
    m_name = name;
    m_isFinished = true;
    return m_place.syncFolder();
}

QString PartFile::moviePath() const
{
    return m_name == m_place.name() ? m_place.filename() : path();
}

std::optional<Error> checkFinalName(const QString &filename)
{
    try {
        const PartFile part(filename);
    } catch (const MovieFailure &failure) {
        return failure.error();
    }
    return std::nullopt;
}

int removeStalePartFiles(const QString &folder)
{
    DIR *const directory = ::opendir(nativePath(folder).constData());
    if (!directory)
        return 0;
    int count = 0;
    for (const QByteArray &name : namesIn(directory))
        if (isNameOfPartFile(name) && removeIfStale(::dirfd(directory), name))
            ++count;
    ::closedir(directory);
    return count;
}

} // namespace vornic
