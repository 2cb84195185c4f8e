#pragma once

#include <QString>

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
    /// MovieFailure.
    explicit PartFile(const QString &filename);
    ~PartFile();
    PartFile(const PartFile &) = delete;
    PartFile &operator=(const PartFile &) = delete;

    [[nodiscard]] const QString &path() const { return m_path; }
    /// Open for reading and writing; valid as long as the object.
    [[nodiscard]] int borrowedDescriptor() const { return m_descriptor; }
    /// The path leads to this file, not to nothing or to another one.
    [[nodiscard]] bool isAtItsPath() const;

    /// Blocks until the file's contents are on the disk.
    [[nodiscard]] int sync() const;
    /// Replaces a file of that name. Blocks until the folder is on the disk, too.
    [[nodiscard]] int renameTo(const QString &filename);

private:
    /// False where a cleaner was quicker than our lock.
    [[nodiscard]] bool lock() const;
    void removeAndClose();

    QString m_path;
    int m_descriptor = -1;
};

/// Removes the files in \a folder that a PartFile left behind when its program was killed, and returns how many.
/// Keeps those that a living program writes, and everything that no PartFile of this user can have made. Any thread.
int removeStalePartFiles(const QString &folder);

} // namespace vornic
