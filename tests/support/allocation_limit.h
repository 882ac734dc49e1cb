// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdlib>
#include <new>

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

} // namespace test

// Not inlined, or the compiler misses the pairing of malloc and free.
[[gnu::noinline]] void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    if (test::allocations_left == 0)
        return nullptr;
    test::allocations_left -= test::allocations_left > 0 ? 1 : 0;
    return std::malloc(size);
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
            return block;
    }
    throw std::bad_alloc();
}
[[gnu::noinline]] void operator delete(void* block) noexcept {
    std::free(block);
}
[[gnu::noinline]] void operator delete(void* block, std::size_t) noexcept {
    std::free(block);
}
[[gnu::noinline]] void operator delete(void* block, std::align_val_t) noexcept {
    std::free(block);
}
[[gnu::noinline]] void operator delete(void* block, std::size_t, std::align_val_t) noexcept {
    std::free(block);
}
