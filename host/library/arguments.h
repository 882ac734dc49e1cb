// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/context/arguments.h>
#include <core/context/context_impl.h>
#include <core/streams/encoding.h>
#include <core/strings/compare.h>
#include <core/strings/integer_text.h>
#include <core/values/errors.h>
#include <core/values/generic_value.h>

#include <cstddef>
#include <optional>
#include <span>

/// What the functions of scripts take from their arguments. Parameters are numbered from 0; ContextException
/// for an argument of the wrong type.
namespace core::script {

using Args = std::span<GenericValue>;

[[nodiscard]] inline bool given(const GenericValue& value) {
    return !value.isUndefined();
}

[[nodiscard]] inline wstring_view text_argument(Args arguments, int param) {
    return text_argument(arguments[static_cast<std::size_t>(param)], param);
}

/// The encoding by its name: UTF-8 where none is given, nothing for "auto", which is to be found.
[[nodiscard]] inline std::optional<Encoding> encoding_argument(Args arguments, int param) {
    if (!given(arguments[static_cast<std::size_t>(param)]))
        return Encoding();
    const wstring_view name = text_argument(arguments, param);
    return name == u"auto" ? std::nullopt : std::optional(Encoding(name));
}
/// The encoding to write in.
[[nodiscard]] inline Encoding written_encoding_argument(Args arguments, int param) {
    const auto encoding = encoding_argument(arguments, param);
    if (!encoding)
        parameter_value_mismatch(param);
    return *encoding;
}

/// Refuses an argument that has no such reading; a text is what `id` says it is not.
[[noreturn]] inline void refuse_reading(Args arguments, int param, const char* id) {
    const wstring_view* const text = arguments[static_cast<std::size_t>(param)].asString();
    if (text == nullptr)
        parameter_type_mismatch(param);
    throw_error<ContextException>(id, {string_intto(param + 1), wstring(*text)});
}

/// Whether the argument is a word in either language, in any case.
[[nodiscard]] inline bool is_word(const GenericValue& argument, wstring_view english, wstring_view russian) {
    const wstring_view* const text = argument.asString();
    return text != nullptr && (compare_nocase(*text, english) == 0 || compare_nocase(*text, russian) == 0);
}

/// What a value of any type reads as a number.
[[nodiscard]] inline Numeric number_reading(Args arguments, int param) {
    Numeric number;
    if (!arguments[static_cast<std::size_t>(param)].getNumeric(number))
        refuse_reading(arguments, param, "IDS_SCRIPT_NO_NUMBER");
    return number;
}

/// A count or position: cut to a whole number, not below 0 and not above `most`.
[[nodiscard]] inline std::size_t clamped_count(Args arguments, int param, std::size_t most) {
    const Numeric number = number_reading(arguments, param);
    if (number.sign() <= 0)
        return 0;
    return number.compare(Numeric(most)) >= 0 ? most : static_cast<std::size_t>(number);
}

} // namespace core::script
