// SPDX-License-Identifier: Apache-2.0
#include "host/commands/query_steps.h"

#include "host/commands/query_place.h"

#include <core/context/context_def.h>
#include <core/strings/char_class.h>
#include <core/strings/names.h>
#include <core/strings/nearest.h>
#include <core/strings/term.h>
#include <core/strings/trim.h>
#include <core/values/errors.h>

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>
#include <vector>

namespace host {
namespace {

using namespace core;

/// The steps: what stands between "|" outside of strings and parentheses.
std::vector<wstring_view> split_steps(wstring_view text) {
    std::vector<wstring_view> steps;
    std::size_t begin = 0;
    int depth = 0;
    bool quoted = false;
    for (std::size_t i = 0; i <= text.size(); ++i) {
        const wchar unit = i < text.size() ? text[i] : u'|';
        if (unit == u'"')
            quoted = !quoted;
        else if (i == text.size() || (unit == u'|' && !quoted && depth == 0)) {
            steps.push_back(trim_all(text.substr(begin, i - begin)));
            begin = i + 1;
        } else if (!quoted && (unit == u'(' || unit == u')'))
            depth += unit == u'(' ? 1 : -1;
    }
    return steps;
}

/// The name that a step calls; empty for a step of another form.
wstring_view called(wstring_view step) {
    std::size_t length = 0;
    while (length < step.size() && (is_alnum(step[length]) || step[length] == u'_'))
        ++length;
    const bool calls = trim_left(step.substr(length)).starts_with(u'(');
    return calls ? step.substr(0, length) : wstring_view();
}

bool is(wstring_view name, wstring_view english, wstring_view russian) {
    return compare_nocase(name, english) == 0 || compare_nocase(name, russian) == 0;
}

/// The condition or the order that a step has without quotes around it; empty for any other step.
wstring_view bare_expression(wstring_view step, wstring_view name) {
    if (!is(name, u"Where", u"Где") && !is(name, u"Filter", u"Отобрать") &&
        !is(name, u"Sort", u"Сортировать"))
        return {};
    wstring_view text = step.substr(step.find(u'(') + 1);
    if (!text.ends_with(u')'))
        return {};
    text = trim_all(text.substr(0, text.size() - 1));
    return text.starts_with(u'"') ? wstring_view() : text;
}

/// The steps beside the methods of the value.
constexpr std::array<std::array<wstring_view, 2>, 4> kOwn = {
    {{u"First", u"Первые"}, {u"Last", u"Последние"}, {u"Select", u"Выбрать"}, {u"Where", u"Где"}}};

bool is_own(wstring_view name) {
    return std::ranges::any_of(kOwn, [name](const auto& one) { return is(name, one[0], one[1]); });
}

/// What a step was probably meant to call; empty where nothing is near.
wstring nearest_step(wstring_view name, const IContext_* value) {
    NearestName near(name);
    for (const auto& one : kOwn)
        std::ranges::for_each(one, [&near](wstring_view candidate) { near.add(candidate); });
    for (int method = 0; value != nullptr && method < value->getNMethods(); ++method) {
        for (const int alias : {kEnglish, kRussian}) {
            if (const wchar* const candidate = value->getMethodName(method, alias))
                near.add(candidate);
        }
    }
    return near.best();
}

/// The value that steps work on, and what only they can call.
class Pipeline {
  public:
    Pipeline(script::Engine& engine, const GenericValue& table) : engine_(engine), value_(table) {
        engine.function(u"First", u"Первые", [this](std::size_t count) { return rows(0, count); }, {kCount});
        engine.function(u"Last", u"Последние",
                        [this](std::size_t count) {
                            const std::size_t all = countOfRows();
                            return rows(all - std::min(all, count), all);
                        },
                        {kCount});
        engine.function(u"Select", u"Выбрать",
                        [this](const Value& columns) {
                            engine_.set(u"_Columns", columns);
                            return evaluate(u"Return Table.Copy(, _Columns)");
                        },
                        {{u"Columns", u"Колонки"}});
        engine.function(u"Where", u"Где",
                        [this](const Value& filter, std::optional<Value> value) {
                            engine_.set(u"_Filter", filter);
                            if (!value)
                                return evaluate(u"Return Table.Copy(_Filter)");
                            engine_.set(u"_Value", *value);
                            return evaluate(u"Return Table.Copy(New Structure(_Filter, _Value))");
                        },
                        {{u"Condition", u"Условие"}, {u"Value", u"Значение"}});
    }

