// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/errors.h>

#include <cstddef>
#include <cstdint>
#include <limits>

namespace core {

/// The length of a text as ICU takes it. Throws ConverterException for a text that is too long for it.
[[nodiscard]] inline std::int32_t icu_length(std::size_t length) {
    if (length > static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max()))
        throw_error<ConverterException>(messages::kStringTooLong);
    return static_cast<std::int32_t>(length);
}

} // namespace core
