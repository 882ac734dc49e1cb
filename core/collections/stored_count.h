// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/lists/malformed.h"

#include <core/lists/list_in_stream.h>

#include <cstdint>

namespace core {

/// Reads the number of elements that follow. ListStreamException for a negative one.
[[nodiscard]] inline std::int64_t get_count(ListInStream& in) {
    std::int64_t count = 0;
    in.get(count);
    if (count < 0)
        throw_malformed();
    return count;
}

} // namespace core
