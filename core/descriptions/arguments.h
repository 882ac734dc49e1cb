// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/objects/enumeration.h>

#include <cstdint>
#include <span>

/// Reading the arguments of constructors, all of which may be left out or Undefined.
namespace core {

/// An argument; Undefined where there is none.
[[nodiscard]] inline GenericValue argument(std::span<const GenericValue> arguments, std::size_t index) {
    return index < arguments.size() ? arguments[index] : GenericValue();
}

/// A count of 32 bits, whose fraction is cut off. ContextException for anything but a Number, and for one
/// that is negative or too large.
[[nodiscard]] std::uint32_t count_argument(std::span<const GenericValue> arguments, int index);

/// The number of a value of `enumeration`. ContextException for any other value.
[[nodiscard]] std::int32_t choice_argument(std::span<const GenericValue> arguments, int index,
                                           const Enumeration& enumeration, std::int32_t byDefault);

/// What `of` finds in the argument. ContextException when that is nothing.
template <class Content>
[[nodiscard]] Content content_argument(std::span<const GenericValue> arguments, int index,
                                       const Content* (*of)(const Value&) noexcept) {
    const GenericValue value = argument(arguments, static_cast<std::size_t>(index));
    if (value.isUndefined())
        return {};
    const Content* const content = of(value);
    if (content == nullptr)
        parameter_type_mismatch(index);
    return *content;
}

} // namespace core
