// SPDX-License-Identifier: Apache-2.0
// Concerns: every operator and function of expressions over every kind of value, beside a plain model: in
// columns of that kind alone, in columns where each cell is a value of its own, and with a parameter.
#include "tests/tables/table_fixture.h"

#include <core/numbers/errors.h>
#include <core/tables/expression.h>
#include <core/tables/filter.h>

#include <cmath>
#include <variant>

namespace {

using namespace script;

/// What an expression gives: nothing, a truth, a number, a text, the ticks of a date, or the id of its
/// refusal.
struct Refused {
    std::string id;
    friend auto operator<=>(const Refused&, const Refused&) = default;
    friend std::ostream& operator<<(std::ostream& out, const Refused& refused) { return out << refused.id; }
};
using Answer = std::variant<std::monostate, bool, double, wstring, std::int64_t, Refused>;

Answer answer_of(const Value& value) {
    if (const NumericRef number = value.asNumeric())
        return static_cast<double>(*number);
    if (const wstring_view* const text = value.asString())
        return wstring(*text);
    if (const Date* const date = value.asDate())
        return static_cast<std::int64_t>(date->ticks());
    if (value.kind() == ValueKind::boolean)
        return value.isTrue();
    return {};
}

class ExpressionKinds : public TableTest {
  protected:
    /// Two values of every kind, where there are two.
    static std::vector<Value> samples() {
        return {Value(),
                Value::null(),
                Value(false),
                Value(true),
                Value(0),
                Value(Numeric::fromScaled(-25, 1)),
                Value(90'000),
                Value(u""),
                Value(u"ab"),
                Value(Date(2024, 2, 29)),
                Value(Date(2025, 3, 4, 5, 6, 7)),
                Value(Type(kStringType)),
                make(u"Array")};
    }
    static bool isEmpty(const Value& value) { return value.isUndefined() || value.kind() == ValueKind::null; }

    /// A table of one row. Where an object has been, the cells stay values of their own, and nothing is known
    /// of the kinds of a column before its rows are looked at.
    static InterfacePtr<IValueTable> row_of(const Value& a, const Value& b, bool ofValues) {
        const GenericValue table = table_of(u"A,B", {});
        if (ofValues)
            call(table, u"Add");
        auto rows = table.query<IValueTable>();
        if (ofValues)
            for (const wchar* const column : {u"A", u"B"})
                call(call(table, u"Get", {0}), u"Set", {column, make(u"Array")});
        const Value cells[] = {a, b};
        rows->appendRow(cells);
        if (ofValues)
            rows->removeRow(0);
        return rows;
    }
    static Answer computed(IValueTable& table, wstring_view expression,
                           const ExpressionParameters& with = {}) {
        try {
            return answer_of(
                table.get(0, add_column(table, u"R" + string_intto(table.columnCount()), expression, with)));
        } catch (const ExpressionException& e) {
            EXPECT_EQ(e.line(), 1U);
            return Refused{e.messageId()};
        }
    }
    /// Compares what an operator gives with the model, however its operands are held. Beside an empty operand
    /// a value that the operator never takes is refused where its kind is known before the rows are looked
    /// at.
    static void expectEverywhere(const wstring& sign, const Value& a, const Value& b, const Answer& expected,
                                 const Answer& refused) {
        const std::string what = to_utf8(a.presentation() + u" " + sign + u" " + b.presentation());
        const wstring expression = u"A " + sign + u" ";
        const bool asksForEmpty = isEmpty(b) && (sign == u"=" || sign == u"<>");
        const Answer ofConstant = asksForEmpty ? Answer(isEmpty(a) == (sign == u"=")) : expected;
        const Answer known = computed(*row_of(a, b, false), expression + u"B");
        EXPECT_TRUE(known == expected || known == refused) << what << testing::PrintToString(known);
        EXPECT_EQ(computed(*row_of(a, b, true), expression + u"B"), expected) << what << ", of values";
        const Answer given = computed(*row_of(a, b, true), expression + u"&B", {{u"B", b}});
        EXPECT_TRUE(given == ofConstant || given == refused)
            << what << ", given" << testing::PrintToString(given);
    }
    /// What an operator may also answer where one operand is empty: a refusal if it never takes the other
    /// one.
    template <class Model>
    static Answer refusal(const Value& a, const Value& b, const Answer& expected, Model model) {
        const std::vector<Value> all = samples();
        const bool takes = isEmpty(a) == isEmpty(b) || std::ranges::any_of(all, [&](const Value& one) {
                               const Answer answer = isEmpty(a) ? model(one, b) : model(a, one);
                               return !isEmpty(one) && !std::holds_alternative<Refused>(answer);
                           });
        return takes ? expected : Refused{messages::kExpressionOperands};
    }

    static Answer arithmetic(wchar sign, const Value& a, const Value& b) {
        if (isEmpty(a) || isEmpty(b))
            return {};
        const Answer left = answer_of(a);
        const Answer right = answer_of(b);
        const auto* const x = std::get_if<double>(&left);
        const auto* const y = std::get_if<double>(&right);
        if (x != nullptr && y != nullptr) {
            if ((sign == u'/' || sign == u'%') && *y == 0)
                return Refused{messages::kDivideByZero};
            return sign == u'+'   ? *x + *y
                   : sign == u'-' ? *x - *y
                   : sign == u'*' ? *x * *y
                   : sign == u'/' ? *x / *y
                                  : std::fmod(*x, *y);
        }
        if (sign == u'+' && left.index() == 3 && right.index() == 3)
            return std::get<wstring>(left) + std::get<wstring>(right);
        if (const auto* const date = std::get_if<std::int64_t>(&left)) {
            if (y != nullptr && (sign == u'+' || sign == u'-')) // whole seconds
                return *date + static_cast<std::int64_t>(*y) * kTicksPerSecond * (sign == u'+' ? 1 : -1);
            if (const auto* const other = std::get_if<std::int64_t>(&right); other != nullptr && sign == u'-')
                return static_cast<double>(*date - *other) / kTicksPerSecond;
        }
        return Refused{messages::kExpressionOperands};
    }
    static Answer comparison(const wstring& sign, const Value& a, const Value& b) {
        if (isEmpty(a) || isEmpty(b))
            return {};
        const bool equality = sign == u"=" || sign == u"<>";
        if (a.kind() != b.kind() || (!equality && a.kind() > ValueKind::date))
            return Refused{messages::kExpressionCompared};
        if (equality)
            return (a.kind() == ValueKind::object
                        ? a.equals(b)
                        : a.kind() == ValueKind::type || answer_of(a) == answer_of(b)) == (sign == u"=");
        const Answer left = answer_of(a);
        const Answer right = answer_of(b);
        return sign == u"<"    ? left < right
               : sign == u"<=" ? left <= right
               : sign == u">"  ? left > right
                               : left >= right;
    }
};

TEST_F(ExpressionKinds, AreAddedOrRefused) {
    for (const Value& a : samples())
        for (const Value& b : samples())
            for (const wchar sign : {u'+', u'-', u'*', u'/', u'%'}) {
                const Answer expected = arithmetic(sign, a, b);
                expectEverywhere(wstring(1, sign), a, b, expected,
                                 refusal(a, b, expected, [sign](const Value& left, const Value& right) {
                                     return arithmetic(sign, left, right);
                                 }));
            }
}

TEST_F(ExpressionKinds, NumbersDoNotOverflow) {
    std::vector<Numeric> numbers;
    for (const char* const text :
         {"9000000000000000000", "-9000000000000000000", "0.000001", "12345678901.25", "3"})
        numbers.push_back(Numeric::parse(text).value());
    for (const Numeric& a : numbers)
        for (const Numeric& b : numbers) {
            const auto rows = row_of(a, b, false);
            const std::pair<const wchar*, Numeric> sums[] = {
                {u"A * B", a * b},          {u"A + B", a + b},         {u"A - B", a - b},
                {u"A * B * A", a * b * a},  {u"B + A * B", b + a * b}, {u"A * B - A", a * b - a},
                {u"-A - B - B", -a - b - b}};
            for (const auto& [expression, expected] : sums) {
                const std::int32_t made =
                    add_column(*rows, u"R" + string_intto(rows->columnCount()), expression);
                EXPECT_EQ(rows->get(0, made), Value(expected))
                    << to_utf8(a.toString() + u", " + b.toString() + u": " + expression);
            }
        }
}

TEST_F(ExpressionKinds, AreNamedWhenTheyAreRefused) {
    const auto refusal = [&](const Value& a) {
        try {
            add_column(*row_of(a, Value(1), false), u"R", u"A * B");
        } catch (const ExpressionException& e) {
            return to_utf8(e.description());
        }
        return std::string();
    };
    for (const auto& [a, name] :
         {std::pair(Value(Type(kStringType)), "Type"), std::pair(Value(u"a"), "String"),
          std::pair(Value(true), "Boolean"), std::pair(Value(Date()), "Date")})
        EXPECT_NE(refusal(a).find(std::string("types ") + name + " and Number"), std::string::npos)
            << refusal(a);
}

TEST_F(ExpressionKinds, AreComparedOrRefused) {
    for (const Value& a : samples())
        for (const Value& b : samples())
            for (const wchar* const sign : {u"=", u"<>", u"<", u"<=", u">", u">="}) {
                const Answer expected = comparison(sign, a, b);
                expectEverywhere(sign, a, b, expected, expected);
            }
}

TEST_F(ExpressionKinds, AreListedMatchedAndNegated) {
    for (const Value& a : samples()) {
        for (const Value& b : samples()) {
            for (const bool ofValues : {false, true}) {
                const auto ask = [&](wstring_view expression) {
                    return computed(*row_of(a, b, ofValues), expression);
                };
                const std::string what = to_utf8(a.presentation() + u", " + b.presentation());
                EXPECT_EQ(ask(u"A In (B, A)"), isEmpty(a)                            ? Answer()
                                               : comparison(u"=", a, b).index() == 5 ? comparison(u"=", a, b)
                                                                                     : Answer(true))
                    << what;
                const Answer refused = Refused{messages::kExpressionOperands};
                const bool empty = isEmpty(a) || isEmpty(b);
                const bool texts = a.asString() != nullptr && b.asString() != nullptr;
                const Answer like = texts ? Answer(answer_of(a) == answer_of(b)) : empty ? Answer() : refused;
                const Answer found = ask(u"A Like B");
                EXPECT_TRUE(found == like || (empty && found == refused))
                    << what << testing::PrintToString(found);
            }
        }
        for (const bool ofValues : {false, true}) {
            const auto ask = [&](wstring_view expression) {
                return computed(*row_of(a, a, ofValues), expression);
            };
            const std::string what = to_utf8(a.presentation());
            const Answer own = answer_of(a);
            const Answer negated = isEmpty(a)         ? Answer()
                                   : own.index() == 2 ? Answer(-std::get<double>(own))
                                                      : Answer(Refused{messages::kExpressionOperands});
            EXPECT_EQ(ask(u"-A"), negated) << what;
            const Answer opposite = isEmpty(a)         ? Answer()
                                    : own.index() == 1 ? Answer(!std::get<bool>(own))
                                                       : Answer(Refused{messages::kExpressionNotCondition});
            EXPECT_EQ(ask(u"Not A"), opposite) << what;
            EXPECT_EQ(ask(u"A Is Undefined"), Answer(isEmpty(a))) << what;
            EXPECT_EQ(ask(u"Coalesce(Undefined, A)"), own) << what;
        }
    }
}

Answer ticks(const Date& date) {
    return static_cast<std::int64_t>(date.ticks());
}

/// A function, the only kind that its argument A takes, and what it gives for each sample of that kind.
struct Call {
    wstring text;
    ValueKind kind;
    std::vector<Answer> answers;
};

TEST_F(ExpressionKinds, AreTakenByFunctions) {
    constexpr auto kNumber = ValueKind::number;
    constexpr auto kText = ValueKind::string;
    constexpr auto kDate = ValueKind::date;
    const std::vector<Call> calls = {
        {u"AddMonth(A, 12)", kDate, {ticks(Date(2025, 2, 28)), ticks(Date(2026, 3, 4, 5, 6, 7))}},
        {u"AddMonth(A, 1000000000000)",
         kDate,
         {ticks(Date(2024, 2, 29).addMonth(120'000)), ticks(Date(2025, 3, 4, 5, 6, 7).addMonth(120'000))}},
        {u"AddMonth('20240331', A)",
         kNumber,
         {ticks(Date(2024, 3, 31)), ticks(Date(2024, 1, 31)), ticks(Date(2024, 3, 31).addMonth(90'000))}},
        {u"Right(A, 1)", kText, {wstring(), wstring(u"b")}},
        {u"Right(A, -1)", kText, {wstring(), wstring()}},
        {u"Right(A, 9)", kText, {wstring(), wstring(u"ab")}},
        {u"Left(\"abcd\", A)", kNumber, {wstring(), wstring(), wstring(u"abcd")}},
        {u"Mid(A, 2)", kText, {wstring(), wstring(u"b")}},
        {u"Mid(A, 0, 1)", kText, {wstring(), wstring(u"a")}},
        {u"Mid(A, 3, 1)", kText, {wstring(), wstring()}},
        {u"Mid(\"abc\", A, 2)", kNumber, {wstring(u"ab"), wstring(u"ab"), wstring()}},
        {u"StrLen(A)", kText, {0.0, 2.0}},
        {u"TrimAll(\" \" + A)", kText, {wstring(), wstring(u"ab")}},
        {u"Lower(Upper(A))", kText, {wstring(), wstring(u"ab")}},
        {u"Round(A)", kNumber, {0.0, -3.0, 90'000.0}},
        {u"Round(A, -4)", kNumber, {0.0, 0.0, 90'000.0}},
        {u"Int(A)", kNumber, {0.0, -2.0, 90'000.0}},
        {u"Floor(A)", kNumber, {0.0, -3.0, 90'000.0}},
        {u"Abs(A)", kNumber, {0.0, 2.5, 90'000.0}},
        {u"Max(A, 3)", kNumber, {3.0, 3.0, 90'000.0}},
        {u"Min(3, A)", kNumber, {0.0, -2.5, 3.0}},
        {u"Max(\"aa\", A)", kText, {wstring(u"aa"), wstring(u"ab")}},
        {u"Date(A)", kDate, {ticks(Date(2024, 2, 29)), ticks(Date(2025, 3, 4, 5, 6, 7))}},
        {u"Year(A) * 100 + Month(A)", kDate, {202'402.0, 202'503.0}},
    };
    for (const Call& one : calls) {
        for (const bool ofValues : {false, true}) {
            auto answer = one.answers.begin();
            for (const Value& a : samples()) {
                const bool takes = a.kind() == one.kind;
                ASSERT_TRUE(!takes || answer != one.answers.end());
                const Answer found = computed(*row_of(a, a, ofValues), one.text);
                const std::string what = to_utf8(one.text + u" of " + a.presentation());
                if (takes || isEmpty(a)) {
                    EXPECT_EQ(found, takes ? *answer++ : Answer()) << what;
                } else {
                    EXPECT_TRUE(found == Answer(Refused{messages::kExpressionArgument}) ||
                                found == Answer(Refused{messages::kExpressionOperands}))
                        << what;
                }
            }
        }
    }
}

TEST_F(ExpressionKinds, AreReadFromTextsAndTruthsAndStayWithinTheCalendar) {
    for (const bool ofValues : {false, true}) {
        const auto dates = row_of(Date(2024, 2, 29), Numeric(10).pow(20), ofValues);
        EXPECT_EQ(computed(*dates, u"A + B"), ticks(Date::largest()));
        EXPECT_EQ(computed(*dates, u"A - B"), ticks(Date()));
    }
    EXPECT_EQ(computed(*row_of(true, u" 12.5 ", false), u"Number(A) + Number(B)"), Answer(13.5));
    EXPECT_EQ(computed(*row_of(false, u"x", false), u"Number(A)"), Answer(0.0));
    EXPECT_EQ(computed(*row_of(false, u"x", false), u"Number(B)"),
              Answer(Refused{messages::kExpressionArgument}));
    EXPECT_EQ(computed(*row_of(2024, 13, false), u"Date(A, B)"),
              Answer(Refused{messages::kExpressionArgument}));
    EXPECT_EQ(computed(*row_of(2024, 12, false), u"Date(A, B, 31, 23, 59, 59)"),
              ticks(Date(2024, 12, 31, 23, 59, 59)));
    const auto texts = row_of(u"2024-02-29T10:00:00", u"no date", false);
    EXPECT_EQ(computed(*texts, u"Date(A)"), ticks(Date(2024, 2, 29, 10, 0, 0)));
    EXPECT_EQ(computed(*texts, u"Date(B)"), Answer(Refused{messages::kExpressionArgument}));
    const auto digits = row_of(u"20240229", u"20240230", false);
    EXPECT_EQ(computed(*digits, u"Date(A)"), ticks(Date(2024, 2, 29)));
    EXPECT_EQ(computed(*digits, u"Date(B)"), Answer(Refused{messages::kExpressionArgument}));
}

TEST_F(ExpressionKinds, RefuseWrongNumbersOfArguments) {
    const auto reason = [](wstring_view expression) {
        try {
            add_column(*row_of(1, 2, false), u"R", expression);
        } catch (const ExpressionException& e) {
            return to_utf8(e.reason());
        }
        return std::string();
    };
    const auto takes = [](const wchar* name, const wchar* count, int given) {
        return to_utf8(message_text(messages::kExpressionArgumentCount, {name, count, string_intto(given)}));
    };
    EXPECT_EQ(reason(u"AddMonth('20240101')"), takes(u"AddMonth", u"2", 1));
    EXPECT_EQ(reason(u"Left(\"a\")"), takes(u"Left", u"2", 1));
    EXPECT_EQ(reason(u"CurrentDate(1)"), takes(u"CurrentDate", u"0", 1));
    EXPECT_EQ(reason(u"Mid(\"a\", 1, 2, 3)"), takes(u"Mid", u"2–3", 4));
    EXPECT_EQ(reason(u"Max()"), takes(u"Max", u"1…", 0));
    EXPECT_EQ(reason(u"If(True, 1)"), takes(u"If", u"3", 2));
    EXPECT_EQ(reason(u"If(1, 1, 2)"),
              to_utf8(message_text(messages::kExpressionNotCondition, {Type(kNumberType).presentation()})));
    EXPECT_EQ(reason(u"Max(A, \"b\")"),
              to_utf8(message_text(messages::kExpressionArgument, {u"Max", u"2", u"b"})));
}

} // namespace
