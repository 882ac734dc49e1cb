// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/strings/split.h>
#include <core/values/generic_value.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

/// Reading the arguments of calls and constructors, and refusing wrong ones. Every failure is a
/// ContextException. Parameters are numbered from 0 here and from 1 in the messages that users read.
///
/// A function called `..._argument` takes an argument and the number of its parameter, which only its
/// messages use. It refuses an argument of another type with parameter_type_mismatch().
namespace core {

/// Throws "IDS_PARAMETER_N_TYPE_MISMATCH": the argument is of a type that the parameter does not take.
[[noreturn]] CORE_API void parameter_type_mismatch(int param);
/// Throws "IDS_PARAMETER_N_VALUE_MISMATCH": the type is right, but such a value makes no sense.
[[noreturn]] CORE_API void parameter_value_mismatch(int param);
/// Throws "IDS_INDEX_OFFBOUND": there is no element with that index.
[[noreturn]] CORE_API void throw_bad_index();
/// Throws "IDS_COLLECTION_BADOFFSET": moving an element that far would take it out of its collection.
[[noreturn]] CORE_API void throw_bad_offset();

/// Returns the argument with that index, borrowed; Undefined where the caller gave fewer arguments.
[[nodiscard]] CORE_API const GenericValue& optional_argument(std::span<const GenericValue> arguments,
                                                             std::size_t index) noexcept;

/// Returns a Boolean.
[[nodiscard]] CORE_API bool flag_argument(const Value& argument, int param);
/// Returns a Number.
[[nodiscard]] CORE_API Numeric number_argument(const Value& argument, int param);
/// Returns the text of a String, borrowed from the argument.
[[nodiscard]] CORE_API wstring_view text_argument(const Value& argument, int param);
/// Returns the text of a String, borrowed from the argument; Undefined gives the empty text.
[[nodiscard]] inline wstring_view optional_text_argument(const Value& argument, int param) {
    return argument.isUndefined() ? wstring_view() : text_argument(argument, param);
}
/// Returns the items of a String with "," between them, without the white space around each. They are
/// borrowed from the argument. With EmptyTokens::keep a blank String has one item, which is empty.
[[nodiscard]] CORE_API std::vector<wstring_view> list_argument(const Value& argument, int param,
                                                               EmptyTokens empty = EmptyTokens::keep);
/// Returns the interface `I` of an object, with a reference.
template <Interface I>
[[nodiscard]] InterfacePtr<I> object_argument(const Value& argument, int param) {
    auto object = argument.query<I>();
    if (!object)
        parameter_type_mismatch(param);
    return object;
}

/// Returns a Number without its fraction as a count; Undefined stands for `byDefault`. Refuses a negative
/// number, and one that 32 bits do not hold, with parameter_value_mismatch().
[[nodiscard]] CORE_API std::uint32_t count_argument(const Value& argument, int param,
                                                    std::uint32_t byDefault = 0);

namespace detail {

[[nodiscard]] CORE_API std::int64_t unusual_index_argument(const Value& argument, int param);

} // namespace detail

/// Returns a Number without its fraction as an index. A number that 32 bits do not hold gives the nearest
/// 64-bit number, which is out of every bound.
[[nodiscard]] inline std::int64_t index_argument(const Value& argument, int param) {
    const auto whole = argument.asSmallWhole();
    const bool usual = whole && *whole == static_cast<std::int32_t>(*whole);
    return usual ? *whole : detail::unusual_index_argument(argument, param);
}

/// Which positions an index may name.
enum class IndexBound {
    element,  ///< those of the elements
    insertion ///< those where an element can be inserted: of the elements, and the end
};
/// Returns the position that an index names among `count` elements. The index is read as index_argument()
/// reads it; one that names no position throws "IDS_INDEX_OFFBOUND".
[[nodiscard]] CORE_API std::size_t position_argument(const Value& argument, int param, std::size_t count,
                                                     IndexBound bound = IndexBound::element);
/// Returns where the element at `from` of `count` ends up when it is moved by the offset that the argument
/// names. An offset beyond either end throws "IDS_COLLECTION_BADOFFSET".
[[nodiscard]] CORE_API std::size_t target_argument(const Value& argument, int param, std::size_t from,
                                                   std::size_t count);

} // namespace core
