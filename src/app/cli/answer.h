#pragma once

#include <QByteArray>
#include <QString>

namespace vornic {

/// Writes \a text, whole lines, to standard output: what a command was asked for. \a status, or \a unwritten and one
/// sentence on standard error where nobody takes it.
[[nodiscard]] int answer(const QByteArray &text, int status, int unwritten);

/// \a path as an answer: byte for byte, so that a script finds the file, but printable on a terminal.
[[nodiscard]] QByteArray pathForAnswer(const QString &path);

} // namespace vornic
