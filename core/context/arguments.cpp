// SPDX-License-Identifier: Apache-2.0
#include <core/context/arguments.h>
#include <core/context/errors.h>
#include <core/strings/integer_text.h>
#include <core/strings/trim.h>
#include <core/values/errors.h>

#include <limits>

namespace core {

void parameter_type_mismatch(int param) {
    throw_error<ContextException>(messages::kParameterType, {string_intto(param + 1)});
}

void parameter_value_mismatch(int param) {
    throw_error<ContextException>(messages::kParameterValue, {string_intto(param + 1)});
}

void throw_bad_index() {
    throw_error<ContextException>(messages::kBadIndex);
}

namespace {

/// The parameters tell which index, and how many elements there are.
[[noreturn]] void throw_bad_index(const Value& index, std::size_t count) {
    throw_error<ContextException>(messages::kBadIndex, {index.presentation(), string_intto(count)});
}

} // namespace

void throw_bad_offset() {
    throw_error<ContextException>(messages::kBadOffset);
}

const GenericValue& optional_argument(std::span<const GenericValue> arguments, std::size_t index) noexcept {
    static const GenericValue undefined;
    return index < arguments.size() ? arguments[index] : undefined;
}

bool flag_argument(const Value& argument, int param) {
    if (argument.kind() != ValueKind::boolean)
        parameter_type_mismatch(param);
    return argument.isTrue();
}

Numeric number_argument(const Value& argument, int param) {
    const auto number = argument.asNumeric();
    if (!number)
        parameter_type_mismatch(param);
    return *number;
}

wstring_view text_argument(const Value& argument, int param) {
    const wstring_view* const text = argument.asString();
    if (text == nullptr)
        parameter_type_mismatch(param);
    return *text;
}

std::vector<wstring_view> list_argument(const Value& argument, int param, EmptyTokens empty) {
    std::vector<wstring_view> items = string_tokenize(text_argument(argument, param), u",", empty);
    for (wstring_view& item : items)
        item = trim_all(item);
    return items;
}

std::uint32_t count_argument(const Value& argument, int param, std::uint32_t byDefault) {
    if (argument.isUndefined())
        return byDefault;
    const Numeric number = number_argument(argument, param);
    if (number <= -1 || number >= std::int64_t{1} << 32)
        parameter_value_mismatch(param);
    return static_cast<std::uint32_t>(number);
}

std::int64_t detail::unusual_index_argument(const Value& argument, int param) {
    const Numeric number = number_argument(argument, param);
    using Wide = std::numeric_limits<std::int64_t>;
    const auto wholeLimbs = static_cast<std::int64_t>(number.limbs().size()) - number.fractionLimbs();
    if (wholeLimbs <= 2) { // below 10^18
        const auto index = static_cast<std::int64_t>(number);
        if (index == static_cast<std::int32_t>(index))
            return index;
    }
    return number.sign() < 0 ? Wide::min() : Wide::max();
}

std::size_t position_argument(const Value& argument, int param, std::size_t count, IndexBound bound) {
    const std::int64_t index = index_argument(argument, param);
    const std::size_t end = count + (bound == IndexBound::insertion ? 1 : 0);
    if (index < 0 || static_cast<std::uint64_t>(index) >= end)
        throw_bad_index(argument, count);
    return static_cast<std::size_t>(index);
}

std::size_t target_argument(const Value& argument, int param, std::size_t from, std::size_t count) {
    const std::int64_t offset = index_argument(argument, param);
    const auto position = static_cast<std::int64_t>(from);
    if (offset < -position || offset >= static_cast<std::int64_t>(count) - position)
        throw_bad_offset();
    return static_cast<std::size_t>(position + offset);
}

} // namespace core
