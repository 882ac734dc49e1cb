// SPDX-License-Identifier: Apache-2.0
#include "tests/bridges/com/samples.h"

#include <core/context.h>
#include <core/context/iteration.h>
#include <core/objects/enumeration.h>
#include <core/runtime.h>
#include <core/script/engine.h>
#include <core/strings/term.h>
#include <core/values.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace core::com {
namespace {

struct Recipe {
    wstring_view type;
    const char* script; ///< of ours
};

constexpr const char* kTable =
    "T = New ValueTable; T.Columns.Add(\"A\"); T.Columns.Add(\"Name\");"
    "T.Indexes.Add(\"A\"); T.AddRow(1, \"one\"); T.AddRow(2, \"two\"); T.AddRow(2, \"A\");";
constexpr const char* kTree = "T = New ValueTree; T.Columns.Add(\"A\"); T.Columns.Add(\"Name\");"
                              "R = T.Rows.Add(); R.A = 1; R.Name = \"one\"; S = R.Rows.Add(); S.A = 2;";
constexpr const char* kList = "L = New ValueList; L.Add(1, \"one\"); L.Add(2, \"two\", True);";

/// What New does not make without arguments, and what has more to show with some content.
constexpr Recipe kRecipes[] = {
    {u"Undefined", "Return Undefined;"},
    {u"Null", "Return Null;"},
    {u"Boolean", "Return True;"},
    {u"Number", "Return 1.5;"},
    {u"String", "Return \"A\";"},
    {u"Date", "Return '20240229';"},
    {u"Type", "Return Type(\"Number\");"},
    {u"Array", "A = New Array; A.Add(1); A.Add(\"A\"); A.Add(2.5); Return A;"},
    {u"BinaryData", "Return New BinaryData(\"some bytes\");"},
    {u"CollectionIndex", "Return T.Indexes.Get(0);"},
    {u"CollectionIndexes", "Return T.Indexes;"},
    {u"Color", "Return New Color(\"#4682B4\");"},
    {u"Container", "C = New Container; C.PutText(\"A\", \"text\"); C.Put(\"B\", 1); Return C;"},
    {u"Enumeration", "Return SortDirection;"},
    {u"Error", "Try A = New Array; A.Get(5); Except Return Error; EndTry;"},
    {u"File", "Return New File(\"A\");"},
    {u"Filter", "Return New Filter(\"A > 1\");"},
    {u"FixedArray", "A = New Array; A.Add(1); A.Add(\"A\"); Return New FixedArray(A);"},
    {u"KeyAndValue", "For Each E In New Structure(\"A\", 1) Do Return E; EndDo;"},
    {u"LocalWString", "S = New LocalWString; Return S.With(\"en\", \"one\");"},
    {u"Locale", "Return New Locale(\"ru\");"},
    {u"Map", "M = New Map; M.Insert(\"A\", 1); M.Insert(2, \"two\"); Return M;"},
    {u"Procedure", "Procedure P() EndProcedure Return P;"},
    {u"Rect", "Return New Rect(0, 1, 10, 20);"},
    {u"Report", "Return New Report(T);"},
    {u"ReportColumn", "S = New ReportStyle; Return S.Columns.A;"},
    {u"ReportColumns", "S = New ReportStyle; S.Columns.A.Title = \"one\"; Return S.Columns;"},
    {u"StandardBeginningDate",
     "Return New StandardBeginningDate(StandardBeginningDateVariant.BeginningOfThisYear);"},
    {u"StandardPeriod", "Return New StandardPeriod(StandardPeriodVariant.ThisYear);"},
    {u"StoredValue", "Return New StoredValue(1);"},
    {u"Structure", "Return New Structure(\"A,B\", 1, \"two\");"},
    {u"TextDocument",
     "D = New TextDocument(\"one\"); D.InsertLine(1, \"A two\"); D.InsertLine(2, \"three\"); Return D;"},
    {u"TextMatch", "Return RegexFind(\"one A\", \"A\");"},
    {u"TextRange", "D = New TextDocument(\"one A\"); Return D.AddRange(1, 3);"},
    {u"TextReader", "Return New TextReader(\"A\");"},
    {u"TextWriter", "Return New TextWriter(\"B\");"},
    {u"TypeDescription", "Return New TypeDescription(\"Number,String\");"},
    {u"ValueList", "Return L;"},
    {u"ValueListItem", "Return L.Get(0);"},
    {u"ValueTable", "Return T;"},
    {u"ValueTableColumn", "Return T.Columns.Get(0);"},
    {u"ValueTableColumnCollection", "Return T.Columns;"},
    {u"ValueTableRow", "Return T.Get(0);"},
    {u"ValueTree", "Return T;"},
    {u"ValueTreeRow", "Return T.Rows.Get(0);"},
    {u"ValueTreeRowCollection", "Return T.Rows;"},
    {u"COMTypeLibrary", "Return New COMTypeLibrary(New COMObject(\"Scripting.Dictionary\"));"},
};

constexpr const char* kArguments = // kUsualArguments first
    "All = New Array; All.Add(0); All.Add(1); All.Add(2); All.Add(\"A\"); All.Add(\"Name\"); "
    "All.Add(\"one\");"
    "All.Add(2.5); All.Add(\"B\"); All.Add(\"Number\"); All.Add(\"A > 1\"); All.Add(\"en\"); All.Add(True);"
    "All.Add(Undefined); All.Add(Null); A = New Array; A.Add(1); A.Add(2); A.Add(3); All.Add(A);"
    "All.Add(New Structure(\"A\", 1)); All.Add(Type(\"Number\")); All.Add(New TypeDescription(\"Number\"));"
    "All.Add(SortDirection.Desc); All.Add(New Color(\"#4682B4\")); All.Add(New BinaryData(\"A\"));"
    "All.Add(New Filter(\"A > 1\")); All.Add(New Style); All.Add(New Rect(0, 0, 5, 5)); All.Add(New "
    "Font(\"Arial\"));"
    "All.Add(LineEnds.LF); All.Add(\"UTF-16LE\"); All.Add(\"TextColor\"); All.Add(\"TextFont\"); "
    "All.Add(ColumnAlignment.Right); Return All;";

Value run(const std::string& script) {
    script::Engine engine;
    return engine.run(script);
}

/// The object whose properties are the values of an enumeration; null for every other type.
GenericValue enumeration_of(wstring_view type) {
    auto& all = require_service<IEnumerations>();
    GenericValue value;
    if (const int prop = all.findProp(wstring(type).c_str()); prop >= 0)
        all.getPropVal(prop, value);
    const auto enumeration = value.query<IEnumeration>();
    const bool same = enumeration && enumeration->valueType() == Type(type).get();
    return same ? value : GenericValue();
}

template <class Ask>
void try_to(Ask ask) {
    try {
        ask();
    } catch (const Exception&) { // nothing is asked of it then
    }
}

} // namespace

