// SPDX-License-Identifier: Apache-2.0
// Concerns: the method tables to the letter; rows, columns and indexes as scripts hold them, alive after they
// are gone; the chooser.
#include "tests/tables/table_fixture.h"

#include <core/runtime/process.h>

namespace {

using namespace script;

class TableMembers : public TableTest {};

struct Signature {
    const wchar* english;
    const wchar* russian;
    int params;
    bool returns;
    const wchar* defaults; ///< a letter a parameter: "-" none, "u" Undefined, "f" False, "t" a text
};

/// The first methods of an object; further ones come behind them and have tests of their own.
void expect_methods(const Value& object, std::span<const Signature> expected) {
    const auto context = object.query<IContext_>();
    ASSERT_GE(context->getNMethods(), static_cast<int>(expected.size()));
    for (int i = 0; i < static_cast<int>(expected.size()); ++i) {
        const Signature& method = expected[static_cast<std::size_t>(i)];
        EXPECT_EQ(wstring(context->getMethodName(i, kEnglish)), method.english);
        EXPECT_EQ(wstring(context->getMethodName(i, kRussian)), method.russian);
        EXPECT_EQ(context->findMethod(method.english), i);
        EXPECT_EQ(context->findMethod(method.russian), i);
        EXPECT_EQ(context->hasRetVal(i), method.returns);
        wstring defaults;
        for (int param = 0; param < context->getNParams(i); ++param) {
            GenericValue value;
            defaults += !context->getParamDefValue(i, param, &value) ? u'-'
                        : value.isUndefined()                        ? u'u'
                        : value.isFalse()                            ? u'f'
                                                                     : u't';
        }
        EXPECT_EQ(defaults, method.defaults) << i;
        EXPECT_EQ(context->getNParams(i), method.params) << i;
    }
}

TEST_F(TableMembers, AndTreesHaveTheirMethodsByNumberAndName) {
    Signature methods[] = {
        {u"Count", u"Количество", 0, true, u""},
        {u"IndexOf", u"Индекс", 1, true, u"-"},
        {u"Add", u"Добавить", 0, true, u""},
        {u"Insert", u"Вставить", 1, true, u"-"},
        {u"Delete", u"Удалить", 1, false, u"-"},
        {u"Clear", u"Очистить", 0, false, u""},
        {u"Move", u"Сдвинуть", 2, false, u"--"},
        {u"Find", u"Найти", 2, true, u"-u"},
        {u"FindRows", u"НайтиСтроки", 1, true, u"-"},
        {u"Total", u"Итог", 1, true, u"-"},
        {u"Sort", u"Сортировать", 2, false, u"-u"},
        {u"LoadColumn", u"ЗагрузитьКолонку", 2, false, u"--"},
        {u"UnloadColumn", u"ВыгрузитьКолонку", 1, true, u"-"},
        {u"Get", u"Получить", 1, true, u"-"},
        {u"Copy", u"Скопировать", 2, true, u"uu"},
        {u"CopyColumns", u"СкопироватьКолонки", 1, true, u"u"},
        {u"GroupBy", u"Свернуть", 2, false, u"-u"},
        {u"FillValues", u"ЗаполнитьЗначения", 2, false, u"-u"},
        {u"ChooseRow", u"ВыбратьСтроку", 2, true, u"uu"},
    };
    const GenericValue table = make(u"ТаблицаЗначений");
    expect_methods(table, methods);
    methods[7] = {u"Find", u"Найти", 3, true, u"-uf"};
    methods[8] = {u"FindRows", u"НайтиСтроки", 2, true, u"-f"};
    methods[9] = {u"Total", u"Итог", 2, true, u"-f"};
    methods[10] = {u"Sort", u"Сортировать", 3, false, u"-fu"};
    expect_methods(property(make(u"ДеревоЗначений"), u"Строки"), std::span(methods).first(14));
    const auto context = table.query<IContext_>();
    EXPECT_EQ(context->findProp(u"Колонки"), 0);
    EXPECT_EQ(context->findProp(u"indexes"), 1);
    EXPECT_EQ(table.presentation(), u"Value table");
    EXPECT_EQ(context->findProp(nullptr), -1);
}

TEST_F(TableMembers, SayOfWhichTypesTheirPartsAre) {
    const GenericValue table = table_of(u"A,B", {{1, u"x"}});
    const auto ext = table.query<IContextDefExt>();
    ContextValueInfo info;
    EXPECT_TRUE(ext->isCollection());
    ASSERT_TRUE(ext->getCollectionItemInfo(info));
    const GenericValue row = call(table, u"Get", {0});
    EXPECT_TRUE(info.types.containsType(row.type().id()));
    ASSERT_TRUE(ext->getMethodReturnInfo(table.query<IContext_>()->findMethod(u"Count"), info));
    EXPECT_TRUE(info.types.containsType(kNumberType));
    EXPECT_FALSE(ext->getMethodReturnInfo(table.query<IContext_>()->findMethod(u"Find"), info));
    property(property(table, u"Columns"), u"B")
        .query<IContext_>()
        ->setPropVal(1, create_type_description(TypeDomain(kStringType)));
    ASSERT_TRUE(row.query<IContextDefExt>()->getPropInfo(1, info));
    EXPECT_EQ(info.types, TypeDomain(kStringType));
    EXPECT_FALSE(make(u"ValueTree").query<IContextDefExt>()->isCollection());
    EXPECT_TRUE(property(make(u"ValueTree"), u"Rows").query<IContextDefExt>()->isCollection());
}

TEST_F(TableMembers, AWalkEndsWhereTheTableIsEmptied) {
    const GenericValue table = table_of(u"A", {{1}, {2}, {3}});
    const auto walk = table.query<IValueCollection>()->enumerate();
    GenericValue row;
    ASSERT_TRUE(walk->next(row));
    for (int i = 0; i < 3; ++i)
        call(table, u"Delete", {0});
    for (int i = 0; i < 3; ++i)
        call(table, u"Add");
    EXPECT_FALSE(walk->next(row));
}

TEST_F(TableMembers, RowsShowTheColumnsOfTheMoment) {
    const GenericValue table = table_of(u"A,B", {{1, u"x"}, {2, u"y"}});
    const GenericValue columns = property(table, u"Columns");
    const GenericValue row = call(table, u"Get", {1});
    const auto context = row.query<IContext_>();
    EXPECT_EQ(context->getNProps(), 2);
    EXPECT_EQ(wstring(context->getPropName(0, kRussian)), u"A");
    EXPECT_EQ(context->getPropName(0, 2), nullptr);
    EXPECT_EQ(context->getPropName(2, kEnglish), nullptr);
    EXPECT_TRUE(context->isPropReadable(1) && context->isPropWritable(1));
    const auto named = columns.query<IContext_>(); // Columns.B is the column itself
    EXPECT_TRUE(named->isPropReadable(1) && !named->isPropWritable(1));
    ASSERT_EQ(walk(columns).size(), 2U);
    EXPECT_EQ(walk(columns)[1].object(), property(columns, u"B").object());
    EXPECT_EQ(call(row, u"Owner").object(), table.object());
    EXPECT_EQ(call(row, u"Get", {u"b"}).presentation(), u"y");

    const GenericValue a = property(columns, u"A");
    a.query<IContext_>()->setPropVal(0, u"Номер");
    a.query<IContext_>()->setPropVal(0, u"номер"); // its own name, written otherwise
    EXPECT_EQ(wstring(context->getPropName(0, kRussian)), u"номер");
    EXPECT_TRUE(property(row, u"НОМЕР").equals(2));
    EXPECT_EQ(context->findProp(u"A"), -1);
    call(columns, u"Insert", {0, u"First"});
    EXPECT_EQ(context->findProp(u"номер"), 1);
    EXPECT_TRUE(property(row, u"First").isUndefined());
    call(columns, u"Move", {a, 1});
    EXPECT_EQ(context->findProp(u"номер"), 2);
    EXPECT_TRUE(call(row, u"Get", {a}).equals(2)) << "a column is an argument, too";
    EXPECT_TRUE(call(columns, u"IndexOf", {a}).equals(2));
    call(columns, u"Delete", {u"First"});
    EXPECT_EQ(content(table), u"x,1;y,2;");
    EXPECT_TRUE(call(columns, u"Find", {u"b"}).equals(call(columns, u"Get", {0})));
    EXPECT_TRUE(call(columns, u"Find", {u"nothing"}).isUndefined());
    call(columns, u"Clear");
    EXPECT_EQ(context->getNProps(), 0);
    EXPECT_TRUE(call(table, u"Count").equals(2));
    EXPECT_EQ(failure([&] { return property(a, u"Name"); }), unknown_column(u"номер"));
}

TEST_F(TableMembers, ObjectsOutliveWhatTheyStandFor) {
    GenericValue table = table_of(u"A", {{1}, {2}});
    const GenericValue first = call(table, u"Get", {0});
    EXPECT_EQ(first.object(), call(table, u"Get", {0}).object()) << "a row is one object";
    const GenericValue index = call(property(table, u"Indexes"), u"Add", {u"A"});
    call(table, u"Delete", {first});
    EXPECT_EQ(first.query<IContext_>()->findProp(u"A"), 0);
    EXPECT_EQ(failure([&] { return property(first, u"A"); }), unknown_row());
    EXPECT_EQ(failure([&] { first.query<IContext_>()->setPropVal(0, 5); }), unknown_row());
    EXPECT_EQ(failure([&] { call(first, u"Owner"); }), unknown_row());
    EXPECT_EQ(failure([&] { return walk(first); }), unknown_row());
    call(table, u"Add");
    EXPECT_EQ(failure([&] { return property(first, u"A"); }), unknown_row())
        << "though its place is used again";

    const GenericValue columns = property(table, u"Columns");
    const GenericValue second = call(table, u"Get", {0});
    table = {};
    EXPECT_TRUE(property(second, u"A").equals(2)) << "a row keeps its table";
    EXPECT_TRUE(call(columns, u"Count").equals(1)) << "so do its columns";
    call(columns, u"Delete", {u"A"});
    EXPECT_TRUE(call(index, u"Count").equals(0)) << "its index went with the column";
}

/// Chooses the second of what there is.
class SecondChooser : public IChooser {
  public:
    using Interfaces = InterfaceList<IChooser>;
    static inline wstring title;

