#pragma once

namespace vornic::test {

/// While it lives, the system gives this process no more than so many threads at a time, whoever asks for them.
///
/// Made by a test on its thread; counts for all threads. A limit of the system's own counts all that the user runs, and
/// none for the administrator.
class ThreadLimit
{
public:
    explicit ThreadLimit(int more);
    ~ThreadLimit();
    ThreadLimit(const ThreadLimit &) = delete;
    ThreadLimit &operator=(const ThreadLimit &) = delete;
};

} // namespace vornic::test
