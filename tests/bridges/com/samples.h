// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/values/generic_value.h>

#include <string>
#include <string_view>
#include <vector>

namespace core::com {

/// Returns a new object of a type, with some content; of an enumeration the object with its values, of a type
/// without objects a value. Works in the current folder, in which there is a file "A". Throws what making it
/// throws.
[[nodiscard]] GenericValue sample_of(wstring_view type);

/// How many of the values below most calls want: numbers and names.
inline constexpr std::size_t kUsualArguments = 6;
/// Returns values that calls of a sample may want: some of each kind, then what lives inside the sample.
/// Dates come last, `dates` is where. Two samples of one type have as many, with the same meaning.
[[nodiscard]] std::vector<GenericValue> arguments_for(const GenericValue& sample, std::size_t& dates);

/// Returns whether a property, by its English name, differs from one moment to the next.
[[nodiscard]] bool differs_by_moment(std::string_view property);
/// Says what a value is: its type, its presentation, its other properties and its elements, as deep as
/// wanted.
[[nodiscard]] std::string state_of(const GenericValue& value, int depth = 2);

} // namespace core::com
