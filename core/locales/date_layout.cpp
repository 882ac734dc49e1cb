// SPDX-License-Identifier: Apache-2.0
#include "core/locales/date_layout.h"

#include "core/locales/format_items.h"
#include "core/locales/format_names.h"

#include <algorithm>

namespace core {
namespace {

using namespace date_item;

/// The words that stand for a locale's own forms, in the order of DateStyle.
constexpr NamePair kStyles[] = {
    {u"short", u"краткая"}, {u"medium", u"средняя"}, {u"long", u"длинная"}, {u"full", u"полная"}};
constexpr DateStyle kAllStyles[] = {DateStyle::mediumForm, DateStyle::shortForm, DateStyle::longForm,
                                    DateStyle::fullForm};

class DateLayoutBuilder {
  public:
    DateLayoutBuilder(wstring_view format, const Locale& locale, DateDefaults defaults)
        : items_(format_items(format, kDateItems)), locale_(locale), defaults_(defaults) {
        if (const FormatItem* const item = find(date_item::kLocale)) {
            locale_ = item->locale();
            defaults_ = DateDefaults::users;
        }
    }

    DateLayout build() {
        const FormatItem* const date = find(kDate);
        const FormatItem* const time = find(kTime);
        layout_.date = pieces(date, true);
        layout_.time = pieces(time, false);
        layout_.dateTime = both(date, time);
        const bool alone = find(kDateTime) == nullptr && (date == nullptr) != (time == nullptr);
        layout_.asked = !alone            ? DatePattern::dateTime
                        : date != nullptr ? DatePattern::date
                                          : DatePattern::time;
        if (defaults_ == DateDefaults::users) {
            layout_.empty = wstring();
            if (date == nullptr && time == nullptr && find(kDateTime) == nullptr)
                addOthers();
        }
        if (const FormatItem* const item = find(date_item::kEmpty))
            layout_.empty = item->value;
        return std::move(layout_);
    }

  private:
    [[nodiscard]] const FormatItem* find(std::size_t term) const noexcept {
        const auto found = std::find_if(items_.begin(), items_.end(),
                                        [term](const FormatItem& item) { return item.term == term; });
        return found != items_.end() ? &*found : nullptr;
    }

    /// The style that an item names; where there is no item, that of users. None for a pattern.
    [[nodiscard]] std::optional<DateStyle> style(const FormatItem* item) const {
        if (item == nullptr)
            return defaults_ == DateDefaults::users ? std::optional(DateStyle::mediumForm) : std::nullopt;
        const auto word = find_word(item->value, kStyles);
        return word ? std::optional(static_cast<DateStyle>(*word)) : std::nullopt;
    }

    [[nodiscard]] DatePieces form(std::optional<DateStyle> date, std::optional<DateStyle> time) const {
        return DatePieces::compile(locale_pattern(locale_, date, time), locale_);
    }

    [[nodiscard]] DatePieces pieces(const FormatItem* item, bool isDate) const {
        if (const auto named = style(item))
            return isDate ? form(named, std::nullopt) : form(std::nullopt, named);
        if (item != nullptr)
            return DatePieces::compile(item->value, locale_);
        const bool russian = defaults_ == DateDefaults::values && locale_.isRussian();
        return DatePieces::compile(!isDate ? u"HH:mm:ss" : russian ? u"dd.MM.yyyy" : u"yyyy-MM-dd", Locale());
    }

    /// The pattern for both, which a locale joins in its own way where both are forms of its own.
    [[nodiscard]] DatePieces both(const FormatItem* date, const FormatItem* time) const {
        if (const FormatItem* const item = find(kDateTime)) {
            const auto named = style(item);
            return named ? form(named, named) : DatePieces::compile(item->value, locale_);
        }
        const auto dateStyle = style(date);
        const auto timeStyle = style(time);
        if (dateStyle && timeStyle)
            return form(dateStyle, timeStyle);
        DatePieces joined = layout_.date;
        joined.append(u" ");
        joined.append(layout_.time);
        return joined;
    }

    /// A reader without a pattern takes every form of the locale, and the short form also with whole years.
    void addOthers() {
        for (const DateStyle style : kAllStyles) {
            addOther(form(style, std::nullopt));
            for (const DateStyle time : {DateStyle::mediumForm, DateStyle::shortForm})
                addOther(form(style, time));
        }
    }
    void addOther(DatePieces pieces) {
        const auto year = std::ranges::find_if(
            pieces.pieces, [](const DatePiece& piece) { return piece.letter == u'y' && piece.width == 2; });
        layout_.others.push_back(pieces);
        if (year == pieces.pieces.end())
            return;
        year->width = 1;
        layout_.others.push_back(std::move(pieces));
    }

    std::vector<FormatItem> items_;
    Locale locale_;
    DateDefaults defaults_;
    DateLayout layout_;
};

} // namespace

std::shared_ptr<const DateLayout> date_layout(wstring_view format, const Locale& locale,
                                              DateDefaults defaults) {
    return std::make_shared<const DateLayout>(DateLayoutBuilder(format, locale, defaults).build());
}

} // namespace core
