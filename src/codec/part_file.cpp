#include "codec/part_file.h"

#include "codec/movie_failure.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QUuid>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

namespace vornic {

namespace {

/// Names tried, each of which somebody removed before it could be locked.
constexpr int maxAttempts = 100;

QString newPathBeside(const QString &filename)
{
    return QStringLiteral("%1/.vornic-%2.part")
        .arg(QFileInfo(filename).absolutePath(), QUuid::createUuid().toString(QUuid::WithoutBraces));
}

bool isNameOfPartFile(const QString &name)
{
    static const QRegularExpression pattern(
        QStringLiteral(R"(\A\.vornic-[0-9a-f]{8}(-[0-9a-f]{4}){3}-[0-9a-f]{12}\.part\z)"));
    return pattern.match(name).hasMatch();
}

/// What keeps \a filename from being replaced by a movie: told before the work, not when the finished movie is
/// renamed.
int errorOfFinalName(const QString &filename)
{
    struct stat existing {
    };
    if (::lstat(QFile::encodeName(filename).constData(), &existing) == 0)
        return S_ISDIR(existing.st_mode) ? -EISDIR : 0;
    return errno == ENOENT ? 0 : -errno;
}

/// Some file systems cannot sync a folder, or anything; what was written is still there.
int syncDescriptor(int descriptor)
{
    const int error = ::fsync(descriptor) == 0 ? 0 : errno;
    return error == EINVAL || error == ENOTSUP ? 0 : -error;
}

int syncFolder(const QString &folder)
{
    const int descriptor = ::open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0)
        return -errno;
    const int result = syncDescriptor(descriptor);
    ::close(descriptor);
    return result;
}

bool leadsTo(const QByteArray &path, int descriptor)
{
    struct stat named {
    };
    struct stat opened {
    };
    return ::lstat(path.constData(), &named) == 0 && ::fstat(descriptor, &opened) == 0
        && named.st_dev == opened.st_dev && named.st_ino == opened.st_ino;
}

bool isOwnRegularFile(const struct stat &file)
{
    return S_ISREG(file.st_mode) && file.st_uid == ::geteuid();
}

/// The lock is kept while the file is removed, so that no writer takes it in between.
bool removeIfStale(const QByteArray &path)
{
    struct stat file {
    };
    // Not even opened where it is no file of ours: to open a pipe or a device can have effects.
    if (::lstat(path.constData(), &file) != 0 || !isOwnRegularFile(file))
        return false;
    const int descriptor = ::open(path.constData(), O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    if (descriptor < 0)
        return false;
    const bool isRemoved = ::flock(descriptor, LOCK_EX | LOCK_NB) == 0 && ::fstat(descriptor, &file) == 0
        && isOwnRegularFile(file) && leadsTo(path, descriptor) && ::unlink(path.constData()) == 0;
    ::close(descriptor);
    return isRemoved;
}

} // namespace

PartFile::PartFile(const QString &filename)
{
    if (const int error = errorOfFinalName(filename); error < 0)
        throw MovieFailure(writingError(filename, error));
    for (int attempt = 0; attempt < maxAttempts; ++attempt) {
        m_path = newPathBeside(filename);
        m_descriptor = ::open(QFile::encodeName(m_path).constData(),
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
    if (isAtItsPath())
        ::unlink(QFile::encodeName(m_path).constData());
    ::close(m_descriptor);
}

bool PartFile::isAtItsPath() const
{
    return leadsTo(QFile::encodeName(m_path), m_descriptor);
}

int PartFile::sync() const
{
    return syncDescriptor(m_descriptor);
}

int PartFile::renameTo(const QString &filename)
{
    const QByteArray from = QFile::encodeName(m_path);
    if (std::rename(from.constData(), QFile::encodeName(filename).constData()) != 0)
        return -errno;
    return syncFolder(QFileInfo(filename).absolutePath());
}

int removeStalePartFiles(const QString &folder)
{
    const QDir directory(folder);
    int count = 0;
    for (const QString &name : directory.entryList(QDir::Files | QDir::Hidden | QDir::System))
        if (isNameOfPartFile(name) && removeIfStale(QFile::encodeName(directory.absoluteFilePath(name))))
            ++count;
    return count;
}

} // namespace vornic
