// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tests/support/memory_peak.h"

#include <cstdlib>
#include <new>
#if defined(__GLIBC__)
#include <malloc.h>
#endif

/// The program's memory, which a test can let run out. It replaces the allocation functions of the whole
/// program, so that one source of a test program includes it.
namespace test {

inline thread_local int allocations_left = -1; ///< of this thread; below zero without limit

/// Lets this thread allocate `count` times while it lives.
class AllocationLimit {
  public:
    static constexpr int kNone = -1;

    explicit AllocationLimit(int count) noexcept { allocations_left = count; }
    AllocationLimit(const AllocationLimit&) = delete;
    AllocationLimit& operator=(const AllocationLimit&) = delete;
    ~AllocationLimit() { allocations_left = kNone; }
};

inline void* counted(void* block) noexcept {
#if defined(__GLIBC__)
    count_bytes(static_cast<std::ptrdiff_t>(malloc_usable_size(block)));
#endif
    return block;
}
inline void free_counted(void* block) noexcept {
#if defined(__GLIBC__)
    count_bytes(-static_cast<std::ptrdiff_t>(malloc_usable_size(block)));
#endif
    std::free(block);
}

} // namespace test

// Not inlined, or the compiler misses the pairing of malloc and free.
[[gnu::noinline]] void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    if (test::allocations_left == 0)
        return nullptr;
    test::allocations_left -= test::allocations_left > 0 ? 1 : 0;
    return test::counted(std::malloc(size));
}
[[gnu::noinline]] void* operator new(std::size_t size) {
    if (void* const block = operator new(size, std::nothrow))
        return block;
    throw std::bad_alloc();
}
[[gnu::noinline]] void* operator new(std::size_t size, std::align_val_t alignment) {
    if (test::allocations_left != 0) {
        test::allocations_left -= test::allocations_left > 0 ? 1 : 0;
        if (void* const block = std::aligned_alloc(static_cast<std::size_t>(alignment), size))
            return test::counted(block);
    }
    throw std::bad_alloc();
}
[[gnu::noinline]] void operator delete(void* block) noexcept {
    test::free_counted(block);
}
[[gnu::noinline]] void operator delete(void* block, std::size_t) noexcept {
    test::free_counted(block);
}
[[gnu::noinline]] void operator delete(void* block, std::align_val_t) noexcept {
    test::free_counted(block);
}
[[gnu::noinline]] void operator delete(void* block, std::size_t, std::align_val_t) noexcept {
    test::free_counted(block);
}
