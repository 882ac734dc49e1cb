// SPDX-License-Identifier: Apache-2.0
// Concerns: the method numbers and names that compiled scripts rely on; ids that stand in stored data; no id
// and no name declared twice anywhere.
#include "tests/collections/script.h"

#include <core/context/context_def_ext.h>
#include <core/runtime/errors.h>
#include <core/runtime/module.h>

#include <set>

namespace {

using namespace script;

class Definitions : public script::Test {};

struct Row {
    Term names;
    int params;
    bool returns;
    int optional = 0;
};

const Row kArray[] = {
    {{u"Count", u"Количество"}, 0, true}, {{u"UBound", u"ВГраница"}, 0, true},
    {{u"Insert", u"Вставить"}, 2, false}, {{u"Add", u"Добавить"}, 1, false},
    {{u"Delete", u"Удалить"}, 1, false},  {{u"Clear", u"Очистить"}, 0, false},
    {{u"Get", u"Получить"}, 1, true},     {{u"Set", u"Установить"}, 2, false},
    {{u"Find", u"Найти"}, 1, true},
};
const Row kFixedArray[] = {{{u"Count", u"Количество"}, 0, true},
                           {{u"UBound", u"ВГраница"}, 0, true},
                           {{u"Get", u"Получить"}, 1, true},
                           {{u"Find", u"Найти"}, 1, true}};
const Row kMap[] = {{{u"Count", u"Количество"}, 0, true},
                    {{u"Insert", u"Вставить"}, 2, false},
                    {{u"Delete", u"Удалить"}, 1, false},
                    {{u"Clear", u"Очистить"}, 0, false},
                    {{u"Get", u"Получить"}, 1, true}};
const Row kStructure[] = {{{u"Count", u"Количество"}, 0, true},
                          {{u"Insert", u"Вставить"}, 2, false, 1},
                          {{u"Delete", u"Удалить"}, 1, false},
                          {{u"Clear", u"Очистить"}, 0, false},
                          {{u"Property", u"Свойство"}, 2, true, 1}};

TEST_F(Definitions, MethodsHaveTheirNumbers) {
    const struct {
        const char* type;
        const char* clsid;
        Term names;
        std::span<const Row> rows;
    } cases[] = {
        {"51e7a0d2-530b-11d4-b98a-008048da3034",
         "1bb40b60-bbfa-11d5-a3c1-0050bae0a776",
         {u"Array", u"Массив"},
         kArray},
        {"4500381b-db30-4a10-9db4-990038032acf",
         "96153e21-444d-4b23-91a9-25a2483f7e45",
         {u"FixedArray", u"ФиксированныйМассив"},
         kFixedArray},
        {"3d48feae-a9c6-4c5a-a099-9eb6477630c6",
         "ca8cb955-479c-4fae-819c-d7cd6b78d678",
         {u"Map", u"Соответствие"},
         kMap},
        {"4238019d-7e49-4fc9-91db-b6b951d5cf8e",
         "c6bdae87-2280-4624-af03-2c1b4371b2e4",
         {u"Structure", u"Структура"},
         kStructure},
        {"850afa6f-5244-482f-9729-d78ec65ff607",
         "556b08ab-8ef5-4635-9698-c19f7e52aaf3",
         {u"KeyAndValue", u"КлючИЗначение"},
         {}},
    };
    for (const auto& c : cases) {
        const Type type(c.names[kRussian]);
        EXPECT_EQ(type, Type(c.names[kEnglish]));
        EXPECT_EQ(to_string(type.id()), from_utf8(c.type));
        EXPECT_EQ(to_string(type.get()->valueClass()), from_utf8(c.clsid));
        const auto context = create_object<IContext_>(type.get()->valueClass());
        ASSERT_EQ(context->getNMethods(), static_cast<int>(c.rows.size()));
        int method = 0;
        for (const Row& row : c.rows) {
            for (const int alias : {kEnglish, kRussian}) {
                EXPECT_EQ(wstring_view(context->getMethodName(method, alias)), row.names[alias]);
                EXPECT_EQ(context->findMethod(row.names[alias]), method);
            }
            EXPECT_EQ(context->getNParams(method), row.params);
            EXPECT_EQ(context->hasRetVal(method), row.returns);
            for (int param = 0; param < row.params; ++param) {
                GenericValue value(5);
                const bool optional = param >= row.params - row.optional;
                EXPECT_EQ(context->getParamDefValue(method, param, &value), optional);
                EXPECT_EQ(value.isUndefined(), optional);
                EXPECT_EQ(context->isParamOut(method, param), &row == &kStructure[4] && param == 1);
            }
            ++method;
        }
    }
}

TEST_F(Definitions, PairsAreSeenAndNeverMade) {
    const auto pair = create_object<IContext_>(kValuePairClass);
    ASSERT_EQ(pair->getNProps(), 2);
    EXPECT_EQ(pair->findProp(u"КЛЮЧ"), 0);
    EXPECT_EQ(pair->findProp(u"value"), 1);
    GenericValue item;
    EXPECT_FALSE(create_object<IValueEnum>("0342ac9d-ee78-4f88-847f-a3c8b97fa68d"_guid)->next(item));
    EXPECT_NE(failure<CtorException>([] { make(u"KeyAndValue"); }), u"") << "only walks make pairs";
}

TEST_F(Definitions, TellWhatTheyHoldAndReturn) {
    const std::pair<GUID, bool> classes[] = {{kValueArrayClass, false},
                                             {kFixedValueArrayClass, false},
                                             {kValueMapClass, true},
                                             {kValueStructureClass, true}};
    for (const auto& [clsid, pairs] : classes) {
        const auto description = create_object<IContextDefExt>(clsid);
        EXPECT_TRUE(description->isCollection());
        ContextValueInfo item;
        EXPECT_EQ(description->getCollectionItemInfo(item), pairs);
        EXPECT_TRUE(!pairs || item.types.containsType(kValuePairType));
        EXPECT_EQ(description->IContextDefExt_mapMethodTypeProvider(0), Type(Type::number).get());
        EXPECT_FALSE(description->IContextDefExt_haveMethodReturnTypeInfo(3));
    }
    EXPECT_FALSE(create_object<IContextDefExt>(kValuePairClass)->isCollection());
}

TEST_F(Definitions, NoIdAndNoTypeNameIsDeclaredTwice) {
    std::set<wstring> ids;
    std::set<wstring> names;
    for (const SCOM_Module* module : registered_modules()) {
        for (const ClassRecord& record : module->classTable()) {
            if (record.clsid == nullptr)
                continue;
            EXPECT_TRUE(ids.insert(to_string(*record.clsid)).second) << record.name;
            if (record.scriptClass == 0)
                continue;
            if (const auto type = create_object<IType>(*record.clsid)) {
                EXPECT_EQ(type->id(), *record.clsid);
                EXPECT_FALSE(type->presentation().starts_with(u"IDS_"));
            }
        }
    }
    for (const IType* type : get_service<ITypeValueService>()->types()) {
        const wstring english = fold_case(wstring(type->name(kEnglish)));
        const wstring russian = fold_case(wstring(type->name(kRussian)));
        EXPECT_TRUE(names.insert(english).second) << to_utf8(english);
        EXPECT_TRUE(english == russian || names.insert(russian).second) << to_utf8(russian);
    }
}

/// Every object that a script can meet: both names of every property and method lead back to its number,
/// which no other name equal in another case would.
TEST_F(Definitions, NoTwoNamesOfAnObjectAreEqual) {
    int objects = 0;
    for (const SCOM_Module* module : registered_modules()) {
        for (const ClassRecord& record : module->classTable()) {
            const auto def = record.clsid != nullptr ? create_object<IContextDef>(*record.clsid) : nullptr;
            if (!def)
                continue;
            ++objects;
            for (const int alias : {kEnglish, kRussian}) {
                for (int prop = 0; prop < def->getNProps(); ++prop)
                    EXPECT_EQ(def->findProp(def->getPropName(prop, alias)), prop) << record.name;
                for (int method = 0; method < def->getNMethods(); ++method)
                    EXPECT_EQ(def->findMethod(def->getMethodName(method, alias)), method) << record.name;
            }
        }
    }
    EXPECT_GE(objects, 7);
}

} // namespace
