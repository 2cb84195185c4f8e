#pragma once

#include <QString>

#include <exception>
#include <utility>

namespace vornic {

/// Why a movie cannot be written, as one sentence for the user.
///
/// Thrown and caught inside this folder only, by the code that runs on a task's own threads.
class MovieFailure : public std::exception
{
public:
    explicit MovieFailure(QString sentence)
        : m_sentence(std::move(sentence))
    {
    }

    [[nodiscard]] const QString &sentence() const { return m_sentence; }
    [[nodiscard]] const char *what() const noexcept override { return "the movie cannot be written"; }

private:
    QString m_sentence;
};

/// The sentence for an error number of the media libraries or the system (negated errno) met while writing
/// \a filename. It tells apart: disk full, file too large, no permission, no such folder, anything else.
[[nodiscard]] QString writingFailureSentence(const QString &filename, int error);

} // namespace vornic
