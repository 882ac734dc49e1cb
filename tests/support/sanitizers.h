// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace core::test {

/// Whether the address sanitizer watches: it ends the program where memory that nobody has is asked for, and
/// keeps freed memory for a while.
#ifdef __has_feature // clang
inline constexpr bool kAddressSanitizer = __has_feature(address_sanitizer);
#elif defined(__SANITIZE_ADDRESS__)
inline constexpr bool kAddressSanitizer = true;
#else
inline constexpr bool kAddressSanitizer = false;
#endif

/// Whether the thread sanitizer watches: it keeps the whole stack of each allocation, which fills the memory
/// where the stack is deep.
#ifdef __has_feature
inline constexpr bool kThreadSanitizer = __has_feature(thread_sanitizer);
#elif defined(__SANITIZE_THREAD__)
inline constexpr bool kThreadSanitizer = true;
#else
inline constexpr bool kThreadSanitizer = false;
#endif

} // namespace core::test