GenericValue sample_of(wstring_view type) {
    std::filesystem::remove_all("B"); // which earlier samples have written
    std::ofstream("A") << "one\ntwo\n";
    if (GenericValue values = enumeration_of(type); !values.isUndefined())
        return values;
    const auto* const recipe = std::ranges::find(kRecipes, type, &Recipe::type);
    if (recipe == std::end(kRecipes))
        return Type(type).get()->construct({});
    const bool tree = type.find(u"Tree") != wstring_view::npos;
    const bool list = type.find(u"List") != wstring_view::npos;
    return GenericValue(run(std::string(tree ? kTree : list ? kList : kTable) + recipe->script));
}

std::vector<GenericValue> arguments_for(const GenericValue& sample, std::size_t& dates) {
    static const script::Script script = script::compile(kArguments);
    std::vector<GenericValue> all;
    script::Engine engine;
    const GenericValue known = engine.run(script);
    const auto walk = known.query<IValueCollection>()->enumerate();
    for (GenericValue value; walk->next(value);)
        all.push_back(value);
    all.push_back(sample);
    const auto context = sample.query<IContext_>();
    for (int prop = 0; context && prop < std::min(context->getNProps(), 4); ++prop) {
        GenericValue inside;
        try_to([&] { context->getPropVal(prop, inside); });
        all.push_back(inside.asDate() ? GenericValue() : inside);
    }
    const auto elements = sample.query<IValueCollection>();
    GenericValue first;
    if (elements)
        try_to([&] { static_cast<void>(elements->enumerate()->next(first)); });
    all.push_back(first);
    dates = all.size();
    all.push_back(GenericValue(Date(2024, 2, 29)));
    all.push_back(GenericValue(Date(2023, 1, 1, 12)));
    return all;
}

bool differs_by_moment(std::string_view property) {
    return property == "FreeSpace" || property == "Modified" || property == "Created";
}

std::string state_of(const GenericValue& value, int depth) {
    std::string state = to_utf8(value.type().name(kEnglish)) + " " + to_utf8(value.presentation());
    if (depth == 0 || !value.isObject())
        return state;
    if (const auto context = value.query<IContext_>()) {
        for (int prop = 0; prop < context->getNProps(); ++prop) {
            const std::string name = to_utf8(context->getPropName(prop, kEnglish));
            if (differs_by_moment(name))
                continue;
            try {
                GenericValue held;
                context->getPropVal(prop, held);
                state += "\n" + name + ": " + state_of(held, depth - 1);
            } catch (const Exception& e) {
                state += "\n" + name + ": " + e.messageId();
            }
        }
    }
    if (const auto collection = value.query<IValueCollection>()) {
        try {
            const auto walk = collection->enumerate();
            for (GenericValue element; walk->next(element);)
                state += "\n- " + state_of(element, depth - 1);
        } catch (const Exception& e) {
            state += std::string("\n- ") + e.messageId();
        }
    }
    return state;
}

} // namespace core::com
