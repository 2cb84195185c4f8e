#include "capture/spool/recording_folder.h"

#include "base/log.h"
#include "base/native_path.h"
#include "capture/spool/spool_file.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QRegularExpression>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <utility>

namespace vornic {

namespace {

constexpr const char *nameOfAll = "recordings";

/// What a folder is called until all of its files are there.
const QString halfMadePrefix = QStringLiteral(".new-");

bool isId(const QString &name)
{
    static const QRegularExpression pattern(QStringLiteral("^[0-9]{8}-[0-9]{6}-[0-9a-f]{4}$"));
    return pattern.match(name).hasMatch();
}

QString newId()
{
    return QStringLiteral("%1-%2")
        .arg(QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-HHmmss")))
        .arg(QRandomGenerator::system()->bounded(0x10000), 4, 16, QLatin1Char('0'));
}

/// A descriptor of a folder that only its user can change; -1, with errno set, where it is none.
int openFolder(int beneath, const QByteArray &name)
{
    const int descriptor
        = ::openat(beneath, name.constData(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    struct stat status {
    };
    if (descriptor < 0 || ::fstat(descriptor, &status) != 0)
        return -1;
    // A folder of before, or a user's own experiment: what is ours we may close to others.
    const bool isOurs = status.st_uid == ::geteuid();
    if (isOurs && ((status.st_mode & 077) == 0 || ::fchmod(descriptor, 0700) == 0))
        return descriptor;
    ::close(descriptor);
    errno = EPERM;
    return -1;
}

/// Those of the user's own group, which a usual umask lets write, are taken for the user, as they have been let in by
/// nobody else.
bool mayOthersWrite(const struct stat &folder)
{
    return (folder.st_mode & S_IWOTH) != 0
        || ((folder.st_mode & S_IWGRP) != 0 && folder.st_gid != ::getegid());
}

/// The cache folder, which a link may lead to; -1, with errno set, where it is missing or not only this user's.
int openCache(const QString &cachePath)
{
    const int descriptor = ::open(nativePath(cachePath).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    struct stat status {
    };
    if (descriptor < 0 || ::fstat(descriptor, &status) != 0)
        return -1;
    const bool isOurs = status.st_uid == ::geteuid() && !mayOthersWrite(status);
    if (isOurs && ((status.st_mode & 077) == 0 || ::fchmod(descriptor, 0700) == 0))
        return descriptor;
    ::close(descriptor);
    errno = EPERM;
    return -1;
}

int closeKeepingErrno(int descriptor)
{
    const int error = errno;
    ::close(descriptor);
    errno = error;
    return -1;
}

/// The folder of all recordings; -1, with errno set, where it is missing or refused.
int openAll(const QString &cachePath)
{
    const int cache = openCache(cachePath);
    if (cache < 0)
        return -1;
    const int all = openFolder(cache, nameOfAll);
    closeKeepingErrno(cache);
    return all;
}

/// The same, made where it is missing.
int openOrMakeAll(const QString &cachePath)
{
    const int cache = openCache(cachePath);
    if (cache < 0)
        return -1;
    if (::mkdirat(cache, nameOfAll, 0700) != 0 && errno != EEXIST)
        return closeKeepingErrno(cache);
    const int all = openFolder(cache, nameOfAll);
    closeKeepingErrno(cache);
    return all;
}

/// The names in \a folders survive a loss of power once this returns.
void syncNames(const QStringList &folders)
{
    for (const QString &folder : folders) {
        const int descriptor = ::open(nativePath(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        if (descriptor < 0 || ::fsync(descriptor) != 0)
            logMessage(QStringLiteral("Failed to sync the folder %1: %2").arg(folder, qt_error_string()));
        if (descriptor >= 0)
            ::close(descriptor);
    }
}

int makeFolder(int beneath, const QByteArray &name)
{
    if (::mkdirat(beneath, name.constData(), 0700) != 0)
        return -1;
    return openFolder(beneath, name);
}

} // namespace

RecordingFolder::RecordingFolder(int above, int descriptor, QString id, QString path)
    : m_above(above)
    , m_descriptor(descriptor)
    , m_id(std::move(id))
    , m_path(std::move(path))
{
}

RecordingFolder::~RecordingFolder()
{
    closeKeepingErrno(m_descriptor);
    closeKeepingErrno(m_above);
}

QString RecordingFolder::pathOfAll(const QString &cachePath)
{
    return cachePath + u'/' + QLatin1StringView(nameOfAll);
}

bool RecordingFolder::ownsCache(const QString &cachePath)
{
    const int descriptor = openCache(cachePath);
    if (descriptor >= 0)
        ::close(descriptor);
    return descriptor >= 0;
}

bool RecordingFolder::prepare(const QString &cachePath)
{
    const int descriptor = openOrMakeAll(cachePath);
    if (descriptor >= 0)
        ::close(descriptor);
    return descriptor >= 0;
}

std::shared_ptr<RecordingFolder> RecordingFolder::create(const QString &cachePath)
{
    const QString all = pathOfAll(cachePath);
    const int above = openOrMakeAll(cachePath);
    if (above < 0)
        return nullptr;
    const QString id = newId();
    const QByteArray halfMade = (halfMadePrefix + id).toLatin1();
    const int descriptor = makeFolder(above, halfMade);
    if (descriptor < 0) {
        closeKeepingErrno(above);
        return nullptr;
    }
    std::shared_ptr<RecordingFolder> folder(new RecordingFolder(above, descriptor, id, all + u'/' + id));
    folder->m_journal = SpoolFile::create(descriptor, journalName);
    // Locked before it bears its name: nobody takes it for one that a crash left.
    // A file system without locks does not keep anybody from recording.
    if (folder->m_journal)
        static_cast<void>(folder->m_journal->lock());
    folder->m_video = SpoolFile::create(descriptor, videoName);
    folder->m_audio = SpoolFile::create(descriptor, audioName);
    if (!folder->m_journal || !folder->m_video || !folder->m_audio
        || ::renameat(above, halfMade.constData(), above, id.toLatin1().constData()) != 0)
        return nullptr;
    // Of a first recording, the folders above are new as well.
    syncNames({ folder->path(), all, cachePath, QFileInfo(cachePath).absolutePath() });
    return folder;
}

std::shared_ptr<RecordingFolder>
RecordingFolder::open(const QString &cachePath, const QString &id, Refusal &refusal)
{
    refusal = Refusal::Missing;
    if (!isId(id))
        return nullptr;
    const int above = openAll(cachePath);
    const int descriptor = above < 0 ? -1 : openFolder(above, id.toLatin1());
    if (descriptor < 0) {
        refusal = errno == ENOENT ? Refusal::Missing : Refusal::Unusable;
        if (above >= 0)
            ::close(above);
        return nullptr;
    }
    std::shared_ptr<RecordingFolder> folder(
        new RecordingFolder(above, descriptor, id, pathOfAll(cachePath) + u'/' + id));
    folder->m_journal = SpoolFile::open(descriptor, journalName);
    // Where it is gone, an empty one keeps others away as well.
    if (!folder->m_journal && errno == ENOENT)
        folder->m_journal = SpoolFile::create(descriptor, journalName);
    if (!folder->m_journal || !folder->m_journal->lock()) {
        refusal = folder->m_journal ? Refusal::Running : Refusal::Unusable;
        return nullptr;
    }
    folder->m_video = SpoolFile::open(descriptor, videoName);
    folder->m_audio = SpoolFile::open(descriptor, audioName);
    refusal = Refusal::None;
    return folder;
}

QString RecordingFolder::refusalText(Refusal refusal, const QString &id)
{
    switch (refusal) {
    case Refusal::Running:
        return QCoreApplication::translate("vornic", "The recording %1 is in use by another Vornic.").arg(id);
    case Refusal::Unusable:
        return QCoreApplication::translate(
                   "vornic", "The recording %1 cannot be read: its journal is missing or damaged.")
            .arg(id);
    case Refusal::WithoutPictures:
        return QCoreApplication::translate("vornic",
                                           "The recording %1 cannot be read: its pictures are missing.")
            .arg(id);
    case Refusal::Missing:
    case Refusal::None:
        break;
    }
    return QCoreApplication::translate("vornic", "There is no recording %1.").arg(id);
}

QString RecordingFolder::deletionFailedText(const QString &id)
{
    return QCoreApplication::translate("vornic", "The recording %1 could not be deleted: %2.")
        .arg(id, qt_error_string());
}

QStringList RecordingFolder::ids(const QString &cachePath)
{
    QStringList ids = QDir(pathOfAll(cachePath)).entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name);
    ids.removeIf([](const QString &name) { return !isId(name); });
    return ids;
}

void RecordingFolder::removeHalfMade(const QString &cachePath)
{
    const QDir all(pathOfAll(cachePath));
    const QDateTime aMinuteAgo = QDateTime::currentDateTime().addSecs(-60);
    for (const QFileInfo &entry : all.entryInfoList(QDir::Dirs | QDir::NoDotAndDotDot | QDir::Hidden)) {
        const QString name = entry.fileName();
        if (!name.startsWith(halfMadePrefix) || entry.lastModified() > aMinuteAgo)
            continue;
        const int above = openAll(cachePath);
        if (above < 0)
            return;
        if (const int descriptor = openFolder(above, nativePath(name)); descriptor >= 0)
            RecordingFolder(above, descriptor, name, entry.filePath()).remove();
        else
            ::close(above);
    }
}

bool RecordingFolder::sync()
{
    // The journal last: what it tells of is on the disk then.
    const bool video = !m_video || m_video->sync();
    const bool audio = !m_audio || m_audio->sync();
    return m_journal->sync() && video && audio;
}

void RecordingFolder::letGo()
{
    m_journal->unlock();
}

bool RecordingFolder::remove()
{
    for (const char *name : { videoName, audioName, journalName })
        if (::unlinkat(m_descriptor, name, 0) != 0 && errno != ENOENT)
            return false;
    return ::unlinkat(m_above, nativePath(nameOfPath(m_path)).constData(), AT_REMOVEDIR) == 0;
}

} // namespace vornic
