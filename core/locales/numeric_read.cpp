// SPDX-License-Identifier: Apache-2.0
#include "core/locales/numeric_layout.h"
#include "core/locales/text_match.h"

namespace core {
namespace {

/// Moves the digits at the front of `rest` to `plain`, and returns how many they are.
std::size_t take_digits(wstring_view& rest, const DigitUnits& units, std::string& plain) {
    const std::size_t before = plain.size();
    for (int digit = units.take(rest); digit >= 0; digit = units.take(rest))
        plain += static_cast<char>('0' + digit);
    return plain.size() - before;
}

/// Takes the groups behind the first one off the front of `rest`: as many as are of the right sizes.
void take_groups(wstring_view& rest, const NumericLayout& layout, std::string& plain) {
    wstring_view probe = rest;
    std::size_t accepted = plain.size();
    while (take_text(probe, layout.group)) {
        const std::size_t count = take_digits(probe, layout.digits, plain);
        if (count == layout.grouping.last) {
            rest = probe;
            accepted = plain.size();
        }
        if (count != layout.grouping.other)
            break;
    }
    plain.resize(accepted);
}

/// Takes a number without its sign off the front of `rest`; false when no digit stands there.
bool take_number(wstring_view& rest, const NumericLayout& layout, std::string& plain) {
    const std::size_t begin = plain.size();
    const std::size_t whole = take_digits(rest, layout.digits, plain);
    // "0.123" does not mean 123 in groups.
    const bool mayBeFirst = whole != 0 && whole <= layout.grouping.other &&
                            (plain[begin] != '0' || layout.whole > layout.grouping.last);
    if (!layout.group.empty() && mayBeFirst)
        take_groups(rest, layout, plain);

    wstring_view probe = rest;
    const std::size_t point = plain.size();
    if (!take_text(probe, layout.point))
        return whole != 0;
    plain += '.';
    if (take_digits(probe, layout.digits, plain) == 0 && whole == 0) {
        plain.resize(point);
        return false;
    }
    rest = probe;
    return true;
}

} // namespace

std::size_t NumericLayout::readDigits(wstring_view text, wstring_view prefix, wstring_view suffix,
                                      std::string& plain) const {
    wstring_view rest = text;
    if (!take_text(rest, prefix) || !take_number(rest, *this, plain) || !take_text(rest, suffix))
        return 0;
    return text.size() - rest.size();
}

/// The longest reading counts: the text of zero may begin like a number ("0 pcs"), a number like the text of
/// zero ("-5" where zero is "-"), and a negative number like one that is not ("5-").
std::optional<std::size_t> NumericLayout::read(wstring_view text, Numeric& number) const {
    std::string best;
    std::size_t length = 0;
    std::string plain;
    const auto attempt = [&](const char* sign, std::size_t skipped, wstring_view prefix,
                             wstring_view suffix) {
        plain = sign;
        const std::size_t count = readDigits(text.substr(skipped), prefix, suffix, plain);
        if (count != 0 && skipped + count > length) {
            length = skipped + count;
            best.swap(plain);
        }
    };
    attempt("", 0, affixes.prefix, affixes.suffix);
    if (length == 0 || affixes.negativeSuffix != affixes.suffix)
        attempt("-", 0, affixes.negativePrefix, affixes.negativeSuffix);
    if (length == 0 && !text.empty() && (is_same_unit(text.front(), u'-') || text.front() == u'+'))
        attempt(text.front() == u'+' ? "" : "-", 1, affixes.prefix, affixes.suffix);

    if (zero && (zero->empty() ? text.empty() : zero->size() > length && text.starts_with(*zero))) {
        number = Numeric();
        return zero->size();
    }
    if (length == 0)
        return std::nullopt;
    number = Numeric::fromString(std::string_view(best));
    if (factor.sign() != 0)
        number *= divisor;
    return length;
}

} // namespace core
