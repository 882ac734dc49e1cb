// SPDX-License-Identifier: Apache-2.0
#include <core/context/arguments.h>
#include <core/context/context_def_ext.h>
#include <core/context/context_impl.h>
#include <core/objects/date_functions.h>
#include <core/runtime/internal_class.h>
#include <core/runtime/utf8.h>
#include <core/strings/compare.h>

#include <algorithm>

namespace core {
namespace {

using Arguments = std::span<GenericValue>;
using PartOfDate = int (Date::*)() const noexcept;
using EndOfPeriod = Date (Date::*)() const noexcept;

Date date_argument(const Value& argument, int param) {
    const Date* const date = argument.asDate();
    if (date == nullptr)
        parameter_type_mismatch(param);
    return *date;
}

/// A unit in which the distance of two dates is counted.
struct Unit {
    NamePair names;
    std::int64_t ticks; ///< 0 for a unit of months
    int months = 0;
};

constexpr Unit kUnits[] = {
    {{u"second", u"секунда"}, kTicksPerSecond}, {{u"minute", u"минута"}, kTicksPerMinute},
    {{u"hour", u"час"}, kTicksPerHour},         {{u"day", u"день"}, kTicksPerDay},
    {{u"week", u"неделя"}, 7 * kTicksPerDay},   {{u"month", u"месяц"}, 0, 1},
    {{u"quarter", u"квартал"}, 0, 3},           {{u"year", u"год"}, 0, 12}};

const Unit& unit_argument(const Value& argument, int param) {
    const wstring_view name = text_argument(argument, param);
    for (const Unit& unit : kUnits) {
        if (compare_nocase(name, wstring_view(term_string(unit.names, kEnglish))) == 0 ||
            compare_nocase(name, wstring_view(term_string(unit.names, kRussian))) == 0)
            return unit;
    }
    parameter_value_mismatch(param);
}

/// The whole months from one date to a later one.
std::int64_t whole_months(Date begin, Date end) {
    int months = (end.getYear() - begin.getYear()) * 12 + end.getMonth() - begin.getMonth();
    if (Date(begin).addMonth(months) > end)
        --months;
    return months;
}

/// The whole units from `begin` to `end`, negative where that is the earlier one.
std::int64_t difference(Date begin, Date end, const Unit& unit) {
    if (end < begin)
        return -difference(end, begin, unit);
    return unit.months != 0 ? whole_months(begin, end) / unit.months : (end - begin).ticks() / unit.ticks;
}

class DateFunctions : public IContextImpl<IContextDefImpl<DateFunctions>>,
                      public ContextDefExtImpl<DateFunctions> {
  public:
    using Interfaces = InterfaceList<IContext_, IContextDef, IContextDefExt, IContextDefParams>;

    static std::span<const Property<DateFunctions>> properties() noexcept { return {}; }
    static std::span<const Method<DateFunctions>> methods() noexcept;

    template <PartOfDate get>
    GenericValue part(Arguments a) {
        return GenericValue((date_argument(a[0], 0).*get)());
    }
    template <EndOfPeriod get>
    GenericValue period(Arguments a) {
        return GenericValue((date_argument(a[0], 0).*get)());
    }
    GenericValue addMonth(Arguments a) {
        constexpr std::int64_t kMost =
            std::int64_t{12} * 10'000; // beyond that stand the ends of the calendar
        const Date date = date_argument(a[0], 0);
        const std::int64_t months = std::clamp(index_argument(a[1], 1), -kMost, kMost);
        return GenericValue(Date(date).addMonth(static_cast<int>(months)));
    }
    GenericValue dateDiff(Arguments a) {
        return GenericValue(
            Numeric(difference(date_argument(a[0], 0), date_argument(a[1], 1), unit_argument(a[2], 2))));
    }
    GenericValue toLocalTime(Arguments a) {
        const Date date = date_argument(a[0], 0);
        const std::string zone = to_utf8(text_argument(a[1], 1));
        return GenericValue(zone.empty() ? date.toLocalTime() : date.toLocalTime(zone));
    }
    GenericValue toUniversalTime(Arguments a) {
        const Date date = date_argument(a[0], 0);
        const std::string zone = to_utf8(text_argument(a[1], 1));
        return GenericValue(zone.empty() ? date.toUniversalTime() : date.toUniversalTime(zone));
    }
};

constexpr Param kDate = named_param({u"Date", u"Дата"});
constexpr Param kOfDate[] = {kDate};
constexpr Param kMonths[] = {kDate, named_param({u"Months", u"Месяцы"})};
constexpr Param kDiff[] = {named_param({u"From", u"Начало"}), named_param({u"To", u"Конец"}),
                           named_param({u"Unit", u"Единица"})};
constexpr Param kZone[] = {kDate, named_param({u"Zone", u"Пояс"}, ParamDefault::emptyString)};

std::span<const Method<DateFunctions>> DateFunctions::methods() noexcept {
    using F = DateFunctions;
    static constexpr Method<F> kMethods[] = {
        {{u"Year", u"Год"}, kOfDate, kFunction, &F::part<&Date::getYear>, &kNumberType},
        {{u"Quarter", u"Квартал"}, kOfDate, kFunction, &F::part<&Date::getQuarter>, &kNumberType},
        {{u"Month", u"Месяц"}, kOfDate, kFunction, &F::part<&Date::getMonth>, &kNumberType},
        {{u"Day", u"День"}, kOfDate, kFunction, &F::part<&Date::getMonthDay>, &kNumberType},
        {{u"Hour", u"Час"}, kOfDate, kFunction, &F::part<&Date::getHour>, &kNumberType},
        {{u"Minute", u"Минута"}, kOfDate, kFunction, &F::part<&Date::getMinute>, &kNumberType},
        {{u"Second", u"Секунда"}, kOfDate, kFunction, &F::part<&Date::getSecond>, &kNumberType},
        {{u"WeekDay", u"ДеньНедели"}, kOfDate, kFunction, &F::part<&Date::getWeekDay>, &kNumberType},
        {{u"YearDay", u"ДеньГода"}, kOfDate, kFunction, &F::part<&Date::getYearDay>, &kNumberType},
        {{u"YearWeek", u"НеделяГода"}, kOfDate, kFunction, &F::part<&Date::getYearWeek>, &kNumberType},
        {{u"BegOfYear", u"НачалоГода"}, kOfDate, kFunction, &F::period<&Date::begOfYear>, &kDateType},
        {{u"EndOfYear", u"КонецГода"}, kOfDate, kFunction, &F::period<&Date::endOfYear>, &kDateType},
        {{u"BegOfQuarter", u"НачалоКвартала"}, kOfDate, kFunction, &F::period<&Date::begOfQuart>, &kDateType},
        {{u"EndOfQuarter", u"КонецКвартала"}, kOfDate, kFunction, &F::period<&Date::endOfQuart>, &kDateType},
        {{u"BegOfMonth", u"НачалоМесяца"}, kOfDate, kFunction, &F::period<&Date::begOfMonth>, &kDateType},
        {{u"EndOfMonth", u"КонецМесяца"}, kOfDate, kFunction, &F::period<&Date::endOfMonth>, &kDateType},
        {{u"BegOfWeek", u"НачалоНедели"}, kOfDate, kFunction, &F::period<&Date::begOfWeek>, &kDateType},
        {{u"EndOfWeek", u"КонецНедели"}, kOfDate, kFunction, &F::period<&Date::endOfWeek>, &kDateType},
        {{u"BegOfDay", u"НачалоДня"}, kOfDate, kFunction, &F::period<&Date::begOfDay>, &kDateType},
        {{u"EndOfDay", u"КонецДня"}, kOfDate, kFunction, &F::period<&Date::endOfDay>, &kDateType},
        {{u"BegOfHour", u"НачалоЧаса"}, kOfDate, kFunction, &F::period<&Date::begOfHour>, &kDateType},
        {{u"EndOfHour", u"КонецЧаса"}, kOfDate, kFunction, &F::period<&Date::endOfHour>, &kDateType},
        {{u"BegOfMinute", u"НачалоМинуты"}, kOfDate, kFunction, &F::period<&Date::begOfMinute>, &kDateType},
        {{u"EndOfMinute", u"КонецМинуты"}, kOfDate, kFunction, &F::period<&Date::endOfMinute>, &kDateType},
        {{u"AddMonth", u"ДобавитьМесяц"}, kMonths, kFunction, &F::addMonth, &kDateType},
        {{u"DateDiff", u"РазностьДат"}, kDiff, kFunction, &F::dateDiff, &kNumberType},
        {{u"ToLocalTime", u"МестноеВремя"}, kZone, kFunction, &F::toLocalTime, &kDateType},
        {{u"ToUniversalTime", u"УниверсальноеВремя"}, kZone, kFunction, &F::toUniversalTime, &kDateType},
    };
    return kMethods;
}

} // namespace

InterfacePtr<IContext_> create_date_functions() {
    return make_object<DateFunctions>();
}

} // namespace core
