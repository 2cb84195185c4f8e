#pragma once

#include "base/error.h"

#include <QString>

#include <exception>
#include <utility>

namespace vornic {

/// An Error on its way from where a movie cannot be written to the task that reports it.
///
/// Thrown and caught inside this folder only, by the code that runs on a task's own threads.
class MovieFailure : public std::exception
{
public:
    explicit MovieFailure(Error error)
        : m_error(std::move(error))
    {
    }

    [[nodiscard]] const Error &error() const { return m_error; }
    [[nodiscard]] const char *what() const noexcept override { return "the movie cannot be written"; }

private:
    Error m_error;
};

/// The error for a number of the media libraries or the system (negated errno) met while writing \a filename.
/// Its kind tells apart: disk full, file too large, no permission, no such folder, cancelled (the libraries'
/// AVERROR_EXIT), anything else.
[[nodiscard]] Error writingError(const QString &filename, int number);

} // namespace vornic
