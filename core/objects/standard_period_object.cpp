// SPDX-License-Identifier: Apache-2.0
#include "core/dates/standard_table.h"
#include "core/lists/malformed.h"
#include "core/strings/table_hash.h"

#include <core/context/script_object.h>
#include <core/lists/list_in_stream.h>
#include <core/lists/list_out_stream.h>
#include <core/locales/date_format.h>
#include <core/objects/standard_periods.h>

#include <array>
#include <iterator>
#include <optional>

namespace core {
namespace {

template <std::size_t count>
std::int32_t hash_of(const std::array<std::uint64_t, count>& words) noexcept {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(table_hash(std::as_bytes(std::span(words)))));
}

/// Reads the number of a variant.
template <class E>
E get_variant(ListInStream& in) {
    std::int32_t number = 0;
    in.get(number);
    if (number < 0 || static_cast<std::size_t>(number) >= std::size(variants_of(E{})))
        throw_malformed();
    return static_cast<E>(number);
}

Date get_date(ListInStream& in) {
    Date date;
    in.get(date);
    return date;
}

template <class E>
wstring presentation_of(E variant) {
    return to_value(variant).presentation();
}

/// The two ends as the process writes dates; days alone where the period consists of whole days.
wstring dates_text(const DatePeriod& dates) {
    const bool days = dates.begin == dates.begin.begOfDay() && dates.end == dates.end.endOfDay();
    const DatePattern pattern = days ? DatePattern::date : DatePattern::dateTime;
    const DateFormat& format = default_date_format();
    wstring begin = format.format(dates.begin, pattern);
    if (days && dates.begin == dates.end.begOfDay())
        return begin;
    return begin + u" – " + format.format(dates.end, pattern);
}

wstring date_text(Date date) {
    const DatePattern pattern = date == date.begOfDay() ? DatePattern::date : DatePattern::dateTime;
    return default_date_format().format(date, pattern);
}

class StandardPeriodObject : public ScriptObject<StandardPeriodObject, IPersistableObject> {
  public:
    static constexpr ScriptClass script = {
        .names = {u"StandardPeriod", u"СтандартныйПериод"},
        .type = kStandardPeriodType,
        .object = kStandardPeriodClass,
        .presentation = "IDS_TYPE_PRESENTATION_STANDARDPERIOD",
        .arguments = {0, 2},
    };

    explicit StandardPeriodObject(StandardPeriod period = {}) noexcept : period_(period) {}

    /// New StandardPeriod([Variant]), or StandardPeriod(Begin, End).
    static GenericValue construct(std::span<GenericValue> arguments) {
        if (arguments.empty())
            return make_object<StandardPeriodObject>();
        if (arguments.size() == 1)
            return to_value(from_value<StandardPeriod>(arguments[0]));
        const auto begin = from_value<Date>(arguments[0]);
        return to_value(StandardPeriod(begin, from_value<Date>(arguments[1], ValueReceiver::parameter(1))));
    }
    static auto members() {
        using T = StandardPeriodObject;
        return core::members(property(u"Variant", u"Вариант", &T::variant),
                             property(u"BeginDate", u"ДатаНачала", &T::begin),
                             property(u"EndDate", u"ДатаОкончания", &T::end),
                             method(u"On", u"НаДату", &T::on, {u"Day", u"День"}),
                             method(u"Contains", u"Содержит", &T::contains, {u"Date", u"Дата"}));
    }

    // properties
    StandardPeriodVariant variant() const { return period_.variant(); }
    Date begin() const { return period_.dates().begin; }
    Date end() const { return period_.dates().end; }

    // methods
    StandardPeriod on(Date day) const {
        const DatePeriod dates = period_.dates(day);
        return {dates.begin, dates.end};
    }
    bool contains(Date date) const { return period_.dates().contains(date); }

    // IValue
    bool getString(wstring& out) const override {
        const bool given = period_.variant() == StandardPeriodVariant::custom;
        if (given && period_ != StandardPeriod())
            out = dates_text(period_.dates());
        else
            out = presentation_of(period_.variant());
        if (!given)
            out += u" (" + dates_text(period_.dates()) + u")";
        return true;
    }
    bool isEqual(const IValue* other) const noexcept override {
        const StandardPeriodObject* const same = of(other);
        return same != nullptr && same->period_ == period_;
    }
    std::int32_t hashCode() const noexcept override {
        // The dates of a variant are not looked at: they are others tomorrow.
        const DatePeriod given =
            period_.variant() == StandardPeriodVariant::custom ? period_.dates(Date()) : DatePeriod();
        return hash_of(std::array{static_cast<std::uint64_t>(period_.variant()), given.begin.ticks(),
                                  given.end.ticks()});
    }

