#pragma once

#include "display/display_backend.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>

namespace vornic {

/// The pointer shapes that this process has seen last, with an index each that no other shape ever gets.
///
/// It holds as many as a desktop has, and forgets those that have not been seen for longest: a program that draws its
/// pointer anew all the time shall not fill the memory. The process has one, made at the first use; its functions may
/// be called from any thread.
class CursorTable
{
public:
    [[nodiscard]] static CursorTable &shared();

    static constexpr std::size_t maxShapes = 256;
    static constexpr qsizetype maxBytes = 16'777'216; ///< of their pictures; one shape may have more

    /// The index of the shape equal to \a cursor, which is added when there is none.
    [[nodiscard]] std::uint64_t indexOf(const std::shared_ptr<const CursorShape> &cursor);
    /// Null when \a index is not below the count, or its shape is forgotten.
    [[nodiscard]] std::shared_ptr<const CursorShape> at(std::uint64_t index) const;
    /// How many indexes there are.
    [[nodiscard]] std::uint64_t count() const;

private:
    struct Entry {
        std::uint64_t index;
        std::shared_ptr<const CursorShape> shape;
    };
    void forgetOldest();

    mutable std::mutex m_mutex;
    std::deque<Entry> m_shapes; ///< the one that was seen last is the last
    qsizetype m_bytes = 0;      ///< of their pictures
    std::uint64_t m_count = 0;
};

} // namespace vornic
