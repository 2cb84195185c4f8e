#pragma once

#include <sys/resource.h>

#include <csignal>
#include <cstdint>

namespace vornic::test {

/// While it lives, no file of this process grows beyond a size: as on a full disk, writes fail.
///
/// Made by a test on its thread; counts for all threads.
class FileSizeLimit
{
public:
    explicit FileSizeLimit(std::uint64_t bytes)
        : m_handler(std::signal(SIGXFSZ, SIG_IGN))
    {
        getrlimit(RLIMIT_FSIZE, &m_before);
        rlimit limit = m_before;
        limit.rlim_cur = bytes;
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit()
    {
        setrlimit(RLIMIT_FSIZE, &m_before);
        std::signal(SIGXFSZ, m_handler);
    }
    FileSizeLimit(const FileSizeLimit &) = delete;
    FileSizeLimit &operator=(const FileSizeLimit &) = delete;

private:
    rlimit m_before {};
    void (*m_handler)(int);
};

} // namespace vornic::test
