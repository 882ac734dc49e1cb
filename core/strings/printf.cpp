// SPDX-License-Identifier: Apache-2.0
#include "core/strings/plain_numbers.h"

#include <core/runtime/errors.h>
#include <core/runtime/utf8.h>
#include <core/strings/errors.h>
#include <core/strings/integer_text.h>
#include <core/strings/printf.h>

#include <fmt/format.h>
#include <unicode/utf16.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <new>
#include <optional>

namespace core {
namespace {

constexpr std::size_t kLargest = 1'000'000; // of a width or precision

/// One directive, its stars already filled in from the arguments.
struct Directive {
    std::string flags;
    std::size_t width = 0;
    std::optional<std::size_t> precision;
    char conversion = 0;

    [[nodiscard]] bool has(char flag) const noexcept { return flags.find(flag) != std::string::npos; }

    /// The directive for a number, `length` being the length letter.
    [[nodiscard]] std::string narrow(const char* length) const {
        return fmt::format("%{}{}{}{}{}", flags, width > 0 ? fmt::to_string(width) : "",
                           precision ? fmt::format(".{}", *precision) : "", length, conversion);
    }
};

class Printer {
  public:
    Printer(wstring_view format, std::span<const PrintfArgument> arguments) noexcept
        : format_(format), arguments_(arguments) {}

    wstring print() {
        while (at_ < format_.size()) {
            const std::size_t percent = std::min(format_.find(u'%', at_), format_.size());
            result_.append(format_.substr(at_, percent - at_));
            start_ = percent;
            at_ = percent + 1;
            if (percent < format_.size())
                printDirective();
        }
        return std::move(result_);
    }

  private:
    [[noreturn]] void fail() const {
        throw_error<ConverterException>(messages::kPrintfDirective,
                                        {wstring(format_.substr(start_, at_ - start_))});
    }

    [[nodiscard]] bool atAnyOf(wstring_view units) const noexcept {
        return at_ < format_.size() && units.find(format_[at_]) != wstring_view::npos;
    }

    const PrintfArgument::Value& nextArgument() {
        if (used_ == arguments_.size())
            fail();
        return arguments_[used_++].value();
    }

    template <class T>
    const T& next() {
        const T* const value = std::get_if<T>(&nextArgument());
        if (value == nullptr)
            fail();
        return *value;
    }

    // A number in the format; none if there are no digits.
    std::optional<std::size_t> number() {
        std::optional<std::size_t> value;
        for (; at_ < format_.size() && format_[at_] >= u'0' && format_[at_] <= u'9'; ++at_) {
            value = value.value_or(0) * 10 + static_cast<std::size_t>(format_[at_] - u'0');
            if (*value > kLargest)
                fail();
        }
        return value;
    }

    std::int64_t star() {
        ++at_;
        const std::int64_t value = next<PrintfArgument::Integer>().asSigned;
        if (value > std::int64_t{kLargest} || value < -std::int64_t{kLargest})
            fail();
        return value;
    }

    Directive parse() {
        Directive directive;
        while (atAnyOf(u"-+ #0"))
            directive.flags += static_cast<char>(format_[at_++]);
        if (atAnyOf(u"*")) {
            const std::int64_t width = star();
            if (width < 0)
                directive.flags += '-';
            directive.width = static_cast<std::size_t>(std::abs(width));
        } else {
            directive.width = number().value_or(0);
        }
        if (atAnyOf(u".")) {
            ++at_;
            if (!atAnyOf(u"*"))
                directive.precision = number().value_or(0);
            else if (const std::int64_t precision = star(); precision >= 0)
                directive.precision = static_cast<std::size_t>(precision);
        }
        while (atAnyOf(u"hlLjzt"))
            ++at_;
        if (at_ == format_.size() || format_[at_] >= 0x80)
            fail();
        directive.conversion = static_cast<char>(format_[at_++]);
        return directive;
    }

    void printDirective() {
        Directive directive = parse();
        switch (directive.conversion) {
        case '%':
            result_ += u'%';
            break;
        case 'd':
        case 'i':
            printNumber(directive, "j", next<PrintfArgument::Integer>().asSigned);
            break;
        case 'u':
        case 'x':
        case 'X':
        case 'o':
            std::erase_if(directive.flags, [](char flag) { return flag == '+' || flag == ' '; });
            printNumber(directive, "j", next<PrintfArgument::Integer>().asUnsigned);
            break;
        case 'f':
        case 'F':
        case 'e':
        case 'E':
        case 'g':
        case 'G':
        case 'a':
        case 'A':
            printNumber(directive, "", next<double>());
            break;
        case 'c': {
            const auto unit = static_cast<wchar>(next<PrintfArgument::Integer>().asUnsigned);
            pad(directive, wstring_view(&unit, 1));
            break;
        }
        case 's':
            printText(directive);
            break;
        case 'p':
            pad(directive, u"0x" + string_intto(reinterpret_cast<std::uintptr_t>(next<const void*>()), 16));
            break;
        default:
            fail();
        }
    }

    /// `length` is the length letter of the number's type.
    template <class T>
    void printNumber(const Directive& directive, const char* length, T number) {
        const PlainNumbers plain;
        const std::string format = directive.narrow(length);
        const int size = std::snprintf(nullptr, 0, format.c_str(), number);
        if (size < 0) // the format is one that it knows
            throw std::bad_alloc();
        std::string text(static_cast<std::size_t>(size), '\0');
        std::snprintf(text.data(), text.size() + 1, format.c_str(), number);
        result_.append(text.begin(), text.end());
    }

    void printText(const Directive& directive) {
        const PrintfArgument::Value& argument = nextArgument();
        wstring converted;
        wstring_view text;
        if (const auto* const wide = std::get_if<wstring_view>(&argument))
            text = *wide;
        else if (const auto* const narrow = std::get_if<std::string_view>(&argument))
            text = converted = from_utf8(*narrow);
        else
            fail();
        if (directive.precision && *directive.precision < text.size()) {
            std::size_t length = *directive.precision;
            if (length > 0 && U16_IS_LEAD(text[length - 1]) && U16_IS_TRAIL(text[length]))
                --length;
            text = text.substr(0, length);
        }
        pad(directive, text);
    }

    void pad(const Directive& directive, wstring_view text) {
        const std::size_t blanks = directive.width - std::min(directive.width, text.size());
        if (!directive.has('-'))
            result_.append(blanks, u' ');
        result_.append(text);
        if (directive.has('-'))
            result_.append(blanks, u' ');
    }

    wstring_view format_;
    std::span<const PrintfArgument> arguments_;
    std::size_t at_ = 0;
    std::size_t start_ = 0; ///< of the directive being read
    std::size_t used_ = 0;  ///< arguments
    wstring result_;
};

} // namespace

wstring string_vprintf(wstring_view format, std::span<const PrintfArgument> arguments) {
    return Printer(format, arguments).print();
}

std::string string_vprintf(std::string_view format, std::span<const PrintfArgument> arguments) {
    return to_utf8(Printer(from_utf8(format), arguments).print());
}

} // namespace core
