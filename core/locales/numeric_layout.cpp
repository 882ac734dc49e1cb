// SPDX-License-Identifier: Apache-2.0
#include "core/locales/numeric_layout.h"

#include "core/locales/format_names.h"
#include "core/locales/text_match.h"

#include <core/strings/char_class.h>

#include <algorithm>

namespace core {
namespace {

using namespace numeric_item;

constexpr NamePair kSigns[] = {{u"before", u"перед"}, {u"behind", u"после"}, {u"brackets", u"скобки"}};
enum Sign : std::size_t { kBefore, kBehind, kBrackets };
constexpr NamePair kPercent[] = {{u"percent", u"процент"}};

bool has_digit(wstring_view text) {
    return std::any_of(text.begin(), text.end(), [](wchar c) { return is_digit(c) || c == u'\0'; });
}

bool has_digit_or_sign(wstring_view text) {
    return has_digit(text) || text.find_first_of(u"-+\u2212") != wstring_view::npos;
}

/// Whether a reader would take the beginning of `text` for `other`.
bool begins_like(wstring_view text, wstring_view other) {
    return !other.empty() && take_text(text, other);
}

/// The items of one format string, each put into the layout.
class NumericLayoutBuilder {
  public:
    NumericLayoutBuilder(wstring_view format, const Locale* locale)
        : items_(format_items(format, kNumericItems)) {
        const FormatItem* const named = find(numeric_item::kLocale);
        if (named != nullptr)
            use(number_symbols(named->locale()));
        else if (locale != nullptr)
            use(number_symbols(*locale));
        isPlain_ = items_.empty() && locale == nullptr;
    }

    [[nodiscard]] bool isPlain() const noexcept { return isPlain_; }

    NumericLayout build() {
        setScale();
        setDigits();
        setSeparators();
        setSign();
        setTexts();
        return std::move(layout_);
    }

  private:
    [[nodiscard]] const FormatItem* find(std::size_t term) const noexcept {
        const auto found = std::find_if(items_.begin(), items_.end(),
                                        [term](const FormatItem& item) { return item.term == term; });
        return found != items_.end() ? &*found : nullptr;
    }

    void use(const NumberSymbols& symbols) {
        layout_.digits = symbols.digits;
        layout_.point = symbols.point;
        use(symbols.decimal, symbols.group);
        percent_ = symbols.percent;
        minus_ = symbols.minus;
        ownGroup_ = symbols.group;
    }
    void use(const NumberStyle& style, const wstring& group) {
        layout_.group = style.grouping.last != 0 ? group : wstring();
        layout_.grouping = style.grouping;
        layout_.affixes = style.affixes;
    }

    void setDigits() {
        if (const FormatItem* const item = find(kFraction))
            layout_.fraction = DigitRange::of(*item, 0);
        if (const FormatItem* const item = find(kDigits)) {
            if (find(kFraction) != nullptr)
                item->refuse();
            layout_.significant = DigitRange::of(*item, 1);
        }
        if (const FormatItem* const item = find(kWhole))
            layout_.whole = item->number(1, 1000);
    }

    void setSeparators() {
        if (const FormatItem* const item = find(kPoint)) {
            layout_.point = item->value;
            if (item->value.empty() || has_digit_or_sign(item->value))
                item->refuse();
        }
        if (const FormatItem* const item = find(kGroup)) {
            layout_.group = item->value;
            if (has_digit_or_sign(item->value))
                item->refuse();
            if (layout_.grouping.last == 0)
                layout_.grouping = {3, 3, 1};
        }
        if (const FormatItem* const item = find(kGrouping))
            setGrouping(*item);
        // A point that begins like the separator ("," and ",") could not be told from it.
        if (begins_like(layout_.point, layout_.group) && begins_like(layout_.group, layout_.point))
            (find(kGroup) != nullptr ? find(kGroup) : find(kPoint))->refuse();
    }

