// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/api.h>
#include <core/strings/code_unit.h>

#include <array>
#include <concepts>
#include <cstdint>
#include <span>
#include <type_traits>
#include <variant>

/// Formatting by the directives of printf, with arguments that know their types.
///
///     %[flags -+ #0][width or *][.precision or .*][conversion]
///
///     d i          a decimal integer               f F e E g G a A   a real number, "." as the decimal point
///     u x X o      an unsigned integer             c                 the code unit with the integer's value
///     s            text, wide or UTF-8             p                 an address
///     %            itself
///
/// Numbers are printed as C prints them in its own locale, an address as "0x" and hexadecimal digits.
///
/// The length letters of C (h l L j z t) are accepted and say nothing. Width and precision of text count code
/// units; a surrogate pair is not cut apart. A null pointer is the empty text.
namespace core {

/// One argument. It borrows texts; they live as long as the call.
class PrintfArgument {
  public:
    struct Integer {
        std::int64_t asSigned;
        std::uint64_t asUnsigned; ///< of the same width as the argument
    };
    using Value = std::variant<Integer, double, wstring_view, std::string_view, const void*>;

    template <std::integral T>
    PrintfArgument(T value) noexcept : value_(Integer{static_cast<std::int64_t>(value), unsignedOf(value)}) {}
    PrintfArgument(std::floating_point auto value) noexcept : value_(static_cast<double>(value)) {}
    template <class T>
    requires std::convertible_to<const T&, wstring_view> PrintfArgument(const T& text)
    noexcept : value_(viewed<wchar>(text)) {}
    template <class T>
    requires std::convertible_to<const T&, std::string_view> PrintfArgument(const T& text)
    noexcept : value_(viewed<char>(text)) {}
    PrintfArgument(const void* address) noexcept : value_(address) {}

    [[nodiscard]] const Value& value() const noexcept { return value_; }

  private:
    template <std::integral T>
    static constexpr std::uint64_t unsignedOf(T value) noexcept {
        using Promoted = decltype(+value);
        return static_cast<std::make_unsigned_t<Promoted>>(value);
    }
    template <CodeUnit C, class T>
    static constexpr std::basic_string_view<C> viewed(const T& text) noexcept {
        if constexpr (std::is_pointer_v<T>)
            return text_view<C>(text); // which may be null
        else
            return text;
    }

    Value value_;
};

/// Throws ConverterException when a directive is malformed, has no argument or one of another kind, or asks
/// for a width or precision above a million. Arguments left over are ignored.
[[nodiscard]] CORE_API wstring string_vprintf(wstring_view format, std::span<const PrintfArgument> arguments);
[[nodiscard]] CORE_API std::string string_vprintf(std::string_view format,
                                                  std::span<const PrintfArgument> arguments);

template <class... T>
[[nodiscard]] wstring string_printf(wstring_view format, const T&... arguments) {
    return string_vprintf(format, std::array<PrintfArgument, sizeof...(T)>{arguments...});
}
template <class... T>
[[nodiscard]] std::string string_printf(std::string_view format, const T&... arguments) {
    return string_vprintf(format, std::array<PrintfArgument, sizeof...(T)>{arguments...});
}

} // namespace core
