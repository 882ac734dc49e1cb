// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#if defined(__GLIBC__)
#include <malloc.h>
#endif

namespace test {

/// Returns how many bytes the program has taken from the allocator; always 0 where that cannot be asked.
inline std::size_t bytes_in_use() {
#if defined(__GLIBC__)
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
#else
    return 0;
#endif
}

} // namespace test
