// Replaces the global allocation functions to count calls. Kept in a
// translation unit of its own so that the compiler never sees a replaced
// operator new and the free() of a replaced delete in one function.
#include "AllocationCounter.h"

#include <cstdlib>
#include <new>

namespace {

std::size_t gAllocations = 0;

void* Allocate(std::size_t size)
{
    ++gAllocations;
    return std::malloc(size == 0 ? 1 : size);
}

} // namespace

std::size_t AllocationCount() { return gAllocations; }

// Every non-aligned form is replaced, so that allocation and release always
// pair up (the sanitizer builds check that).
void* operator new(std::size_t size)
{
    if (void* p = Allocate(size)) {
        return p;
    }
    throw std::bad_alloc();
}
void* operator new[](std::size_t size)
{
    if (void* p = Allocate(size)) {
        return p;
    }
    throw std::bad_alloc();
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return Allocate(size); }
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept { return Allocate(size); }
void operator delete(void* p) noexcept { std::free(p); }
void operator delete[](void* p) noexcept { std::free(p); }
void operator delete(void* p, std::size_t) noexcept { std::free(p); }
void operator delete[](void* p, std::size_t) noexcept { std::free(p); }
void operator delete(void* p, const std::nothrow_t&) noexcept { std::free(p); }
void operator delete[](void* p, const std::nothrow_t&) noexcept { std::free(p); }
