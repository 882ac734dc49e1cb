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

} // namespace core::test
