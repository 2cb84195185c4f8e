#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <memory>

namespace vornic {

class SpoolFile;

/// The folder of one recording beneath the cache folder, with its two spools and its journal.
///
/// Made by the spool manager for a new recording, or opened for one that another process left; shared by those who
/// write and read the files. As long as it lives its journal is locked: no other process opens or removes it. All
/// functions but the static ones on one thread at a time.
class RecordingFolder
{
public:
    /// The folder that all of them are in.
    [[nodiscard]] static QString pathOfAll(const QString &cachePath);
    /// Closes the cache folder to other users; false, with errno set, where it is missing, and with EPERM where it
    /// belongs to another user or others could have put something into it.
    [[nodiscard]] static bool ownsCache(const QString &cachePath);
    /// Makes the folder of all where it is missing; false, with errno set, where it is none that only this user can
    /// change, or where the cache folder is none.
    [[nodiscard]] static bool prepare(const QString &cachePath);
    /// A new recording's, named by the date and time, locked from its first moment on. Null, with errno set, where it
    /// cannot be made.
    [[nodiscard]] static std::shared_ptr<RecordingFolder> create(const QString &cachePath);

    enum class Refusal {
        None,
        Missing,         ///< there is no such recording
        Running,         ///< another object, mostly of another process, has it open
        Unusable,        ///< it is no recording of this user's
        WithoutPictures, ///< told by those who need them; open() opens it
    };
    /// A sentence for the user, which also fits where the journal tells nothing.
    [[nodiscard]] static QString refusalText(Refusal refusal, const QString &id);
    /// The same after a remove() that failed just now.
    [[nodiscard]] static QString deletionFailedText(const QString &id);
    /// That of an earlier recording; null where \a refusal says why.
    [[nodiscard]] static std::shared_ptr<RecordingFolder>
    open(const QString &cachePath, const QString &id, Refusal &refusal);

    /// The ids of all recordings there, oldest first; running, unusable and finished ones too.
    [[nodiscard]] static QStringList ids(const QString &cachePath);
    /// Removes folders that a crash left half made.
    static void removeHalfMade(const QString &cachePath);

    ~RecordingFolder();
    RecordingFolder(const RecordingFolder &) = delete;
    RecordingFolder &operator=(const RecordingFolder &) = delete;

    [[nodiscard]] const QString &id() const { return m_id; }
    [[nodiscard]] const QString &path() const { return m_path; }
    /// Null where an opened recording lacks it.
    [[nodiscard]] const std::shared_ptr<SpoolFile> &video() const { return m_video; }
    [[nodiscard]] const std::shared_ptr<SpoolFile> &audio() const { return m_audio; }
    /// Never null.
    [[nodiscard]] const std::shared_ptr<SpoolFile> &journal() const { return m_journal; }

    /// Blocks until the disk has everything that was written; false where it does not take it. Any thread.
    [[nodiscard]] bool sync();
    /// Releases the lock, so that others can open the recording while this process may still sync it to a slow disk.
    void letGo();
    /// Deletes the files and the folder; false where something of it stays. The journal goes last: it tells what the
    /// rest is.
    bool remove();

    static constexpr const char *videoName = "vornicvideo.tmp";
    static constexpr const char *audioName = "vornicaudio.tmp";
    static constexpr const char *journalName = "journal";

private:
    RecordingFolder(int above, int descriptor, QString id, QString path);

    int m_above;
    int m_descriptor;
    QString m_id;
    QString m_path;
    std::shared_ptr<SpoolFile> m_video;
    std::shared_ptr<SpoolFile> m_audio;
    std::shared_ptr<SpoolFile> m_journal;
};

} // namespace vornic
