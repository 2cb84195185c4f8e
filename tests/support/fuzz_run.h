#pragma once

#include <QByteArray>

#include <functional>
#include <random>

namespace vornic::test {

/// The random numbers of a fuzzer, the same for the same seed.
class FuzzRandom
{
public:
    explicit FuzzRandom(unsigned seed)
        : m_engine(seed)
    {
    }

    unsigned next() { return static_cast<unsigned>(m_engine()); }
    /// From 0 to \a limit - 1; 0 where there is no such number.
    int below(qsizetype limit);
    /// Up to \a maxSize bytes.
    QByteArray bytes(int maxSize);
    /// Turns, replaces, cuts off, inserts, doubles or removes bytes at \a place of \a bytes, which are not empty.
    void damage(QByteArray &bytes, int place);
    /// \a bytes after one to \a maxChanges of these anywhere.
    QByteArray damaged(QByteArray bytes, int maxChanges);

private:
    std::mt19937 m_engine;
};

/// One run of a fuzzer: NAME [inputs [seed]].
///
/// Made by its main(), which then feeds the inputs. A crash or a sanitizer's report is the failure.
class FuzzRun
{
public:
    /// Takes both numbers from the arguments, with 1 as the default seed, keeps the log quiet, and keeps
    /// the caller on one processor.
    FuzzRun(int argc, char **argv, int defaultCount);

    [[nodiscard]] int count() const { return m_count; }
    [[nodiscard]] FuzzRandom &random() { return m_random; }

    /// Feeds count() inputs and prints \a what they were, and the peak memory of the process.
    void feedAll(const char *what, const std::function<void(int number)> &feedOne) const;

private:
    int m_count;
    FuzzRandom m_random;
};

} // namespace vornic::test
