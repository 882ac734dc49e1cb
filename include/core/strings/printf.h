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
/// The length letters of C (h l L j z t) are accepted and mean nothing. Width and precision of text count
/// code units; a surrogate pair is not cut apart. A null pointer is the empty text. All functions are safe on
/// any thread.
namespace core {

/// One argument. It borrows a text, which must live until the call returns.
class PrintfArgument {
  public:
    /// An integer of any type, in both readings of its bits.
    struct Integer {
        std::int64_t asSigned;    ///< the value of a signed argument
        std::uint64_t asUnsigned; ///< of the same width as the argument
    };
    /// What an argument can be.
    using Value = std::variant<Integer, double, wstring_view, std::string_view, const void*>;

    /// Takes an integer of any built-in type.
    template <std::integral T>
    PrintfArgument(T value) noexcept : value_(Integer{static_cast<std::int64_t>(value), unsignedOf(value)}) {}
    /// Takes a real number; one of a longer type is rounded to `double`.
    PrintfArgument(std::floating_point auto value) noexcept : value_(static_cast<double>(value)) {}
    /// Borrows a wide text. A null pointer is the empty text.
    template <class T>
    requires std::convertible_to<const T&, wstring_view> PrintfArgument(const T& text)
    noexcept : value_(viewed<wchar>(text)) {}
    /// Borrows a text in UTF-8. A null pointer is the empty text.
    template <class T>
    requires std::convertible_to<const T&, std::string_view> PrintfArgument(const T& text)
    noexcept : value_(viewed<char>(text)) {}
    /// Takes an address, which is printed and never followed.
    PrintfArgument(const void* address) noexcept : value_(address) {}

    /// Returns what the argument is.
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

/// Returns the format with its directives replaced by the arguments, in their order. Throws
/// ConverterException when a directive is malformed, has no argument or one of another kind, or asks for a
/// width or precision above a million. Arguments left over are ignored.
[[nodiscard]] CORE_API wstring string_vprintf(wstring_view format, std::span<const PrintfArgument> arguments);
/// Returns the format, in UTF-8, with its directives replaced by the arguments. Throws what the wide function
/// throws.
[[nodiscard]] CORE_API std::string string_vprintf(std::string_view format,
                                                  std::span<const PrintfArgument> arguments);

/// Returns what string_vprintf() returns for these arguments, and throws what it throws.
template <class... T>
[[nodiscard]] wstring string_printf(wstring_view format, const T&... arguments) {
    return string_vprintf(format, std::array<PrintfArgument, sizeof...(T)>{arguments...});
}
/// Returns what string_vprintf() returns in UTF-8 for these arguments, and throws what it throws.
template <class... T>
[[nodiscard]] std::string string_printf(std::string_view format, const T&... arguments) {
    return string_vprintf(format, std::array<PrintfArgument, sizeof...(T)>{arguments...});
}

} // namespace core
