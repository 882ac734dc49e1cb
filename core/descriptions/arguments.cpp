// SPDX-License-Identifier: Apache-2.0
#include "core/descriptions/arguments.h"

namespace core {

std::uint32_t count_argument(std::span<const GenericValue> arguments, int index) {
    const GenericValue value = argument(arguments, static_cast<std::size_t>(index));
    if (value.isUndefined())
        return 0;
    const auto number = value.asNumeric();
    if (!number)
        parameter_type_mismatch(index);
    if (*number <= -1 || *number >= std::int64_t{1} << 32)
        parameter_value_mismatch(index);
    return static_cast<std::uint32_t>(*number);
}

std::int32_t choice_argument(std::span<const GenericValue> arguments, int index,
                             const Enumeration& enumeration, std::int32_t byDefault) {
    const GenericValue value = argument(arguments, static_cast<std::size_t>(index));
    if (value.isUndefined())
        return byDefault;
    const auto number = enumeration.number(value);
    if (!number)
        parameter_type_mismatch(index);
    return *number;
}

} // namespace core
