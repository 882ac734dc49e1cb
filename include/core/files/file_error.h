// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/api.h>
#include <core/runtime/error.h>

#include <cstdint>
#include <limits>

namespace core {

/// No position or length of a file is greater: offsets are signed 64-bit numbers to the system.
inline constexpr std::uint64_t kMaxFileLength = std::numeric_limits<std::int64_t>::max();

/// Throws FileException with the text stored under `id`, whose {0} is the URL and whose {1} is the system's
/// reason for `systemError` (errno).
[[noreturn]] CORE_API void throw_file_error(const char* id, const wstring& url, int systemError,
                                            IExceptionObject* cause = nullptr);

} // namespace core
