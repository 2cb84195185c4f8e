#include "base/memory_reserve.h"

#include <sys/mman.h>

#include <cstddef>
#include <new>
#include <utility>

namespace vornic {

namespace {

constexpr std::size_t length = 4 << 20;

} // namespace

// Not from the heap, which keeps what is given back to it for the thread that took it.
MemoryReserve::MemoryReserve()
    : m_pages(::mmap(nullptr, length, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0))
{
    if (m_pages == MAP_FAILED)
        throw std::bad_alloc();
}

MemoryReserve::~MemoryReserve()
{
    giveBack();
}

void MemoryReserve::giveBack() noexcept
{
    if (void *pages = std::exchange(m_pages, nullptr))
        ::munmap(pages, length);
}

} // namespace vornic
