#include "codec/movie_place.h"

#include "base/native_path.h"
#include "codec/movie_failure.h"

#include <QDir>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <utility>

namespace vornic {

namespace {

/// Followed one behind the other, as many as the system does.
constexpr int maxLinks = 40;

/// Where files of one name stand that others made while we recorded.
constexpr int maxNumber = 10'000;

QByteArray folderOf(const QByteArray &path)
{
    const qsizetype slash = path.lastIndexOf('/');
    if (slash < 0)
        return ".";
    return slash == 0 ? "/" : path.first(slash);
}

QByteArray nameOf(const QByteArray &path)
{
    return path.sliced(path.lastIndexOf('/') + 1);
}

/// In a folder that all may write to, what is another user's cannot be replaced, and its links are no advice.
bool isForeignIn(const struct stat &folder, const struct stat &file)
{
    return (folder.st_mode & S_ISVTX) != 0 && ::geteuid() != 0 && file.st_uid != ::geteuid()
        && folder.st_uid != ::geteuid();
}

/// As the system's own rule, which is often switched off: a link in a folder that all may write to is followed only
/// where its owner is the user or the folder's.
bool mayBeFollowed(const QByteArray &path)
{
    struct stat folder {
    };
    struct stat link {
    };
    return ::stat(folderOf(path).constData(), &folder) == 0 && ::lstat(path.constData(), &link) == 0
        && ((folder.st_mode & S_ISVTX) == 0 || (folder.st_mode & S_IWOTH) == 0 || link.st_uid == ::geteuid()
            || link.st_uid == folder.st_uid);
}

/// The path that \a path leads to where links stand at its end; \a error is 0 or a negated errno.
QByteArray followed(QByteArray path, int &error)
{
    error = 0;
    for (int link = 0; link < maxLinks; ++link) {
        std::array<char, PATH_MAX> target {};
        const ssize_t length = ::readlink(path.constData(), target.data(), target.size());
        if (length < 0)
            return path; // no link; whatever else is wrong with it, who opens it finds out
        if (!mayBeFollowed(path)) {
            error = -EACCES;
            return path;
        }
        const QByteArray next(target.data(), length);
        path = next.startsWith('/') ? next : folderOf(path) + '/' + next;
    }
    error = -ELOOP;
    return path;
}

/// Where the system cannot do that in one step, an empty file of ours holds the name meanwhile.
int renameWithoutReplacing(int folder, const QByteArray &from, const QByteArray &to)
{
    if (::renameat2(folder, from.constData(), folder, to.constData(), RENAME_NOREPLACE) == 0)
        return 0;
    if (errno != EINVAL && errno != ENOSYS)
        return -errno;
    const int holder
        = ::openat(folder, to.constData(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600);
    if (holder < 0)
        return -errno;
    ::close(holder);
    if (::renameat(folder, from.constData(), folder, to.constData()) == 0)
        return 0;
    const int error = errno;
    ::unlinkat(folder, to.constData(), 0);
    return -error;
}

} // namespace

MoviePlace::MoviePlace(QString filename)
    : m_filename(std::move(filename))
{
    open();
    try {
        checkName();
    } catch (const MovieFailure &) {
        ::close(m_folder);
        throw;
    }
}

MoviePlace::~MoviePlace()
{
    ::close(m_folder);
}

void MoviePlace::open()
{
    int error = 0;
    const QByteArray path = followed(nativePath(m_filename), error);
    if (error < 0)
        throw MovieFailure(writingError(m_filename, error));
    m_folderPath = folderOf(path);
    m_name = nameOf(path);
    m_folder = ::open(m_folderPath.constData(), O_PATH | O_DIRECTORY | O_CLOEXEC);
    if (m_folder < 0)
        throw MovieFailure(writingError(m_filename, -errno));
}

/// What keeps the name from being given to a movie: told before the work, not when the finished movie is renamed.
void MoviePlace::checkName() const
{
    struct stat folder {
    };
    struct stat file {
    };
    if (::fstatat(m_folder, m_name.constData(), &file, AT_SYMLINK_NOFOLLOW) != 0) {
        // An empty name is not found either.
        if (errno == ENOENT && !m_name.isEmpty())
            return;
        throw MovieFailure(writingError(m_filename, m_name.isEmpty() ? -EISDIR : -errno));
    }
    if (S_ISDIR(file.st_mode))
        throw MovieFailure(writingError(m_filename, -EISDIR));
    if (!S_ISREG(file.st_mode))
        throw MovieFailure({ ErrorKind::NotAFile, ErrorSubject::File, m_filename, {} });
    if (::fstat(m_folder, &folder) != 0)
        throw MovieFailure(writingError(m_filename, -errno));
    if (isForeignIn(folder, file))
        throw MovieFailure({ ErrorKind::OthersFile, ErrorSubject::File, m_filename, {} });
}

QString MoviePlace::pathOf(const QByteArray &name) const
{
    // What was asked for in the working folder is told without it.
    const bool isPlain = m_folderPath == "." && !m_filename.contains(u'/');
    return pathFromNative(isPlain ? name : m_folderPath + (m_folderPath.endsWith('/') ? "" : "/") + name);
}

bool MoviePlace::folderIsThere() const
{
    struct stat folder {
    };
    return ::fstat(m_folder, &folder) == 0 && folder.st_nlink > 0;
}

bool MoviePlace::folderIsAtItsPath() const
{
    struct stat named {
    };
    struct stat opened {
    };
    return ::stat(m_folderPath.constData(), &named) == 0 && ::fstat(m_folder, &opened) == 0
        && named.st_dev == opened.st_dev && named.st_ino == opened.st_ino;
}

int MoviePlace::moveInto(const QByteArray &part,
                         const std::optional<FileIdentity> &replaced,
                         QByteArray &name) const
{
    name = m_name;
    struct stat file {
    };
    const bool stands = ::fstatat(m_folder, name.constData(), &file, AT_SYMLINK_NOFOLLOW) == 0;
    if (stands && replaced && S_ISREG(file.st_mode) && FileIdentity(file) == *replaced)
        return ::renameat(m_folder, part.constData(), m_folder, name.constData()) == 0 ? 0 : -errno;
    int result = renameWithoutReplacing(m_folder, part, name);
    for (int number = 2; result == -EEXIST && number < maxNumber; ++number) {
        name = numbered(number);
        result = renameWithoutReplacing(m_folder, part, name);
    }
    return result;
}

/// "Talk 2.mp4" for "Talk.mp4", no longer than a name may be.
QByteArray MoviePlace::numbered(int number) const
{
    const qsizetype dot = m_name.lastIndexOf('.');
    const QByteArray suffix = dot > 0 ? m_name.sliced(dot) : QByteArray();
    const QByteArray ending = ' ' + QByteArray::number(number) + suffix;
    qsizetype length = std::min<qsizetype>(m_name.size() - suffix.size(), NAME_MAX - ending.size());
    // Not in the middle of a character.
    while (length > 0 && length < m_name.size()
           && (static_cast<unsigned char>(m_name[length]) & 0xC0U) == 0x80U)
        --length;
    return m_name.first(std::max<qsizetype>(length, 0)) + ending;
}

int MoviePlace::syncFolder() const
{
    const int descriptor = ::openat(m_folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0)
        return errno == EACCES ? 0 : -errno; // a folder that may be written to and not read
    // Some file systems cannot sync a folder; what was written is still there.
    const int error = ::fsync(descriptor) == 0 ? 0 : errno;
    ::close(descriptor);
    return error == EINVAL || error == ENOTSUP ? 0 : -error;
}

QString folderOfMovie(const QString &filename)
{
    int error = 0;
    const QByteArray folder = folderOf(followed(nativePath(filename), error));
    if (folder.startsWith('/'))
        return pathFromNative(folder);
    return folder == "." ? QDir::currentPath() : QDir::currentPath() + u'/' + pathFromNative(folder);
}

} // namespace vornic
