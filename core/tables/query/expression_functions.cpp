// SPDX-License-Identifier: Apache-2.0
#include "core/tables/query/expression_functions.h"

#include "core/tables/query/expression_errors.h"

#include <core/strings/compare.h>
#include <core/strings/integer_text.h>
#include <core/strings/letter_case.h>
#include <core/strings/trim.h>
#include <core/values/date_reading.h>

#include <algorithm>
#include <iterator>
#include <limits>
#include <type_traits>

namespace core {
namespace {

using Arguments = ExpressionArguments;
using Function = ExpressionFunction;

using Words = std::span<std::int64_t>;
using OfWords = Function::OfWords;
using Form = CellColumn::Form;

/// Replaces each word that is not empty.
template <class Compute>
void replace(Words words, Compute compute) noexcept {
    for (std::int64_t& word : words)
        word = word == CellColumn::kEmptyWord ? word : compute(word);
}

constexpr std::int64_t word_of(int part) noexcept {
    return part;
}
constexpr std::int64_t word_of(Date date) noexcept {
    return static_cast<std::int64_t>(date.ticks());
}

/// A part of a date, or the beginning or end of its period.
template <auto get>
constexpr Function of_date(NamePair names, bool rises = false) {
    constexpr bool isPart = std::is_same_v<decltype((Date().*get)()), int>;
    return {.names = names,
            .least = 1,
            .most = 1,
            .result = isPart ? kNumberKind : kDateKind,
            .call = [](const Arguments& a) { return Value((a.date(0).*get)()); },
            .way = Function::Way::plain,
            .ofWords = {.run =
                            [](Words words, std::uint32_t) noexcept {
                                replace(words, [](std::int64_t word) {
                                    return word_of((Date(static_cast<std::uint64_t>(word)).*get)());
                                });
                            },
                        .rises = rises || !isPart}};
}

Value add_month(const Arguments& a) {
    constexpr int kMost = 12 * 10'000; // beyond that stand the ends of the calendar
    return Value(a.date(0).addMonth(std::clamp(a.whole(1), -kMost, kMost)));
}

/// Date(Text) or Date(Year, Month, Day, …).
Value date(const Arguments& a) {
    if (a.size() == 1) {
        const auto date = date_reading(a[0]);
        if (!date)
            a.refuse(0);
        return Value(*date);
    }
    int parts[6] = {1, 1, 1, 0, 0, 0};
    for (std::size_t i = 0; i < a.size(); ++i)
        parts[i] = a.whole(i);
    for (std::size_t i = 0; i < a.size(); ++i) {
        int until[6] = {1, 1, 1, 0, 0, 0};
        std::copy_n(parts, i + 1, until);
        if (!Date::isMoment(until[0], until[1], until[2], until[3], until[4], until[5]))
            a.refuse(i);
    }
    return Value(Date(parts[0], parts[1], parts[2], parts[3], parts[4], parts[5]));
}
Value current_date(const Arguments&) {
    return Value(Date::getCurrentDate());
}

Value upper(const Arguments& a) {
    return Value(to_upper(a.text(0)));
}
Value lower(const Arguments& a) {
    return Value(to_lower(a.text(0)));
}
std::size_t length_argument(const Arguments& a, std::size_t i) {
    return static_cast<std::size_t>(std::max(a.whole(i), 0));
}
Value left(const Arguments& a) {
    return Value(a.text(0).substr(0, length_argument(a, 1)));
}
Value right(const Arguments& a) {
    const wstring_view text = a.text(0);
    return Value(text.substr(text.size() - std::min(text.size(), length_argument(a, 1))));
}
Value middle(const Arguments& a) {
    const wstring_view text = a.text(0);
    const std::size_t first = std::max<std::size_t>(length_argument(a, 1), 1) - 1;
    const std::size_t count = a.size() > 2 ? length_argument(a, 2) : wstring_view::npos;
    return Value(first < text.size() ? text.substr(first, count) : wstring_view());
}
Value length(const Arguments& a) {
    return Value(a.text(0).size());
}
Value trim(const Arguments& a) {
    return Value(trim_all(a.text(0)));
}
Value string(const Arguments& a) {
    return a[0].asString() != nullptr ? a[0] : Value(a[0].presentation());
}

Value number(const Arguments& a) {
    if (a[0].kind() == ValueKind::number)
        return a[0];
    if (a[0].kind() == ValueKind::boolean)
        return Value(a[0].isTrue() ? 1 : 0);
    const auto number = Numeric::parse(trim_all(a.text(0)));
    return number ? Value(*number) : (a.refuse(0), Value());
}
Value round(const Arguments& a) {
    return Value(a.number(0).round(a.size() > 1 ? a.whole(1) : 0));
}
Value whole(const Arguments& a) {
    const Numeric number = a.number(0);
    return Value(number.sign() < 0 ? -(-number).floor() : number.floor());
}
Value floor(const Arguments& a) {
    return Value(a.number(0).floor());
}
Value absolute(const Arguments& a) {
    return Value(a.number(0).abs());
}
/// Words divided by the unit of their scale.
template <bool towardsZero>
void whole_words(Words words, std::uint32_t scale) noexcept {
    std::int64_t unit = 1;
    for (; scale != 0; --scale)
        unit *= 10;
    replace(words,
            [unit](std::int64_t word) { return word / unit - (!towardsZero && word % unit < 0 ? 1 : 0); });
}
void absolute_words(Words words, std::uint32_t) noexcept {
    replace(words, [](std::int64_t word) { return word < 0 ? -word : word; });
}
constexpr OfWords of_numbers(void (*run)(Words, std::uint32_t) noexcept, bool keepsScale = false) {
    return {.run = run, .argument = Form::numbers, .keepsScale = keepsScale};
}

/// The first argument that no other one precedes by `sign`.
template <ExpressionOperator sign>
Value extreme(const Arguments& a) {
    std::size_t best = 0;
    for (std::size_t i = 1; i < a.size(); ++i) {
        if (a[i].kind() != a[0].kind() || a[i].kind() > ValueKind::date)
            a.refuse(i);
        const int order = compare_values(a[i], a[best]);
        if (sign == ExpressionOperator::less ? order < 0 : order > 0)
            best = i;
    }
    return a[best];
}

// by the first day of the week that the process has set
constexpr auto kBegOfWeek = static_cast<Date (Date::*)() const noexcept>(&Date::begOfWeek);
constexpr auto kEndOfWeek = static_cast<Date (Date::*)() const noexcept>(&Date::endOfWeek);

constexpr Function kFunctions[] = {
    of_date<&Date::getYear>({u"Year", u"Год"}, true),
    of_date<&Date::getQuarter>({u"Quarter", u"Квартал"}),
    of_date<&Date::getMonth>({u"Month", u"Месяц"}),
    of_date<&Date::getMonthDay>({u"Day", u"День"}),
    of_date<&Date::getHour>({u"Hour", u"Час"}),
    of_date<&Date::getMinute>({u"Minute", u"Минута"}),
    of_date<&Date::getSecond>({u"Second", u"Секунда"}),
    of_date<&Date::getWeekDay>({u"WeekDay", u"ДеньНедели"}),
    of_date<&Date::getYearDay>({u"YearDay", u"ДеньГода"}),
    of_date<&Date::getYearWeek>({u"YearWeek", u"НеделяГода"}),
    of_date<&Date::begOfYear>({u"BegOfYear", u"НачалоГода"}),
    of_date<&Date::endOfYear>({u"EndOfYear", u"КонецГода"}),
    of_date<&Date::begOfQuart>({u"BegOfQuarter", u"НачалоКвартала"}),
    of_date<&Date::endOfQuart>({u"EndOfQuarter", u"КонецКвартала"}),
    of_date<&Date::begOfMonth>({u"BegOfMonth", u"НачалоМесяца"}),
    of_date<&Date::endOfMonth>({u"EndOfMonth", u"КонецМесяца"}),
    of_date<kBegOfWeek>({u"BegOfWeek", u"НачалоНедели"}),
    of_date<kEndOfWeek>({u"EndOfWeek", u"КонецНедели"}),
    of_date<&Date::begOfDay>({u"BegOfDay", u"НачалоДня"}),
    of_date<&Date::endOfDay>({u"EndOfDay", u"КонецДня"}),
    of_date<&Date::begOfHour>({u"BegOfHour", u"НачалоЧаса"}),
    of_date<&Date::endOfHour>({u"EndOfHour", u"КонецЧаса"}),
    {{u"AddMonth", u"ДобавитьМесяц"}, 2, 2, kDateKind, &add_month},
    {{u"Date", u"Дата"}, 1, 6, kDateKind, &date},
    {{u"CurrentDate", u"ТекущаяДата"}, 0, 0, kDateKind, &current_date},
    {{u"Upper", u"ВРег"}, 1, 1, kStringKind, &upper},
    {{u"Lower", u"НРег"}, 1, 1, kStringKind, &lower},
    {{u"Left", u"Лев"}, 2, 2, kStringKind, &left},
    {{u"Right", u"Прав"}, 2, 2, kStringKind, &right},
    {{u"Mid", u"Сред"}, 2, 3, kStringKind, &middle},
    {{u"StrLen", u"СтрДлина"}, 1, 1, kNumberKind, &length},
    {{u"TrimAll", u"СокрЛП"}, 1, 1, kStringKind, &trim},
    {{u"String", u"Строка"}, 1, 1, kStringKind, &string},
    {{u"Number", u"Число"}, 1, 1, kNumberKind, &number},
    {{u"Round", u"Окр"}, 1, 2, kNumberKind, &round},
    {{u"Int", u"Цел"}, 1, 1, kNumberKind, &whole, Function::Way::plain, of_numbers(&whole_words<true>)},
    {{u"Floor", u"ОкрВниз"},
     1,
     1,
     kNumberKind,
     &floor,
     Function::Way::plain,
     of_numbers(&whole_words<false>)},
    {{u"Abs", u"Модуль"},
     1,
     1,
     kNumberKind,
     &absolute,
     Function::Way::plain,
     of_numbers(&absolute_words, true)},
    {{u"Min", u"Мин"}, 1, Function::kMany, 0, &extreme<ExpressionOperator::less>},
    {{u"Max", u"Макс"}, 1, Function::kMany, 0, &extreme<ExpressionOperator::greater>},
    {{u"Coalesce", u"ПервоеНепустое"}, 1, Function::kMany, 0, nullptr, Function::Way::first},
    {{u"If", u"Если"}, 3, 3, 0, nullptr, Function::Way::choice},
};

} // namespace

Numeric ExpressionArguments::number(std::size_t i) const {
    const NumericRef number = values_[i].asNumeric();
    return number ? *number : (refuse(i), Numeric());
}

int ExpressionArguments::whole(std::size_t i) const {
    const Numeric most(std::numeric_limits<int>::max());
    const Numeric given = number(i);
    return static_cast<int>(given > most ? most : given < -most ? -most : given);
}

wstring_view ExpressionArguments::text(std::size_t i) const {
    const wstring_view* const text = values_[i].asString();
    return text != nullptr ? *text : (refuse(i), wstring_view());
}

Date ExpressionArguments::date(std::size_t i) const {
    const Date* const date = values_[i].asDate();
    return date != nullptr ? *date : (refuse(i), Date());
}

void ExpressionArguments::refuse(std::size_t i) const {
    fail_expression(place_, messages::kExpressionArgument,
                    {wstring(function_.names[kEnglish]), string_intto(i + 1), values_[i].presentation()});
}

std::optional<WordInterval> dates_where(const ExpressionFunction& function, WordInterval results) noexcept {
    // Dates beyond the calendar have the result 0.
    if (!function.ofWords.rises || results.isEmpty() || (results.least <= 0 && results.most >= 0))
        return std::nullopt;
    const auto firstWhere = [&](auto answers) {
        std::int64_t first = 0;
        for (std::int64_t count = static_cast<std::int64_t>(Date::kLimit); count > 0;) {
            const std::int64_t half = count / 2;
            std::int64_t result = first + half;
            function.ofWords.run({&result, 1}, 0);
            const bool here = answers(result);
            first = here ? first : first + half + 1;
            count = here ? half : count - half - 1;
        }
        return first;
    };
    return WordInterval{firstWhere([&](std::int64_t result) { return result >= results.least; }),
                        firstWhere([&](std::int64_t result) { return result > results.most; }) - 1};
}

const ExpressionFunction* find_expression_function(wstring_view name) noexcept {
    const auto* const found =
        std::find_if(std::begin(kFunctions), std::end(kFunctions), [name](const Function& function) {
            return compare_nocase(name, wstring_view(function.names[kEnglish])) == 0 ||
                   compare_nocase(name, wstring_view(function.names[kRussian])) == 0;
        });
    return found != std::end(kFunctions) ? found : nullptr;
}

std::span<const ExpressionFunction> expression_functions() noexcept {
    return kFunctions;
}

} // namespace core
