// SPDX-License-Identifier: Apache-2.0
// The grammar of patterns.
#include "core/locales/date_layout.h"
#include "core/locales/format_items.h"
#include "core/locales/number_symbols.h"

#include <core/locales/errors.h>
#include <core/runtime/utf8.h>
#include <core/strings/char_class.h>

#include <algorithm>

namespace core {
namespace {

/// The widths that a letter may have, one bit each. A part of a date may come once, in whichever letter:
/// letters of one part stand under the same `part`.
struct Letter {
    wchar letter;
    wchar part;
    unsigned widths;
};

constexpr unsigned widths(std::size_t first, std::size_t last) noexcept {
    return (2U << last) - (1U << first);
}

constexpr Letter kLetters[] = {{u'G', u'G', widths(1, 4)},
                               {u'y', u'y', widths(1, 2) | widths(4, 4)},
                               {u'u', u'y', widths(1, 1) | widths(4, 4)},
                               {u'Y', u'Y', widths(1, 1) | widths(4, 4)},
                               {u'Q', u'Q', widths(1, 4)},
                               {u'q', u'Q', widths(1, 4)},
                               {u'M', u'M', widths(1, 5)},
                               {u'L', u'M', widths(1, 5)},
                               {u'w', u'w', widths(1, 2)},
                               {u'd', u'd', widths(1, 2)},
                               {u'D', u'D', widths(1, 1) | widths(3, 3)},
                               {u'E', u'E', widths(1, 6)},
                               {u'c', u'E', widths(3, 6)},
                               {u'a', u'a', widths(1, 1)},
                               {u'B', u'a', widths(1, 1)},
                               {u'H', u'H', widths(1, 2)},
                               {u'h', u'H', widths(1, 2)},
                               {u'K', u'H', widths(1, 2)},
                               {u'k', u'H', widths(1, 2)},
                               {u'm', u'm', widths(1, 2)},
                               {u's', u's', widths(1, 2)},
                               {u'S', u'S', widths(1, 4)}};

const Letter* find_letter(wchar letter) noexcept {
    const auto* const found = std::find_if(std::begin(kLetters), std::end(kLetters),
                                           [letter](const Letter& each) { return each.letter == letter; });
    return found != std::end(kLetters) ? found : nullptr;
}

bool is_latin_letter(wchar c) noexcept {
    return (c >= u'A' && c <= u'Z') || (c >= u'a' && c <= u'z');
}

[[noreturn]] void refuse_part(wstring_view pattern, wstring_view part, std::size_t offset) {
    throw_error<CtorException>(messages::kPatternPart,
                               {wstring(pattern), wstring(part), from_utf8(std::to_string(offset + 1))});
}

bool begins_with_digit(const DatePiece& piece) {
    if (piece.letter == 0)
        return is_digit(piece.text.front());
    return piece.names.empty() ||
           std::any_of(piece.names.begin(), piece.names.end(),
                       [](const wstring& name) { return !name.empty() && is_digit(name.front()); });
}

/// Compiles one pattern; `strict` refuses what makes no sense.
class Compiler {
  public:
    Compiler(wstring_view pattern, const Locale& locale, bool strict)
        : pattern_(pattern), locale_(locale), strict_(strict) {}

    DatePieces compile() {
        made_.digits = number_symbols(locale_).digits;
        for (rest_ = pattern_; !rest_.empty();)
            takePiece();
        markExact();
        if (strict_)
            checkWhole();
        return std::move(made_);
    }

  private:
    [[nodiscard]] std::size_t offset() const noexcept { return pattern_.size() - rest_.size(); }

    void takePiece() {
        const wchar front = rest_.front();
        if (front == u'\'') {
            const std::size_t begin = offset();
            const auto text = take_quoted(rest_);
            if (!text)
                refuse_part(pattern_, rest_, begin);
            made_.append(text->empty() ? u"'" : *text);
            return;
        }
        if (!is_latin_letter(front)) {
            made_.append(rest_.substr(0, 1));
            rest_.remove_prefix(1);
            return;
        }
        const std::size_t width = std::min(rest_.find_first_not_of(front), rest_.size());
        takePart(front, width);
        rest_.remove_prefix(width);
    }

    void takePart(wchar letter, std::size_t width) {
        const Letter* const known = find_letter(letter);
        const bool fits = known != nullptr && width < 8 && (known->widths >> width & 1) != 0;
        if (!fits || (strict_ && seen(known->part)))
            refuse_part(pattern_, rest_.substr(0, width), offset());
        made_.pieces.push_back({letter, width, false, {}, date_names(locale_, letter, width), offset()});
    }

    [[nodiscard]] bool seen(wchar part) const noexcept {
        return std::any_of(made_.pieces.begin(), made_.pieces.end(), [part](const DatePiece& piece) {
            return piece.letter != 0 && find_letter(piece.letter)->part == part;
        });
    }

    /// A number in front of another digit has no end that could be found, unless it has all its digits.
    void markExact() {
        for (std::size_t i = 0; i + 1 < made_.pieces.size(); ++i) {
            DatePiece& piece = made_.pieces[i];
            if (piece.letter == 0 || !piece.names.empty() || !begins_with_digit(made_.pieces[i + 1]))
                continue;
            piece.exact = true;
            const bool isPadded =
                piece.width >= 2 || wstring_view(u"yuYS").find(piece.letter) != wstring_view::npos;
            if (strict_ && !isPadded)
                refuse_part(pattern_, wstring_view(&piece.letter, 1), piece.offset);
        }
    }

    /// There is a part, readers find where a text begins, and hours of twelve say of which half they are.
    void checkWhole() {
        const auto find = [&](wstring_view letters) {
            return std::find_if(made_.pieces.begin(), made_.pieces.end(), [letters](const DatePiece& piece) {
                return piece.letter != 0 && letters.find(piece.letter) != wstring_view::npos;
            });
        };
        const bool isEmpty = std::all_of(made_.pieces.begin(), made_.pieces.end(),
                                         [](const DatePiece& piece) { return piece.letter == 0; });
        if (isEmpty || (made_.pieces.front().letter == 0 && is_space(made_.pieces.front().text.front())))
            refuse_part(pattern_, pattern_, 0);
        const auto hour = find(u"hK");
        if (hour != made_.pieces.end() && find(u"aB") == made_.pieces.end())
            refuse_part(pattern_, wstring_view(&hour->letter, 1), hour->offset);
    }

    wstring_view pattern_;
    const Locale& locale_;
    bool strict_;
    wstring_view rest_;
    DatePieces made_;
};

} // namespace

DatePieces DatePieces::compile(wstring_view pattern, const Locale& locale) {
    return Compiler(pattern, locale, true).compile();
}

DatePieces DatePieces::compile(const LocalePattern& pattern, const Locale& locale) {
    DatePieces made = Compiler(pattern.text, locale, false).compile();
    for (DatePiece& piece : made.pieces) {
        if (piece.letter == u'M' && piece.width <= 2)
            piece.names = pattern.months;
    }
    return made;
}

void DatePieces::append(const DatePieces& other) {
    pieces.insert(pieces.end(), other.pieces.begin(), other.pieces.end());
}

void DatePieces::append(wstring_view text) {
    if (pieces.empty() || pieces.back().letter != 0)
        pieces.emplace_back();
    pieces.back().text += text;
}

} // namespace core