    // IPersistableObject
    void serialize(IOutPersistenceStorage* storage) const override {
        ListOutStream& out = storage->listStream();
        out.put(static_cast<std::int32_t>(period_.variant()));
        if (period_.variant() != StandardPeriodVariant::custom)
            return;
        const DatePeriod given = period_.dates(Date());
        out.put(given.begin);
        out.put(given.end);
    }
    void deserialize(IInPersistenceStorage* storage) override {
        ListInStream& in = storage->listStream();
        const auto variant = get_variant<StandardPeriodVariant>(in);
        if (variant != StandardPeriodVariant::custom) {
            period_ = variant;
            return;
        }
        const Date begin = get_date(in);
        period_ = StandardPeriod(begin, get_date(in));
    }

    [[nodiscard]] const StandardPeriod& period() const noexcept { return period_; }

  private:
    StandardPeriod period_;
};

class StandardBeginningDateObject : public ScriptObject<StandardBeginningDateObject, IPersistableObject> {
  public:
    static constexpr ScriptClass script = {
        .names = {u"StandardBeginningDate", u"СтандартнаяДатаНачала"},
        .type = kStandardBeginningDateType,
        .object = kStandardBeginningDateClass,
        .presentation = "IDS_TYPE_PRESENTATION_STANDARDBEGINNINGDATE",
        .arguments = {0, 1},
    };

    explicit StandardBeginningDateObject(StandardBeginningDate date = {}) noexcept : date_(date) {}

    /// New StandardBeginningDate([Variant or Date]).
    static GenericValue construct(std::span<GenericValue> arguments) {
        return to_value(arguments.empty() ? StandardBeginningDate()
                                          : from_value<StandardBeginningDate>(arguments[0]));
    }
    static auto members() {
        using T = StandardBeginningDateObject;
        return core::members(property(u"Variant", u"Вариант", &T::variant),
                             property(u"Date", u"Дата", &T::date),
                             method(u"On", u"НаДату", &T::on, {u"Day", u"День"}));
    }

    StandardBeginningDateVariant variant() const { return date_.variant(); }
    Date date() const { return date_.date(); }
    Date on(Date day) const { return date_.date(day); }

    // IValue
    bool getString(wstring& out) const override {
        const bool given = date_.variant() == StandardBeginningDateVariant::custom;
        if (given && date_ != StandardBeginningDate())
            out = date_text(date_.date());
        else
            out = presentation_of(date_.variant());
        if (!given)
            out += u" (" + date_text(date_.date()) + u")";
        return true;
    }
    bool isEqual(const IValue* other) const noexcept override {
        const StandardBeginningDateObject* const same = of(other);
        return same != nullptr && same->date_ == date_;
    }
    std::int32_t hashCode() const noexcept override {
        const Date given =
            date_.variant() == StandardBeginningDateVariant::custom ? date_.date(Date()) : Date();
        return hash_of(std::array{static_cast<std::uint64_t>(date_.variant()), given.ticks()});
    }

    // IPersistableObject
    void serialize(IOutPersistenceStorage* storage) const override {
        ListOutStream& out = storage->listStream();
        out.put(static_cast<std::int32_t>(date_.variant()));
        if (date_.variant() == StandardBeginningDateVariant::custom)
            out.put(date_.date(Date()));
    }
    void deserialize(IInPersistenceStorage* storage) override {
        ListInStream& in = storage->listStream();
        const auto variant = get_variant<StandardBeginningDateVariant>(in);
        if (variant != StandardBeginningDateVariant::custom)
            date_ = variant;
        else
            date_ = StandardBeginningDate(get_date(in));
    }

    [[nodiscard]] const StandardBeginningDate& beginning() const noexcept { return date_; }

  private:
    StandardBeginningDate date_;
};

const ScriptClassEntry<StandardPeriodObject> kPeriodEntry;
const ScriptClassEntry<StandardBeginningDateObject> kBeginningEntry;

} // namespace

const StandardPeriod* as_standard_period(const Value& value) noexcept {
    const StandardPeriodObject* const object = StandardPeriodObject::of(value);
    return object != nullptr ? &object->period() : nullptr;
}

const StandardBeginningDate* as_standard_beginning_date(const Value& value) noexcept {
    const StandardBeginningDateObject* const object = StandardBeginningDateObject::of(value);
    return object != nullptr ? &object->beginning() : nullptr;
}

StandardPeriod NativeValue<StandardPeriod>::from(const Value& value, ValueReceiver receiver) {
    if (const StandardPeriod* const period = as_standard_period(value))
        return *period;
    return from_value<StandardPeriodVariant>(value, receiver);
}

Value NativeValue<StandardPeriod>::to(const StandardPeriod& period) {
    return make_object<StandardPeriodObject>(period);
}

StandardBeginningDate NativeValue<StandardBeginningDate>::from(const Value& value, ValueReceiver receiver) {
    if (const StandardBeginningDate* const date = as_standard_beginning_date(value))
        return *date;
    if (const Date* const date = value.asDate())
        return StandardBeginningDate(*date);
    return from_value<StandardBeginningDateVariant>(value, receiver);
}

Value NativeValue<StandardBeginningDate>::to(const StandardBeginningDate& date) {
    return make_object<StandardBeginningDateObject>(date);
}

} // namespace core