    /// Carries the steps out; without any the value stays.
    GenericValue run(wstring_view query) {
        if (trim_all(query).empty())
            return value_;
        query_ = query;
        for (const wstring_view step : split_steps(query)) {
            engine_.set(u"Table", value_);
            engine_.set(u"Таблица", value_);
            take(step);
            before_ = step;
        }
        return value_;
    }

  private:
    static constexpr Parameter kCount{u"Count", u"Количество"};

    void take(wstring_view step) {
        const wstring_view name = called(step);
        if (step.empty())
            throw_error<ContextException>("IDS_HOST_QUERY_EMPTY_STEP", {wstring(query_)});
        if (!name.empty() && value_.isUndefined())
            throw_error<ContextException>("IDS_HOST_QUERY_UNDEFINED", {wstring(before_), wstring(name)});
        if (const wstring_view text = bare_expression(step, name); !text.empty()) {
            engine_.set(u"_Text", wstring(text));
            if (is(name, u"Where", u"Где"))
                value_ = evaluate(u"Return Table.Copy(_Text)", step);
            else
                evaluate(u"Table." + wstring(name) + u"(_Text)", step);
            return;
        }
        const auto context = value_.query<IContext_>();
        const bool calls = !name.empty() && !is_own(name);
        const int method = calls && context ? context->findMethod(wstring(name).c_str()) : -1;
        if (method >= 0 && !context->hasRetVal(method))
            evaluate(u"Table." + wstring(step), step);
        else
            value_ = evaluate((method >= 0 ? u"Return Table." : u"Return ") + wstring(step), step);
    }

    Value evaluate(const wstring& text) { return engine_.run(text, u"query"); }
    /// The same for the text of a step, whose failures are told by their place in the query.
    Value evaluate(const wstring& text, wstring_view step) {
        try {
            return evaluate(text);
        } catch (const script::Error& error) {
            throw failure_of_query(suggesting(error, called(step)), query_, step, text);
        }
    }
    /// The failure of a call that nothing answers, with what was probably meant among the steps.
    [[nodiscard]] script::Error suggesting(const script::Error& error, wstring_view name) const {
        const bool isUnknown = std::string_view(error.messageId()) == "IDS_SCRIPT_UNKNOWN_FUNCTION" &&
                               error.parameters().front() == name;
        const wstring near = isUnknown ? nearest_step(name, value_.query<IContext_>().get()) : wstring();
        if (near.empty())
            return error;
        const wstring question = message_text("IDS_DID_YOU_MEAN", {near});
        script::Error better(message_text(error.messageId(), {wstring(name)}) + u" " + question,
                             error.place(), error.cause());
        better.setMessage(error.messageId(), error.parameters());
        return better;
    }

    std::size_t countOfRows() {
        return static_cast<std::size_t>(*evaluate(u"Return Table.Count()").asNumeric());
    }
    GenericValue rows(std::size_t begin, std::size_t end) {
        end = std::min(end, countOfRows());
        engine_.set(u"_From", begin);
        engine_.set(u"_To", end);
        return evaluate(u"_Rows = New Array; For _I = _From To _To - 1 Do _Rows.Add(Table.Get(_I)) EndDo;"
                        u"Return Table.Copy(_Rows)");
    }

    script::Engine& engine_;
    GenericValue value_;
    wstring_view query_;
    wstring_view before_; // the step that gave the value
};

} // namespace

GenericValue run_steps(script::Engine& engine, const GenericValue& table, wstring_view steps) {
    return Pipeline(engine, table).run(steps);
}

} // namespace host
