// SPDX-License-Identifier: Apache-2.0
#include "core/locales/format_items.h"

#include "core/runtime/thread_locale.h"

#include <core/locales/errors.h>
#include <core/runtime/errors.h>
#include <core/runtime/utf8.h>
#include <core/strings/char_class.h>
#include <core/strings/compare.h>
#include <core/strings/integer_text.h>
#include <core/strings/trim.h>

#include <algorithm>

namespace core {
namespace {

wstring place(std::size_t position) {
    return from_utf8(std::to_string(position));
}

/// Walks over a format string and knows where it is.
class Scanner {
  public:
    explicit Scanner(wstring_view format) : format_(format), rest_(format) {}

    [[nodiscard]] wstring_view rest() const noexcept { return rest_; }
    [[nodiscard]] std::size_t position() const noexcept { return format_.size() - rest_.size() + 1; }
    void skip(std::size_t count) noexcept { rest_.remove_prefix(std::min(count, rest_.size())); }
    void skipSpace() noexcept { rest_ = trim_left(rest_); }
    [[noreturn]] void refuse() const {
        throw_error<CtorException>(messages::kFormatItem, {wstring(rest_), place(position())});
    }

    /// Takes the value, with the ";" behind it.
    wstring takeValue() {
        skipSpace();
        if (!rest_.starts_with(u'\'')) {
            const wstring_view value = rest_.substr(0, rest_.find(u';'));
            skip(value.size() + 1);
            return wstring(trim_right(value));
        }
        std::optional<wstring> value = take_quoted(rest_);
        if (!value)
            refuse();
        skipSpace();
        if (!rest_.empty() && rest_.front() != u';')
            refuse();
        skip(1);
        return std::move(*value);
    }

  private:
    wstring_view format_;
    wstring_view rest_;
};

[[noreturn]] void refuse_name(wstring_view name, std::size_t position, std::span<const NamePair> known) {
    const int alias = detail::resource_locale().isRussian() ? kRussian : kEnglish;
    wstring names;
    for (const NamePair& each : known)
        names.append(names.empty() ? u"" : u", ").append(term_string(each, alias));
    throw_error<CtorException>(messages::kFormatItemName, {wstring(name), place(position), names});
}

/// A number of one to four digits, none for any other text.
std::optional<std::size_t> small_number(wstring_view text) noexcept {
    std::size_t number = 0;
    if (text.empty() || text.size() > 4 || !std::all_of(text.begin(), text.end(), is_ascii_digit))
        return std::nullopt;
    for (const wchar c : text)
        number = number * 10 + static_cast<std::size_t>(c - u'0');
    return number;
}

} // namespace

std::optional<wstring> take_quoted(wstring_view& rest) {
    wstring text;
    for (std::size_t at = 1;;) {
        const std::size_t end = rest.find(u'\'', at);
        if (end == wstring_view::npos)
            return std::nullopt;
        text += rest.substr(at, end - at);
        at = end + 1;
        if (at == rest.size() || rest[at] != u'\'') {
            rest.remove_prefix(at);
            return text;
        }
        text += u'\'';
        ++at;
    }
}

const wstring& FormatItem::text() const {
    if (value.empty() || is_space(value.front()))
        refuse();
    return value;
}

std::size_t FormatItem::number(std::size_t least, std::size_t most) const {
    const std::optional<std::size_t> number = small_number(value);
    if (!number || *number < least || *number > most)
        refuse();
    return *number;
}

Locale FormatItem::locale() const {
    if (value.empty())
        refuse();
    try {
        return Locale(to_utf8(value));
    } catch (const LocaleException&) {
        refuse(); // which tells the place, too
    }
}

void FormatItem::refuse() const {
    throw_error<CtorException>(messages::kFormatItemValue, {wstring(name), place(position), value});
}

DigitRange DigitRange::of(const FormatItem& item, std::size_t smallest) {
    constexpr std::size_t kMost = 1000;
    const std::size_t dots = item.value.find(u"..");
    if (dots == wstring::npos) {
        const std::size_t number = item.number(smallest, kMost);
        return {number, number};
    }
    const wstring_view front = trim_right(wstring_view(item.value).substr(0, dots));
    const wstring_view back = trim_left(wstring_view(item.value).substr(dots + 2));
    const std::optional<std::size_t> least = front.empty() ? std::optional(smallest) : small_number(front);
    const std::optional<std::size_t> most = back.empty() ? std::optional(kNoLimit) : small_number(back);
    const bool given = !front.empty() || !back.empty();
    if (!given || !least || !most || *least > kMost || *least < smallest || *least > *most ||
        (*most > kMost && *most != kNoLimit))
        item.refuse();
    return {*least, *most};
}

std::optional<std::size_t> find_word(wstring_view text, std::span<const NamePair> words) {
    for (std::size_t i = 0; i < words.size(); ++i) {
        for (const int alias : {kEnglish, kRussian}) {
            if (compare_nocase(text, wstring_view(term_string(words[i], alias))) == 0)
                return i;
        }
    }
    return std::nullopt;
}

std::vector<FormatItem> format_items(wstring_view format, std::span<const NamePair> known) {
    std::vector<FormatItem> items;
    Scanner scanner(format);
    for (scanner.skipSpace(); !scanner.rest().empty(); scanner.skipSpace()) {
        if (scanner.rest().front() == u';') {
            scanner.skip(1);
            continue;
        }
        const std::size_t length = scanner.rest().find(u'=');
        if (length == wstring_view::npos)
            scanner.refuse();
        const wstring_view name = trim_right(scanner.rest().substr(0, length));
        const std::size_t position = scanner.position();
        const auto term = find_word(name, known);
        if (!term)
            refuse_name(name, position, known);
        const bool again = std::any_of(items.begin(), items.end(),
                                       [&](const FormatItem& other) { return other.term == *term; });
        if (again)
            scanner.refuse();
        scanner.skip(length + 1);
        items.push_back({*term, name, position, scanner.takeValue()});
    }
    return items;
}

} // namespace core
