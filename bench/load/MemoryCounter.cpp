// Replaces the global allocation functions to follow the bytes held. Kept in
// a translation unit of its own so that the compiler never sees a replaced
// operator new and the free() of a replaced delete in one function.
#include "MemoryCounter.h"

#include <malloc.h>

#include <cstdlib>
#include <new>

namespace {

std::size_t gLive = 0;
std::size_t gPeak = 0;

void* Allocate(std::size_t size)
{
    void* p = std::malloc(size == 0 ? 1 : size);
    if (p != nullptr) {
        gLive += malloc_usable_size(p);
        if (gLive > gPeak)
            gPeak = gLive;
    }
    return p;
}

void Release(void* p)
{
    if (p == nullptr)
        return;
    gLive -= malloc_usable_size(p);
    std::free(p);
}

} // namespace

std::size_t LiveBytes() { return gLive; }
std::size_t PeakBytes() { return gPeak; }
void ResetPeakBytes() { gPeak = gLive; }

void* operator new(std::size_t size)
{
    if (void* p = Allocate(size))
        return p;
    throw std::bad_alloc();
}
void* operator new[](std::size_t size)
{
    if (void* p = Allocate(size))
        return p;
    throw std::bad_alloc();
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return Allocate(size); }
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept { return Allocate(size); }
void operator delete(void* p) noexcept { Release(p); }
void operator delete[](void* p) noexcept { Release(p); }
void operator delete(void* p, std::size_t) noexcept { Release(p); }
void operator delete[](void* p, std::size_t) noexcept { Release(p); }
void operator delete(void* p, const std::nothrow_t&) noexcept { Release(p); }
void operator delete[](void* p, const std::nothrow_t&) noexcept { Release(p); }
