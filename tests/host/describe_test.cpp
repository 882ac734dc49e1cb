// SPDX-License-Identifier: Apache-2.0
// What corehost says of types is what their live definitions say: nothing is missing, both languages are
// there, and a member that is described can be found by its names.
#include "tests/host/program_fixture.h"

#include <core/context/event_source.h>
#include <core/runtime/module_contract.h>
#include <core/runtime/utf8.h>
#include <core/values/type_service.h>
#include <host/host_process.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cctype>
#include <filesystem>

namespace host {
namespace {

using nlohmann::json;

json described(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {"describe", "--json"});
    const Answer answer = corehost(std::move(arguments));
    EXPECT_EQ(answer.code, ExitCode::done) << answer.err;
    return json::parse(answer.out);
}

TEST(DescribeTest, EveryTypeByBothNames) {
    std::vector<std::string> registered;
    {
        const HostProcess process;
        for (const core::IType* const type : core::get_service<core::ITypeValueService>()->types())
            registered.push_back(core::to_utf8(core::to_string(type->id())));
    }
    std::vector<std::string> listed;
    for (const json& type : described({})) {
        listed.push_back(type["id"]);
        json english = described({type["name"]["en"]});
        EXPECT_EQ(english["id"], type["id"]);
        json russian = described({type["name"]["ru"]});
        english.erase("function"); // of the name that was asked for, not of the type
        russian.erase("function");
        EXPECT_EQ(english, russian);
        for (const json& method : english["methods"]) {
            for (const json& parameter : method["parameters"])
                EXPECT_TRUE(parameter.contains("name")) << english["name"] << method["name"];
        }
    }
    EXPECT_EQ(listed, registered);
    // objects that live inside others only
    for (const char* const inner : {"ValueTableRow", "CollectionIndex", "ЭлементСпискаЗначений"})
        EXPECT_TRUE(described({inner})["known"]) << inner;
}

TEST(DescribeTest, MembersAreThoseOfLiveObjects) {
    const HostProcess process;
    for (const char* const name : {"Array", "Structure", "ValueTable", "TypeDescription", "ValueList"}) {
        const json report = described({name});
        auto* const type = core::get_service<core::ITypeValueService>()->findType(core::from_utf8(name));
        const auto object = type->construct({});
        const auto context = object.query<core::IContext_>();
        ASSERT_TRUE(context);
        ASSERT_EQ(report["methods"].size(), static_cast<std::size_t>(context->getNMethods())) << name;
        for (const json& method : report["methods"]) {
            for (const char* const language : {"en", "ru"}) {
                const int found =
                    context->findMethod(core::from_utf8(method["name"][language].get<std::string>()).c_str());
                ASSERT_GE(found, 0) << name << method;
                EXPECT_EQ(method["parameters"].size(), static_cast<std::size_t>(context->getNParams(found)));
                for (int param = 0; param < context->getNParams(found); ++param)
                    EXPECT_EQ(method["parameters"][static_cast<std::size_t>(param)].contains("default"),
                              context->getParamDefValue(found, param, nullptr));
            }
        }
        for (const json& property : report["properties"])
            EXPECT_GE(context->findProp(core::from_utf8(property["name"]["ru"].get<std::string>()).c_str()),
                      0);
        const auto source = object.query<core::IEventSource>();
        ASSERT_EQ(report["events"].size(), static_cast<std::size_t>(source ? source->getNEvents() : 0))
            << name;
        for (const json& event : report["events"]) {
            const int found =
                source->findEvent(core::from_utf8(event["name"]["ru"].get<std::string>()).c_str());
            ASSERT_GE(found, 0) << event;
            EXPECT_EQ(event["parameters"].size(), static_cast<std::size_t>(source->getNEventParams(found)));
        }
    }
}

TEST(DescribeTest, ASampleAddsNoMembersOfItsOwn) {
    const json table = described({"ValueTableRow"});
    const json tree = described({"ValueTreeRow"});
    ASSERT_TRUE(table["known"] && tree["known"]);
    EXPECT_EQ(table["properties"].size(), 0U) << table["properties"];
    for (const json& property : tree["properties"])
        EXPECT_NE(property["name"]["en"], "Name") << "that is a column of the tree the row was taken from";
    EXPECT_EQ(tree["properties"].size(), 2U) << tree["properties"];
}

TEST(DescribeTest, WhatAPersonReads) {
    const Answer array = corehost({"describe", "массив"});
    EXPECT_NE(array.out.find("New / Новый  ([SizeOrArray], [Size2], …)\n"), std::string::npos) << array.out;
    EXPECT_NE(array.out.find("  Insert  Вставить    (Index, Value)\n"), std::string::npos) << array.out;
    const std::string structure = corehost({"describe", "Структура", "--lang", "ru"}).out;
    EXPECT_NE(structure.find("-> Число\n"), std::string::npos) << structure;
    EXPECT_NE(structure.find("(Ключ, out Значение = Неопределено)"), std::string::npos) << structure;
    EXPECT_EQ(described({"Map"})["methods"][4]["parameters"][0]["name"]["ru"], "Ключ");
    const std::string tree = corehost({"describe", "ValueTree"}).out;
    EXPECT_NE(tree.find("\nEvents\n  RowAdded "), std::string::npos) << tree;
    EXPECT_NE(tree.find(" (Index, Column, Parent)\n"), std::string::npos) << tree;
    const std::string table = corehost({"describe", "ValueTable"}).out;
    const std::string count = table.substr(table.find("\n  Count ") + 1);
    EXPECT_LT(count.find("-> Number\n"), 100U)
        << "one long list of parameters must not push all results away";
    const std::string functions = corehost({"describe", "--functions"}).out;
    EXPECT_NE(functions.find("\nFromJson "), std::string::npos) << functions;
    EXPECT_NE(functions.find("(Text, Maps = False, "), std::string::npos) << functions;
    EXPECT_NE(functions.find("-> Number\n"), std::string::npos) << functions;
    EXPECT_NE(functions.find("\nGetTempFileName "), std::string::npos) << functions;
    EXPECT_NE(
        corehost({"describe", "AllowedSign"}).out.find("\nValues\n  Any          Любой            Any\n"),
        std::string::npos);
    EXPECT_EQ(described({"AllowedSign"})["enumeration"], true);
    EXPECT_EQ(described({"Number"})["known"], false);
    const std::string null = corehost({"describe", "Null"}).out;
    EXPECT_TRUE(null.ends_with("\n\nNo properties or methods are known without an object.\n")) << null;
    EXPECT_EQ(array.out.find("No properties"), std::string::npos) << array.out;
}

TEST(DescribeTest, NoTypeIsPresentedByAScriptsName) {
    for (const std::string language : {"en", "ru"}) {
        for (const json& type : described({"--lang", language})) {
            const std::string name = type["name"]["en"];
            const bool isOneWord = std::none_of(name.begin() + 1, name.end(),
                                                [](unsigned char unit) { return std::isupper(unit) != 0; });
            EXPECT_TRUE(isOneWord || type["presentation"] != type["name"][language]) << name;
        }
    }
}

TEST(DescribeTest, OneThingAloneWithItsSentence) {
    EXPECT_EQ(
        corehost({"describe", "таблицазначений.groupby"}).out,
        "ValueTable.GroupBy(GroupColumns, TotalColumns = Undefined)\n"
        "ТаблицаЗначений.Свернуть(КолонкиГруппировки, КолонкиИтогов = Неопределено)\n"
        "Replaces the rows that are equal in the group columns by one, with sums in the total columns; the "
        "other columns go.\n");
    EXPECT_EQ(corehost({"describe", "ROUND", "--lang", "ru"}).out,
              "Round(Number, Digits = Undefined) -> Number\n"
              "Окр(Число, Знаки = Неопределено) -> Число\n"
              "Возвращает число, округлённое до стольких знаков после точки; при отрицательном количестве "
              "округляет "
              "до десятков, сотен и так далее.\n");
    EXPECT_EQ(corehost({"describe", "ValueTreeRow.Parent"}).out,
              "ValueTreeRow.Parent\nСтрокаДереваЗначений.Родитель\nany value, read only\n"
              "The row above, Undefined for a topmost row.\n");
    EXPECT_EQ(corehost({"describe", "ValueTable.ПриИзмененииСтроки"})
                  .out.find("ValueTable.RowChanged(Index, "
                            "Column)\nТаблицаЗначений.ПриИзмененииСтроки(Индекс, Колонка)\n"),
              0U);

    // a name of a type and of a function
    const std::string date = corehost({"describe", "Date"}).out;
    EXPECT_EQ(date.find("A day and a time of day, "), 0U) << date;
    EXPECT_NE(date.find("\nFunction\n  Date  Дата  (Value)  -> Date\n      Returns a value read as a date;"),
              std::string::npos)
        << date;
    EXPECT_EQ(described({"Date"})["function"]["description"]["ru"].get<std::string>().find("Возвращает"), 0U);

    const json get = described({"Массив.Получить"});
    EXPECT_EQ(get["type"]["en"], "Array");
    EXPECT_EQ(get["kind"], "method");
    EXPECT_EQ(get["name"]["ru"], "Получить");
    EXPECT_EQ(get["description"]["ru"],
              "Возвращает значение по индексу; индекс, по которому ничего нет, вызывает ошибку.");
    EXPECT_EQ(described({"File.Size"})["kind"], "property");
    EXPECT_EQ(described({"ValueList.Sorted"})["kind"], "event");
    const json floor = described({"Floor"});
    EXPECT_EQ(floor["kind"], "function");
    EXPECT_FALSE(floor.contains("type"));
    EXPECT_EQ(described({"Array"})["constructor"]["description"]["en"].get<std::string>().find("Makes"), 0U);
    EXPECT_EQ(described({"AllowedSign.Any"})["description"]["ru"], "Любой");

    const Answer near = corehost({"describe", "Array.Instert"});
    EXPECT_EQ(near.code, ExitCode::no);
    EXPECT_EQ(near.err, "corehost: The type Array has no member Instert. Did you mean Insert?\n");
    EXPECT_EQ(corehost({"describe", "Arrax.Insert"}).err,
              "corehost: There is no type Arrax. Did you mean Array?\n");
    EXPECT_EQ(corehost({"describe", "Flor"}).err, "corehost: There is no type Flor. Did you mean Floor?\n");
}

TEST(DescribeTest, WhatModulesBrought) {
    const std::string file = CORE_TEST_MODULES "/libcounter" CORE_TEST_SUFFIX;
    EXPECT_EQ(corehost({"--module", file, "describe", "Counter.Add"}).out,
              "Counter.Add(Amount)\nСчетчик.Добавить(Сумма)\n"
              "Adds an amount; a sum below 0 or above the limit is an error.\n");
    const json modules = json::parse(corehost({"--json", "--module", file, "describe", "--modules"}).out);
    const json& counter = modules.back();
    EXPECT_EQ(counter["name"], "counter");
    EXPECT_EQ(counter["interface"], core::kInterfaceVersion);
    EXPECT_TRUE(std::filesystem::equivalent(counter["file"].get<std::string>(), file));
    std::string classes = "\n\ncounter\n";
    for (const json& name : counter["classes"])
        classes += "  " + name.get<std::string>() + '\n';
    EXPECT_NE(classes.find("\n  Counter\n"), std::string::npos) << classes;

    const std::string text = corehost({"--module", file, "describe", "--modules"}).out;
    EXPECT_TRUE(text.ends_with(classes)) << text;
    const auto lines = static_cast<std::size_t>(
        std::count(text.begin(), text.end() - static_cast<std::ptrdiff_t>(classes.size()), '\n'));
    EXPECT_EQ(lines + 1, modules.size()) << "of the others only that they are there: " << text;
    for (const json& module : modules) {
        const std::string count = std::to_string(module["classes"].size()) + " classes";
        EXPECT_NE(text.find(count), std::string::npos) << count << text;
        EXPECT_NE(text.find(module["file"].get<std::string>() + '\n'), std::string::npos) << text;
    }
    EXPECT_EQ(json::parse(corehost({"--json", "describe", "--modules"}).out).size(), modules.size() - 1);
}

TEST(DescribeTest, TheHandbookNamesEveryFunction) {
    const std::filesystem::path docs = std::filesystem::path(CORE_SOURCE_DIR) / "docs";
    std::string handbook;
    for (const char* const page :
         {"exchange.md", "files.md", "formats.md", "language.md", "scripting-tables.md"})
        handbook += text_of(docs / page);
    for (const json& function : described({"--functions"})) {
        std::string call;
        for (const json& parameter : function["parameters"]) {
            ASSERT_TRUE(parameter.contains("name")) << function;
            const auto name = parameter["name"]["en"].get<std::string>();
            EXPECT_NE(parameter["name"]["ru"], name);
            call.append(call.empty() ? "" : ", ")
                .append(parameter.contains("default") ? '[' + name + ']' : name);
        }
        call = '`' + function["name"]["en"].get<std::string>() + '(' + call + ")`";
        EXPECT_NE(handbook.find(call), std::string::npos) << call;
        EXPECT_NE(handbook.find("`" + function["name"]["ru"].get<std::string>() + "`"), std::string::npos)
            << function;
    }
}

TEST(DescribeTest, LocalesWithTheirNames) {
    const json locales = described({"--locales"});
    EXPECT_EQ(locales.size(), core::Locale::all().size());
    const auto austrian =
        std::ranges::find(locales, json("de_AT"), [](const json& locale) { return locale["key"]; });
    ASSERT_NE(austrian, locales.end());
    const json expected = {{"key", "de_AT"},
                           {"parent", "de"},
                           {"language", "de"},
                           {"region", "AT"},
                           {"name", {{"en", "German (Austria)"}, {"ru", "немецкий (Австрия)"}}},
                           {"ownName", "Deutsch (Österreich)"},
                           {"rightToLeft", false},
                           {"firstDayOfWeek", 1}};
    EXPECT_EQ(*austrian, expected);
    const std::string text = corehost({"describe", "--locales", "--lang", "ru"}).out;
    EXPECT_NE(text.find("немецкий (Австрия)"), std::string::npos);
    EXPECT_EQ(static_cast<std::size_t>(std::ranges::count(text, '\n')), locales.size());
}

TEST(DescribeTest, WhatThereIsNot) {
    const Answer near = corehost({"describe", "Structur"});
    EXPECT_EQ(near.code, ExitCode::no);
    EXPECT_EQ(near.err, "corehost: There is no type Structur. Did you mean Structure?\n");
    EXPECT_EQ(near.out, "");
    EXPECT_EQ(corehost({"describe", "масив", "--lang", "ru"}).err,
              "corehost: Нет типа масив. Возможно, имелся в виду Массив?\n");
    EXPECT_EQ(corehost({"describe", std::string(100'000, 'x')}).code, ExitCode::no);
    EXPECT_EQ(corehost({"describe", "Qzqzqzqz"}).err, "corehost: There is no type Qzqzqzqz.\n");
    EXPECT_EQ(corehost({"describe", "Array", "--functions"}).code, ExitCode::usage);
}

} // namespace
} // namespace host
