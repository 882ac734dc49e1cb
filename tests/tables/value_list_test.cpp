// SPDX-License-Identifier: Apache-2.0
// Concerns: the method table and its defaults to the letter; every method against a vector of items under
// random operations; stable sorts; items alive outside of their list; the list's type; lists that would hold
// themselves.
#include "tests/collections/script.h"

#include <core/descriptions.h>
#include <core/tables.h>

#include <algorithm>
#include <random>

namespace {

using namespace script;

class Lists : public script::Test {
  protected:
    static GenericValue list_of(std::initializer_list<GenericValue> values) {
        const GenericValue list = make(u"ValueList");
        for (const GenericValue& value : values)
            call(list, u"Add", {value});
        return list;
    }
    static void assign(const Value& object, const wchar* name, const GenericValue& value) {
        const auto context = object.query<IContext_>();
        context->setPropVal(context->findProp(name), value);
    }
    /// Sorts a list and the items that it is to have.
    static void sort(const Value& list, std::vector<GenericValue>& items, bool byValue, bool down) {
        const wchar* const key = byValue ? u"Value" : u"Presentation";
        Arguments arguments;
        if (down || byValue) // ascending when left out
            arguments.push_back(direction(down ? u"Убыв" : u"Asc"));
        call(list, byValue ? u"SortByValue" : u"SortByPresentation", arguments);
        std::stable_sort(items.begin(), items.end(), [&](const Value& a, const Value& b) {
            const int order = compare_values(property(a, key), property(b, key));
            return down ? order > 0 : order < 0;
        });
    }
    static GenericValue direction(const wchar* name) {
        const Enumeration& directions = sort_types();
        GenericValue value;
        const_cast<Enumeration&>(directions).getPropVal(directions.findProp(name), value);
        return value;
    }
    /// Values, presentations and checks.
    static wstring content(const Value& list) {
        wstring text;
        for (const GenericValue& item : walk(list))
            text += property(item, u"Value").presentation() + u":" +
                    property(item, u"Presentation").presentation() +
                    (property(item, u"Check").isTrue() ? u"+;" : u";");
        return text;
    }
};

TEST_F(Lists, HaveTheirMethodsAndDefaults) {
    const struct {
        const wchar* english;
        const wchar* russian;
        bool returns;
        wstring defaults; ///< a letter a parameter: "-" none, "u" Undefined, "f" False, "e" the empty text,
                          ///< "t" a text
    } expected[] = {
        {u"FindByValue", u"НайтиПоЗначению", true, u"-"},
        {u"SortByValue", u"СортироватьПоЗначению", false, u"u"},
        {u"SortByPresentation", u"СортироватьПоПредставлению", false, u"u"},
        {u"ChooseItem", u"ВыбратьЭлемент", true, u"tu"},
        {u"CheckItems", u"ОтметитьЭлементы", true, u"t"},
        {u"UnloadValues", u"ВыгрузитьЗначения", true, u""},
        {u"LoadValues", u"ЗагрузитьЗначения", false, u"-"},
        {u"Copy", u"Скопировать", true, u""},
        {u"Count", u"Количество", true, u""},
        {u"Add", u"Добавить", true, u"uefu"},
        {u"Insert", u"Вставить", true, u"-uefu"},
        {u"Delete", u"Удалить", false, u"-"},
        {u"Clear", u"Очистить", false, u""},
        {u"Move", u"Сдвинуть", false, u"--"},
        {u"IndexOf", u"Индекс", true, u"-"},
        {u"Get", u"Получить", true, u"-"},
        {u"FillChecks", u"ЗаполнитьПометки", false, u"-"},
    };
    const GenericValue list = make(u"СписокЗначений");
    const auto context = list.query<IContext_>();
    ASSERT_EQ(context->getNMethods(), static_cast<int>(std::size(expected)));
    for (int i = 0; i < context->getNMethods(); ++i) {
        const auto& method = expected[i];
        EXPECT_EQ(context->findMethod(method.english), i);
        EXPECT_EQ(context->findMethod(method.russian), i);
        EXPECT_EQ(context->hasRetVal(i), method.returns);
        wstring defaults;
        for (int param = 0; param < context->getNParams(i); ++param) {
            GenericValue value;
            defaults += !context->getParamDefValue(i, param, &value) ? u'-'
                        : value.isUndefined()                        ? u'u'
                        : value.isFalse()                            ? u'f'
                        : value.asString()->empty()                  ? u'e'
                                                                     : u't';
        }
        EXPECT_EQ(defaults, method.defaults) << i;
    }
    const GenericValue item = call(list, u"Add");
    EXPECT_TRUE(property(item, u"Значение").isUndefined());
    EXPECT_TRUE(property(item, u"Представление").equals(u""));
    EXPECT_TRUE(property(item, u"Пометка").isFalse());
    EXPECT_TRUE(property(item, u"Картинка").isUndefined());
    EXPECT_EQ(item.query<IContext_>()->findProp(u"picture"), 3);
    call(list, u"Clear");
    EXPECT_TRUE(call(list, u"Count").equals(0));
}

TEST_F(Lists, BehaveAsAVectorOfItems) {
    std::mt19937 random(3);
    const auto below = [&](std::size_t n) { return static_cast<std::size_t>(random() % n); };
    const GenericValue list = make(u"ValueList");
    std::vector<GenericValue> items; // the script's objects, which know their content
    const auto index_or_item = [&](std::size_t i) { return below(2) == 0 ? GenericValue(i) : items[i]; };
    const auto at = [&](std::size_t i) { return items.begin() + static_cast<std::ptrdiff_t>(i); };
    for (int round = 0; round < 6000; ++round) {
        const std::size_t count = items.size();
        const int action = count < 2 || count < below(1500) ? 0 : static_cast<int>(below(12));
        const GenericValue value = below(2) == 0 ? GenericValue(Numeric(static_cast<int>(below(9)) - 4) / 2)
                                                 : GenericValue(u"v" + string_intto(below(9)));
        if (action <= 2) {
            const std::size_t place = below(2) == 0 ? count : below(count + 1);
            const GenericValue text = wstring(1, static_cast<wchar>(u'a' + below(5)));
            items.insert(at(place), call(list, u"Insert", {place, value, text, below(2) == 0}));
        } else if (action <= 4) {
            const std::size_t place = below(3) == 0 ? 0 : below(count);
            call(list, u"Delete", {index_or_item(place)});
            EXPECT_EQ(failure([&] { call(list, u"IndexOf", {items[place]}); }), value_mismatch(0));
            items.erase(at(place));
        } else if (action <= 6) {
            const std::size_t from = below(count);
            const std::size_t to = below(count);
            call(list, u"Move",
                 {index_or_item(from), static_cast<std::int64_t>(to) - static_cast<std::int64_t>(from)});
            const GenericValue moved = items[from];
            items.erase(at(from));
            items.insert(at(to), moved);
        } else if (action == 7) {
            const auto found = std::find_if(items.begin(), items.end(), [&](const Value& item) {
                return property(item, u"Value").equals(value);
            });
            ASSERT_TRUE(
                call(list, u"FindByValue", {value}).equals(found != items.end() ? *found : GenericValue()));
        } else if (action == 8 && below(20) == 0) {
            sort(list, items, below(2) == 0, below(2) == 0);
        } else if (action == 9 && below(100) == 0) {
            call(list, u"FillChecks", {true});
            for (const GenericValue& item : items)
                ASSERT_TRUE(property(item, u"Check").isTrue());
        }
        if (round % 50 == 0) {
            ASSERT_EQ(walk(list), items);
            for (std::size_t i = 0; i < items.size(); ++i) {
                ASSERT_TRUE(call(list, u"IndexOf", {items[i]}).equals(i));
                ASSERT_TRUE(call(list, u"Get", {i}).equals(items[i]));
            }
        }
    }
}

TEST_F(Lists, UnloadLoadAndCopyValues) {
    const GenericValue list = list_of({3, u"x"});
    assign(call(list, u"Get", {0}), u"Presentation", u"three");
    call(list, u"FillChecks", {true});
    const GenericValue copy = call(list, u"Copy");
    EXPECT_EQ(content(copy), u"3:three+;x:+;");
    assign(call(copy, u"Get", {0}), u"Value", 4);
    EXPECT_EQ(content(list), u"3:three+;x:+;");
    const GenericValue item = call(list, u"Get", {1});
    call(list, u"LoadValues", {call(copy, u"UnloadValues")});
    EXPECT_EQ(content(list), u"4:;x:;") << "what is loaded replaces what was there";
    assign(item, u"Value", 7);
    EXPECT_TRUE(property(item, u"Value").equals(7)) << "an item lives on by itself";
}

TEST_F(Lists, HoldValuesToTheirType) {
    const GenericValue list = list_of({u"12", u" "});
    const GenericValue first = call(list, u"Get", {0});
    assign(list, u"ТипЗначения", make(u"TypeDescription", {u"Number"}));
    EXPECT_EQ(content(list), u"12:;0:;");
    assign(first, u"Value", u"13");
    call(list, u"Add", {true});
    call(list, u"Insert", {0, u"5"});
    EXPECT_EQ(content(list), u"5:;13:;0:;0:;");
    EXPECT_TRUE(property(call(list, u"Copy"), u"ValueType").equals(property(list, u"ValueType")));
    assign(list, u"ValueType", GenericValue());
    assign(first, u"Value", u"text");
    EXPECT_EQ(content(list), u"5:;text:;0:;0:;");
}

TEST_F(Lists, RefuseWhatIsWrongAndStayAsTheyAre) {
    const GenericValue list = list_of({1, 2});
    const GenericValue stranger = call(list_of({1}), u"Get", {0});
    const wstring bad_offset = message_text("IDS_COLLECTION_BADOFFSET");
    const wstring before = text(list);
    const struct {
        GenericValue object;
        const wchar* method;
        Arguments arguments;
        wstring message;
    } wrong[] = {
        {list, u"Get", {2}, bad_index()},
        {list, u"Get", {list}, type_mismatch(0)},
        {list, u"Insert", {3}, bad_index()},
        {list, u"Insert", {-1}, bad_index()},
        {list, u"Insert", {0, 1, 5}, type_mismatch(2)},
        {list, u"Insert", {0, 1, u"", 5}, type_mismatch(3)},
        {list, u"Add", {1, 5}, type_mismatch(1)},
        {list, u"Add", {1, u"", u"True"}, type_mismatch(2)},
        {list, u"Delete", {-1}, bad_index()},
        {list, u"Delete", {stranger}, value_mismatch(0)},
        {list, u"Delete", {u"x"}, type_mismatch(0)},
        {list, u"Move", {0, 2}, bad_offset},
        {list, u"Move", {1, -2}, bad_offset},
        {list, u"Move", {0, 0.5 - 1e30}, bad_offset},
        {list, u"Move", {2, 0}, bad_index()},
        {list, u"Move", {0, true}, type_mismatch(1)},
        {list, u"IndexOf", {0}, type_mismatch(0)},
        {list, u"IndexOf", {stranger}, value_mismatch(0)},
        {list, u"LoadValues", {list}, type_mismatch(0)},
        {list, u"SortByValue", {u"Asc"}, type_mismatch(0)},
        {list, u"SortByPresentation", {1}, type_mismatch(0)},
        {list, u"FillChecks", {1}, type_mismatch(0)},
        {list, u"ChooseItem", {5}, type_mismatch(0)},
        {list, u"ChooseItem", {u"", stranger}, value_mismatch(1)},
        {list, u"ChooseItem", {u"", 0}, type_mismatch(1)},
        {list, u"CheckItems", {5}, type_mismatch(0)},
    };
    for (auto call_wrong : wrong) {
        EXPECT_EQ(failure([&] { call(call_wrong.object, call_wrong.method, call_wrong.arguments); }),
                  call_wrong.message)
            << to_utf8(call_wrong.method);
    }
    EXPECT_EQ(failure([&] { assign(call(list, u"Get", {0}), u"Check", 1); }), type_mismatch(0));
    EXPECT_EQ(failure([&] { assign(call(list, u"Get", {0}), u"Presentation", 1); }), type_mismatch(0));
    EXPECT_EQ(failure([&] { assign(list, u"ValueType", 1); }), type_mismatch(0));
    EXPECT_EQ(text(list), before);
}

TEST_F(Lists, NeverHoldThemselves) {
    const GenericValue list = list_of({1});
    const GenericValue inner = list_of({1});
    const GenericValue outer = list_of({inner});
    const GenericValue pictured = list_of({1});
    const GenericValue framed = list_of({});
    call(framed, u"Add", {1, u"", false, pictured});
    const GenericValue array = make(u"Array");
    call(array, u"Add", {outer});
    const struct {
        GenericValue object;
        const wchar* method;
        Arguments arguments;
    } wrong[] = {
        {list, u"Add", {list}},
        {list, u"Add", {1, u"", false, list}},
        {inner, u"Add", {outer}},
        {inner, u"LoadValues", {array}},
        {inner, u"Insert", {0, 1, u"", false, outer}},
        {pictured, u"Add", {framed}},
    };
    const wstring cycling = message_text("IDS_VL_CYCLING");
    for (auto call_wrong : wrong) {
        EXPECT_EQ(failure([&] { call(call_wrong.object, call_wrong.method, call_wrong.arguments); }), cycling)
            << to_utf8(call_wrong.method) << call_wrong.arguments.size();
    }
    for (const wchar* name : {u"Value", u"Picture"})
        EXPECT_EQ(failure([&] { assign(call(inner, u"Get", {0}), name, outer); }), cycling);
    EXPECT_TRUE(call(outer, u"Add", {inner}).isObject()) << "the same list twice is no cycle";
    EXPECT_TRUE(call(outer, u"Add", {1, u"", false, inner}).isObject());
}

} // namespace