    GenericValue chooseRow(const Value& rows, const wstring& t, const Value&) override {
        title = t;
        return rows.query<IValueTable>()->row(1);
    }
    GenericValue chooseItem(const Value& list, const wstring& t, const Value&) override {
        title = t;
        return list.query<IValueList>()->item(1);
    }
    bool checkItems(const Value& list, const wstring& t) override {
        title = t;
        list.query<IValueList>()->setCheck(1, true);
        return true;
    }
};

TEST_F(TableMembers, LetTheHostChoose) {
    const GenericValue table = table_of(u"A", {{1}, {2}});
    const GenericValue list = make(u"ValueList");
    for (const int value : {1, 2})
        call(list, u"Add", {value});
    EXPECT_TRUE(call(table, u"ChooseRow").isUndefined());
    EXPECT_TRUE(call(list, u"ChooseItem").isUndefined());
    EXPECT_TRUE(call(list, u"CheckItems").isFalse());
    EXPECT_FALSE(table.query<IValueTable>()->chooseRow());
    EXPECT_FALSE(list.query<IValueList>()->choose(u""));

    static constexpr GUID kChooser = "b7432fec-851f-4b4e-8ec9-3ded5e42ed9f"_guid;
    const ClassRecord record = detail::class_record<SecondChooser>(kChooser, "SecondChooser", false, nullptr);
    InterfacePtr<IClassFactory> factory;
    void* made = nullptr;
    ASSERT_EQ(create_class_factory(record, IClassFactory::IID, &made), kOk);
    factory = InterfacePtr<IClassFactory>::adopt(static_cast<IClassFactory*>(made));
    process_.get()->registerClass(kChooser, factory.get(), 0, 0);
    process_.get()->registerService(IChooser::IID, kChooser);
    EXPECT_TRUE(property(call(table, u"ChooseRow", {u"Which?"}), u"A").equals(2));
    EXPECT_EQ(SecondChooser::title, u"Which?");
    EXPECT_TRUE(property(call(list, u"ChooseItem"), u"Value").equals(2));
    EXPECT_EQ(SecondChooser::title, message_text("IDS_VLUI_FORM_TTL"));
    EXPECT_TRUE(call(list, u"CheckItems").isTrue());
    EXPECT_EQ(SecondChooser::title, message_text("IDS_VLUI_FORM_TTL_CH"));
    EXPECT_TRUE(property(call(list, u"Get", {1}), u"Check").isTrue());
    EXPECT_EQ(table.query<IValueTable>()->chooseRow(u"Now?", 0), 1U);
    EXPECT_EQ(SecondChooser::title, u"Now?");
    EXPECT_EQ(list.query<IValueList>()->choose(u"And now?", 0), 1U);
    EXPECT_EQ(SecondChooser::title, u"And now?");
    EXPECT_TRUE(list.query<IValueList>()->chooseChecks(u""));
}

} // namespace
