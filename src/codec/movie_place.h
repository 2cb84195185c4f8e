#pragma once

#include "codec/file_identity.h"

#include <QByteArray>
#include <QString>

#include <optional>

namespace vornic {

/// Where a movie's name leads to, links followed: a folder, which is held open, and a name in it.
///
/// Made by a PartFile on its thread. Everything but folderIsAtItsPath() goes through the open folder. Numbers that are
/// returned are 0 or a negated errno.
class MoviePlace
{
public:
    /// Throws MovieFailure where no movie can be put at \a filename.
    explicit MoviePlace(QString filename);
    ~MoviePlace();
    MoviePlace(const MoviePlace &) = delete;
    MoviePlace &operator=(const MoviePlace &) = delete;

    /// As it was asked for.
    [[nodiscard]] const QString &filename() const { return m_filename; }
    /// Opened as a place only: it can be named, not read.
    [[nodiscard]] int borrowedFolder() const { return m_folder; }
    /// In the folder.
    [[nodiscard]] const QByteArray &name() const { return m_name; }
    [[nodiscard]] QString pathOf(const QByteArray &name) const;
    /// The path that was opened leads to this folder, not to nothing or to another one.
    [[nodiscard]] bool folderIsAtItsPath() const;
    [[nodiscard]] bool folderIsThere() const;

    /// Gives the file \a part of the folder the name of this place where nothing stands there, or only \a replaced;
    /// else one with a number that is free. \a name becomes that name.
    [[nodiscard]] int
    moveInto(const QByteArray &part, const std::optional<FileIdentity> &replaced, QByteArray &name) const;
    /// Blocks until the names in the folder are on the disk.
    [[nodiscard]] int syncFolder() const;

private:
    void open();
    void checkName() const;
    [[nodiscard]] QByteArray numbered(int number) const;

    QString m_filename;
    QByteArray m_folderPath;
    QByteArray m_name;
    int m_folder = -1;
};

/// The path of the folder that the movie of a name is made in, links followed; it need not be there.
[[nodiscard]] QString folderOfMovie(const QString &filename);

} // namespace vornic