    /// "3", "3,2", "0".
    void setGrouping(const FormatItem& item) {
        const std::size_t comma = item.value.find(u',');
        FormatItem part = item;
        part.value = item.value.substr(0, comma);
        const std::size_t last = part.number(0, 9);
        std::size_t other = last;
        if (comma != wstring::npos) {
            part.value = item.value.substr(comma + 1);
            other = part.number(1, 9);
        }
        if (last == 0 && (comma != wstring::npos || find(kGroup) != nullptr))
            item.refuse();
        layout_.grouping = {last, other, layout_.grouping.last != 0 ? layout_.grouping.least : 1};
        if (last == 0)
            layout_.group.clear();
        else if (layout_.group.empty() && find(kGroup) == nullptr)
            layout_.group = ownGroup_;
        if (last != 0 && layout_.group.empty())
            item.refuse();
    }

    void setScale() {
        const FormatItem* const item = find(kScale);
        if (item == nullptr)
            return;
        if (find_word(item->value, kPercent)) {
            layout_.factor = 100;
            layout_.divisor = Numeric(1) / Numeric(100);
            use(percent_, ownGroup_);
            return;
        }
        const bool isPower = item->value.size() >= 2 && item->value.size() <= 19 && item->value[0] == u'1' &&
                             item->value.find_first_not_of(u'0', 1) == wstring::npos;
        if (!isPower)
            item->refuse();
        layout_.divisor = Numeric::fromString(wstring_view(item->value));
        layout_.factor = Numeric(1) / layout_.divisor;
    }

    void setSign() {
        const FormatItem* const item = find(kSign);
        if (item == nullptr)
            return;
        const auto sign = find_word(item->value, kSigns);
        if (!sign)
            item->refuse();
        NumberAffixes& affixes = layout_.affixes;
        if (*sign == kBehind) {
            affixes.negativePrefix = affixes.prefix;
            affixes.negativeSuffix = affixes.suffix + minus_;
        } else if (*sign == kBrackets) {
            affixes.negativePrefix = u"(" + affixes.prefix;
            affixes.negativeSuffix = affixes.suffix + u")";
        }
    }

    void setTexts() {
        if (const FormatItem* const item = find(kNegative))
            setNegative(*item);
        if (const FormatItem* const item = find(numeric_item::kEmpty))
            layout_.empty = item->value;
        if (const FormatItem* const item = find(kZero)) {
            if (!item->value.empty())
                (void)item->text();
            // The text of zero must not be that of another number.
            Numeric number;
            const auto length = layout_.read(item->value, number);
            const bool isOther = length == item->value.size() && number.sign() != 0;
            if (isOther || (layout_.negative && *layout_.negative == item->value))
                item->refuse();
            layout_.zero = item->value;
        }
    }

    /// A text with "#" in place of the number, or a text in place of every negative number.
    void setNegative(const FormatItem& item) {
        const std::size_t place = item.text().find(u'#');
        if (find(kSign) != nullptr)
            item.refuse();
        if (place == wstring::npos) {
            layout_.negative = item.value;
            return;
        }
        const wstring_view prefix = wstring_view(item.value).substr(0, place);
        const wstring_view suffix = wstring_view(item.value).substr(place + 1);
        if ((prefix.empty() && suffix.empty()) || has_digit(prefix) || has_digit(suffix) ||
            begins_like(suffix, layout_.point) || begins_like(suffix, layout_.group) ||
            suffix.find(u'#') != wstring_view::npos)
            item.refuse();
        NumberAffixes& affixes = layout_.affixes;
        affixes.negativePrefix = wstring(prefix) + affixes.prefix;
        affixes.negativeSuffix = affixes.suffix + wstring(suffix);
    }

    std::vector<FormatItem> items_;
    NumericLayout layout_;
    NumberStyle percent_ = NumberSymbols().percent;
    wstring minus_ = u"-";
    wstring ownGroup_;
    bool isPlain_ = false;
};

} // namespace

std::shared_ptr<const NumericLayout> numeric_layout(wstring_view format, const Locale* locale) {
    NumericLayoutBuilder builder(format, locale);
    return builder.isPlain() ? nullptr : std::make_shared<const NumericLayout>(builder.build());
}

} // namespace core
