// Counting replacements of every global allocation function, for the tests
// that prove an operation allocates nothing. Include this header in exactly
// one source file of a test program: it defines the replaced functions.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <new>

namespace {

std::atomic<bool> g_counting{false};
std::atomic<long> g_allocations{0};

void* Allocate(std::size_t size)
{
    if (g_counting.load(std::memory_order_relaxed)) {
        g_allocations.fetch_add(1, std::memory_order_relaxed);
    }
    return std::malloc(size == 0 ? 1 : size);
}

void* AllocateAligned(std::size_t size, std::align_val_t alignment)
{
    if (g_counting.load(std::memory_order_relaxed)) {
        g_allocations.fetch_add(1, std::memory_order_relaxed);
    }
    std::size_t const a = static_cast<std::size_t>(alignment);
    std::size_t const rounded = ((size == 0 ? 1 : size) + a - 1) / a * a;
    return std::aligned_alloc(a, rounded);
}

void* OrThrow(void* p)
{
    if (p == nullptr) {
        throw std::bad_alloc();
    }
    return p;
}

}  // namespace

void* operator new(std::size_t size)
{
    return OrThrow(Allocate(size));
}
void* operator new[](std::size_t size)
{
    return OrThrow(Allocate(size));
}
void* operator new(std::size_t size, std::nothrow_t const&) noexcept
{
    return Allocate(size);
}
void* operator new[](std::size_t size, std::nothrow_t const&) noexcept
{
    return Allocate(size);
}
void* operator new(std::size_t size, std::align_val_t alignment)
{
    return OrThrow(AllocateAligned(size, alignment));
}
void* operator new[](std::size_t size, std::align_val_t alignment)
{
    return OrThrow(AllocateAligned(size, alignment));
}
void* operator new(std::size_t size, std::align_val_t alignment, std::nothrow_t const&) noexcept
{
    return AllocateAligned(size, alignment);
}
void* operator new[](std::size_t size, std::align_val_t alignment, std::nothrow_t const&) noexcept
{
    return AllocateAligned(size, alignment);
}

// The deletes below pair with the mallocs above. Once GCC inlines them into a
// caller it judges free() against the standard pairing of new with delete and
// warns of a mismatch that these replacements do not have.
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wmismatched-new-delete"
#endif
void operator delete(void* p) noexcept
{
    std::free(p);
}
void operator delete[](void* p) noexcept
{
    std::free(p);
}
void operator delete(void* p, std::size_t) noexcept
{
    std::free(p);
}
void operator delete[](void* p, std::size_t) noexcept
{
    std::free(p);
}
void operator delete(void* p, std::nothrow_t const&) noexcept
{
    std::free(p);
}
void operator delete[](void* p, std::nothrow_t const&) noexcept
{
    std::free(p);
}
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic pop
#endif
void operator delete(void* p, std::align_val_t) noexcept
{
    std::free(p);
}
void operator delete[](void* p, std::align_val_t) noexcept
{
    std::free(p);
}
void operator delete(void* p, std::size_t, std::align_val_t) noexcept
{
    std::free(p);
}
void operator delete[](void* p, std::size_t, std::align_val_t) noexcept
{
    std::free(p);
}
void operator delete(void* p, std::align_val_t, std::nothrow_t const&) noexcept
{
    std::free(p);
}
void operator delete[](void* p, std::align_val_t, std::nothrow_t const&) noexcept
{
    std::free(p);
}

namespace {

// Allocations made while call runs. No test framework call may happen inside.
template <typename Call>
long AllocationsDuring(Call&& call)
{
    g_allocations.store(0);
    g_counting.store(true);
    call();
    g_counting.store(false);
    return g_allocations.load();
}

}  // namespace
