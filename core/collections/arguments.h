// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/lists/list_in_stream.h>
#include <core/values/value.h>

#include <cstdint>

namespace core {

/// The whole part of a Number, as an index. One that does not fit 32 bits gives the nearest 64-bit number,
/// which is out of every bound. ContextException for an argument that is no Number.
[[nodiscard]] std::int64_t unusual_index_argument(const Value& argument, int param);
[[nodiscard]] inline std::int64_t index_argument(const Value& argument, int param) {
    const auto whole = argument.asSmallWhole();
    return whole && *whole == static_cast<std::int32_t>(*whole) ? *whole
                                                                : unusual_index_argument(argument, param);
}

/// "IDS_INDEX_OFFBOUND".
[[noreturn]] void throw_bad_index();
/// The number of elements that follow. ListStreamException for a negative one.
[[nodiscard]] std::int64_t get_count(ListInStream& in);

} // namespace core
