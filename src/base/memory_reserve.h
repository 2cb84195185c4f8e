#pragma once

namespace vornic {

/// Address space for four megabytes, held until memory runs out and given back then, so that what must still be done can
/// be: telling of it, and ending what was begun. It takes no memory of the machine.
///
/// Made by whoever has such an end, on any thread; throws std::bad_alloc where it comes too late.
class MemoryReserve
{
public:
    MemoryReserve();
    ~MemoryReserve();
    MemoryReserve(const MemoryReserve &) = delete;
    MemoryReserve &operator=(const MemoryReserve &) = delete;

    void giveBack() noexcept;

private:
    void *m_pages;
};

} // namespace vornic
