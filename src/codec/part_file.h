#pragma once

#include "base/error.h"
#include "codec/movie_place.h"

#include <QByteArray>
#include <QString>

#include <optional>

namespace vornic {

/// A movie while it is written: a hidden file beside the place of the finished one, locked as long as its writer
/// lives.
///
/// Made by a MovieFile on its thread. The destructor removes the file, unless it was renamed. Numbers that are
/// returned are 0 or a negated errno.
class PartFile
{
public:
    /// Creates the file for a movie that will be \a filename, whose present file is not touched. Throws
    /// MovieFailure, also where no file of that name could be replaced in the end.
    explicit PartFile(const QString &filename);
    ~PartFile();
    PartFile(const PartFile &) = delete;
    PartFile &operator=(const PartFile &) = delete;

    [[nodiscard]] QString path() const { return m_place.pathOf(m_name); }
    [[nodiscard]] const MoviePlace &place() const { return m_place; }
    /// Open for reading and writing; valid as long as the object.
    [[nodiscard]] int borrowedDescriptor() const { return m_descriptor; }
    /// The path leads to this file, not to nothing or to another one.
    [[nodiscard]] bool isAtItsPath() const;

    /// Blocks until the file's contents are on the disk.
    [[nodiscard]] int sync() const;
    /// Makes it the movie, which replaces \a replaced and nothing else: where another file has come to stand under its
    /// name, it gets one of its own. Blocks until the folder is on the disk, too.
    [[nodiscard]] int finish(const std::optional<FileIdentity> &replaced);
    /// Where the movie stands after that.
    [[nodiscard]] QString moviePath() const;

private:
    /// False where a cleaner was quicker than our lock.
    [[nodiscard]] bool lock() const;
    void removeAndClose();

    MoviePlace m_place;
    QByteArray m_name; ///< in the folder
    int m_descriptor = -1;
    bool m_isFinished = false;
};

/// What keeps a movie from becoming \a filename, as far as it shows beforehand: tries all but the last step. Any thread.
[[nodiscard]] std::optional<Error> checkFinalName(const QString &filename);

/// Removes the files in \a folder that a PartFile left behind when its program was killed, and returns how many.
/// Keeps those that a living program writes, and everything that no PartFile of this user can have made. Any thread.
int removeStalePartFiles(const QString &folder);

} // namespace vornic
