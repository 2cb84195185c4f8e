#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

#include <atomic>
#include <cstdint>
#include <memory>

namespace vornic {

/// One file of a recording, by the descriptor that it was made or opened with: what later stands at its name does
/// not matter.
///
/// Shared by those who write and read it. Every function may be called from any thread; two writes at once are the
/// callers' business.
class SpoolFile
{
public:
    /// Makes the file \a name, which must not be there yet, in the folder that the descriptor \a folder leads to
    /// (AT_FDCWD: \a name is a path), for its user alone. Null, with errno set, where that cannot be done.
    [[nodiscard]] static std::shared_ptr<SpoolFile> create(int folder, const QByteArray &name);
    /// Opens the file \a name for reading and writing. Null, with errno set, where it is not there, is a link or no
    /// regular file, or belongs to another user.
    [[nodiscard]] static std::shared_ptr<SpoolFile> open(int folder, const QByteArray &name);

    ~SpoolFile();
    SpoolFile(const SpoolFile &) = delete;
    SpoolFile &operator=(const SpoolFile &) = delete;

    /// Bytes; 0 where that cannot be asked.
    [[nodiscard]] std::uint64_t size() const;
    /// Writes all of \a bytes at \a offset, or cuts the file off there, logs why, and returns false.
    [[nodiscard]] bool write(std::uint64_t offset, QByteArrayView bytes);
    /// Empty where not all of these bytes are in the file.
    [[nodiscard]] QByteArray read(std::uint64_t offset, std::uint64_t length) const;
    /// What was written survives a loss of power once this returns true. Blocks until the disk has it.
    [[nodiscard]] bool sync();
    /// The number that the system gave for the first write() or sync() that failed; 0 where none has.
    [[nodiscard]] int firstError() const { return m_firstError; }
    /// Keeps others from locking the file for as long as this object lives; false when another object holds it.
    [[nodiscard]] bool lock() const;
    /// Lets others lock it while this object still lives.
    void unlock() const;

private:
    explicit SpoolFile(int descriptor)
        : m_descriptor(descriptor)
    {
    }

    bool fail(const char *what);

    int m_descriptor;
    std::atomic<int> m_firstError = 0;
};

} // namespace vornic
