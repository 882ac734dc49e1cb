// SPDX-License-Identifier: Apache-2.0
// Concerns: the method tables to the letter; rows and columns as scripts hold them, alive after they are
// gone; the grammar of column lists; every failure, with the table unchanged; grouping, copies, column types;
// the chooser.
#include "tests/tables/table_model.h"

#include <functional>
#include <map>

namespace {

using namespace script;

class Tables : public script::Test {
  protected:
    /// A table of columns with values row by row.
    static GenericValue table_of(wstring_view columns, std::vector<Arguments> rows) {
        const GenericValue table = make(u"ValueTable");
        for (const wstring_view name : string_tokenize(columns, u", "))
            call(property(table, u"Columns"), u"Add", {Value(name)});
        for (const Arguments& cells : rows) {
            const GenericValue row = call(table, u"Add");
            for (std::size_t i = 0; i < cells.size(); ++i)
                call(row, u"Set", {i, cells[i]});
        }
        return table;
    }
    /// All rows as text: cells with "," between them, rows with ";".
    static wstring content(const Value& table) {
        wstring text;
        for (const GenericValue& row : walk(table)) {
            for (const GenericValue& cell : walk(row))
                text += cell.presentation() + u",";
            text.back() = u';';
        }
        return text;
    }
    static wstring after_sort(wstring_view columns) {
        const GenericValue table = table_of(u"A,B", {{2, u"x"}, {1, u"y"}, {2, u"a"}, {3, u"b"}});
        call(table, u"Sort", {Value(columns)});
        return content(table);
    }
    static wstring unknown_row() { return message_text("IDS_VT_UNKNOWN_ROW_ERROR"); }
    static wstring unknown_column(const wchar* name) {
        return message_text("IDS_VT_UNKNOWN_COLUMN_ERROR", {name});
    }
    static wstring twice(const wchar* name) { return message_text("IDS_VT_COLUMNS_NOT_UNIQUE", {name}); }
    static GenericValue description(wstring_view types) { return make(u"TypeDescription", {Value(types)}); }
};

struct Signature {
    const wchar* english;
    const wchar* russian;
    int params;
    bool returns;
    const wchar* defaults; ///< a letter a parameter: "-" none, "u" Undefined, "f" False, "t" a text
};

void expect_methods(const Value& object, std::span<const Signature> expected) {
    const auto context = object.query<IContext_>();
    ASSERT_EQ(context->getNMethods(), static_cast<int>(expected.size()));
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

TEST_F(Tables, AndTreesHaveTheirMethodsByNumberAndName) {
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

TEST_F(Tables, SayOfWhichTypesTheirPartsAre) {
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

TEST_F(Tables, RowsShowTheColumnsOfTheMoment) {
    const GenericValue table = table_of(u"A,B", {{1, u"x"}, {2, u"y"}});
    const GenericValue columns = property(table, u"Columns");
    const GenericValue row = call(table, u"Get", {1});
    const auto context = row.query<IContext_>();
    EXPECT_EQ(context->getNProps(), 2);
    EXPECT_EQ(wstring(context->getPropName(0, kRussian)), u"A");
    EXPECT_EQ(context->getPropName(0, 2), nullptr);
    EXPECT_EQ(context->getPropName(2, kEnglish), nullptr);
    EXPECT_EQ(call(row, u"Owner").object(), table.object());
    EXPECT_EQ(call(row, u"Get", {u"b"}).presentation(), u"y");

    const GenericValue a = property(columns, u"A");
    a.query<IContext_>()->setPropVal(0, u"Номер");
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
    EXPECT_EQ(failure([&] { return property(a, u"Name"); }), unknown_column(u"Value table column"));
}

TEST_F(Tables, ObjectsOutliveWhatTheyStandFor) {
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

TEST_F(Tables, SortListsHaveTheirGrammar) {
    const wstring ascending = after_sort(u"A,B");
    EXPECT_EQ(ascending, u"1,y;2,a;2,x;3,b;");
    for (const wchar* same : {u" A , B ", u"a asc,b возр", u"A Asc, B", u"a   ВОЗР,b ASC"})
        EXPECT_EQ(after_sort(same), ascending) << to_utf8(same);
    EXPECT_EQ(after_sort(u"A Desc, B убыв"), u"3,b;2,x;2,a;1,y;");
    EXPECT_EQ(after_sort(u"B"), u"2,a;3,b;2,x;1,y;");
    for (const wchar* wrong : {u"A Up", u"A Asc B", u"", u"A,", u",", u"A,,B"})
        EXPECT_EQ(failure([&] { after_sort(wrong); }), value_mismatch(0)) << to_utf8(wrong);
    EXPECT_EQ(failure([&] { after_sort(u"A, C"); }), unknown_column(u"C"));
    EXPECT_EQ(failure([&] { after_sort(u"A, a Desc"); }), twice(u"a"));
    EXPECT_EQ(failure([&] { after_sort(u"C, A Up"); }), value_mismatch(0))
        << "first of all it must be a list";
}

/// Orders numbers by their last digit, and may do harm on the way.
class LastDigit : public IValueImpl, public ICompareValues {
  public:
    using Interfaces = InterfaceList<IValue, ICompareValues>;

    explicit LastDigit(std::function<int(int)> harm = [](int order) { return order; })
        : harm_(std::move(harm)) {}
    IType* getType() const noexcept override { return Type(Type::undefined).get(); }
    int compare(const Value& a, const Value& b) override {
        return harm_(static_cast<int>(*a.asNumeric()) % 10 - static_cast<int>(*b.asNumeric()) % 10);
    }

  private:
    std::function<int(int)> harm_;
};

TEST_F(Tables, AnObjectMayCompareAndDoNoHarm) {
    std::vector<Arguments> rows;
    for (int i = 0; i < 100; ++i)
        rows.push_back({i * 37 % 100});
    const GenericValue table = table_of(u"A", rows);
    const wstring before = content(table);
    const auto sort_with = [&](std::function<int(int)> harm) {
        call(table, u"Sort", {u"A", GenericValue(make_object<LastDigit>(std::move(harm)))});
    };
    EXPECT_EQ(
        failure([&] { sort_with([](int) -> int { throw_error<ContextException>("IDS_INDEX_OFFBOUND"); }); }),
        bad_index());
    EXPECT_EQ(content(table), before);
    bool harmed = false;
    const auto delete_a_row = [&](int order) {
        if (!std::exchange(harmed, true))
            call(table, u"Delete", {99});
        return order;
    };
    EXPECT_EQ(failure([&] { sort_with(delete_a_row); }), message_text("IDS_VT_CHANGED_WHILE_SORTING"));
    EXPECT_TRUE(call(table, u"Count").equals(99));
    int calls = 0;
    for (const int always : {-1, 0, 1})
        sort_with([&](int) { return ++calls, always; });
    EXPECT_LT(calls, 3 * 99 * 40) << "an inconsistent order costs no more than a consistent one";
    sort_with([](int order) { return order; });
    const auto sorted = walk(call(table, u"UnloadColumn", {u"A"}));
    EXPECT_TRUE(std::is_sorted(sorted.begin(), sorted.end(), [](const Value& a, const Value& b) {
        return *a.asNumeric() % 10 < *b.asNumeric() % 10;
    }));
    EXPECT_EQ(failure([&] { call(table, u"Sort", {u"A", 1}); }), type_mismatch(1));
}

/// Decides the order while it is asked, always so that a sort by partitions learns
/// least (McIlroy's adversary).
class Adversary : public IValueImpl, public ICompareValues {
  public:
    using Interfaces = InterfaceList<IValue, ICompareValues>;

    Adversary(std::vector<int>& order, std::size_t& calls) noexcept : order_(order), calls_(calls) {}
    IType* getType() const noexcept override { return Type(Type::undefined).get(); }
    int compare(const Value& a, const Value& b) override {
        ++calls_;
        const auto x = static_cast<std::size_t>(*a.asSmallWhole());
        const auto y = static_cast<std::size_t>(*b.asSmallWhole());
        const int open = static_cast<int>(order_.size());
        if (order_[x] == open && order_[y] == open)
            order_[x == pivot_ ? x : y] = decided_++;
        if (order_[x] == open)
            pivot_ = x;
        else if (order_[y] == open)
            pivot_ = y;
        return order_[x] - order_[y];
    }

  private:
    std::vector<int>& order_; // by number; all open at first, which is their count
    std::size_t& calls_;
    std::size_t pivot_ = 0;
    int decided_ = 0;
};

TEST_F(Tables, AreSortedInTimeWhateverTheOrder) {
    constexpr std::size_t kRows = 1 << 12;
    const GenericValue table = table_of(u"A", {});
    const auto rows = table.query<IValueTable>();
    for (std::size_t i = 0; i < kRows; ++i) {
        const Value number(i);
        rows->appendRow(std::span(&number, 1));
    }
    std::vector<int> order(kRows, static_cast<int>(kRows));
    std::size_t calls = 0;
    call(table, u"Sort", {u"A", GenericValue(make_object<Adversary>(order, calls))});
    EXPECT_LT(calls, 5 * kRows * 12);
    for (std::size_t i = 1; i < kRows; ++i)
        ASSERT_LE(order[static_cast<std::size_t>(*rows->get(i - 1, 0).asSmallWhole())],
                  order[static_cast<std::size_t>(*rows->get(i, 0).asSmallWhole())]);
}

TEST_F(Tables, MeetEveryConditionOfAFilter) {
    const GenericValue table = table_of(u"A,B", {{1, 1}, {1, 2}, {2, 2}});
    const auto rows = table.query<IValueTable>();
    const VTFindParam twice[] = {{0, 1}, {1, 2}, {0, 1}};
    const VTFindParam never[] = {{0, 1}, {1, 2}, {0, 2}};
    for (const wchar* index : {u"", u"A", u"B", u"B, A"}) {
        if (*index != u'\0')
            call(property(table, u"Indexes"), u"Add", {index});
        EXPECT_EQ(rows->IValueTableBaseRO_findRows(twice), std::vector<std::size_t>{1});
        EXPECT_TRUE(rows->IValueTableBaseRO_findRows(never).empty()) << to_utf8(index);
    }
}

TEST_F(Tables, RefuseWhatIsWrongAndStayAsTheyAre) {
    const GenericValue table = table_of(u"A,B", {{1, u"x"}, {2, u"y"}, {3, u"z"}});
    const GenericValue other = table_of(u"A,B", {{1, u"x"}});
    const GenericValue stranger = call(other, u"Get", {0});
    const GenericValue columns = property(table, u"Columns");
    const GenericValue indexes = property(table, u"Indexes");
    call(indexes, u"Add", {u"A"});
    const GenericValue structure = make(u"Structure", {u"A, C", 1, 2});
    const GenericValue array = make(u"Array");
    const wstring before = text(table);
    const struct {
        GenericValue object;
        const wchar* method;
        Arguments arguments;
        wstring message;
    } wrong[] = {
        {table, u"Get", {3}, bad_index()},
        {table, u"Get", {-1}, bad_index()},
        {table, u"Get", {u"0"}, type_mismatch(0)},
        {table, u"Insert", {4}, bad_index()},
        {table, u"Insert", {-1}, bad_index()},
        {table, u"Insert", {true}, type_mismatch(0)},
        {table, u"Delete", {3}, bad_index()},
        {table, u"Delete", {1e30}, bad_index()},
        {table, u"Delete", {stranger}, unknown_row()},
        {table, u"Delete", {table}, type_mismatch(0)},
        {table, u"IndexOf", {stranger}, unknown_row()},
        {table, u"IndexOf", {0}, type_mismatch(0)},
        {table, u"Move", {0, -1}, message_text("IDS_COLLECTION_BADOFFSET")},
        {table, u"Move", {2, 1}, message_text("IDS_COLLECTION_BADOFFSET")},
        {table, u"Move", {1, 1e30}, message_text("IDS_COLLECTION_BADOFFSET")},
        {table, u"Move", {3, 0}, bad_index()},
        {table, u"Move", {stranger, 0}, unknown_row()},
        {table, u"Move", {0, u"1"}, type_mismatch(1)},
        {table, u"Find", {1, u"C"}, unknown_column(u"C")},
        {table, u"Find", {1, 5}, type_mismatch(1)},
        {table, u"Find", {1, u"A,A"}, twice(u"A")},
        {table, u"FindRows", {structure}, unknown_column(u"C")},
        {table, u"FindRows", {u"A"}, type_mismatch(0)},
        {table, u"Total", {u"C"}, unknown_column(u"C")},
        {table, u"Total", {2}, bad_index()},
        {table, u"Total", {GenericValue()}, type_mismatch(0)},
        {table, u"Sort", {5}, type_mismatch(0)},
        {table, u"LoadColumn", {5, u"A"}, type_mismatch(0)},
        {table, u"LoadColumn", {array, u"C"}, unknown_column(u"C")},
        {table, u"UnloadColumn", {true}, type_mismatch(0)},
        {table, u"Copy", {5}, type_mismatch(0)},
        {table, u"Copy", {structure}, unknown_column(u"C")},
        {table, u"Copy", {GenericValue(), u"A,,B"}, value_mismatch(1)},
        {table, u"CopyColumns", {u"1"}, unknown_column(u"1")},
        {table, u"GroupBy", {u"A", u"a"}, message_text("IDS_VT_GROUPBY_INTERSECT_ERROR", {u"A"})},
        {table, u"GroupBy", {u"A,a"}, twice(u"a")},
        {table, u"GroupBy", {u"A", u"B,B"}, twice(u"B")},
        {table, u"GroupBy", {u"A,"}, value_mismatch(0)},
        {table, u"GroupBy", {GenericValue()}, type_mismatch(0)},
        {table, u"FillValues", {1, u"C"}, unknown_column(u"C")},
        {table, u"ChooseRow", {5}, type_mismatch(0)},
        {table, u"ChooseRow", {u"", stranger}, unknown_row()},
        {columns, u"Add", {u"1A"}, message_text("IDS_VT_COLUMNCODE_ERROR", {u"1A"})},
        {columns, u"Add", {u""}, message_text("IDS_VT_COLUMNCODE_ERROR", {u""})},
        {columns, u"Add", {u" a "}, twice(u"a")},
        {columns, u"Add", {u"C", 5}, type_mismatch(1)},
        {columns, u"Add", {u"C", GenericValue(), 5}, type_mismatch(2)},
        {columns, u"Add", {u"C", GenericValue(), u"", -1}, value_mismatch(3)},
        {columns, u"Insert", {3, u"C"}, bad_index()},
        {columns, u"Insert", {0, 5}, type_mismatch(1)},
        {columns, u"Delete", {u"C"}, unknown_column(u"C")},
        {columns,
         u"Delete",
         {property(property(other, u"Columns"), u"A")},
         unknown_column(u"Value table column")},
        {columns, u"Move", {u"A", 2}, message_text("IDS_COLLECTION_BADOFFSET")},
        {columns, u"Get", {2}, bad_index()},
        {columns, u"IndexOf", {u"A"}, type_mismatch(0)},
        {indexes, u"Add", {u"A,C"}, unknown_column(u"C")},
        {indexes, u"Add", {u""}, value_mismatch(0)},
        {indexes, u"Delete", {1}, bad_index()},
        {indexes,
         u"Delete",
         {call(property(other, u"Indexes"), u"Add", {u"A"})},
         message_text("IDS_VT_UNKNOWN_INDEX_ERROR")},
        {indexes, u"Get", {u"A"}, type_mismatch(0)},
    };
    for (auto call_wrong : wrong) {
        EXPECT_EQ(failure([&] { call(call_wrong.object, call_wrong.method, call_wrong.arguments); }),
                  call_wrong.message)
            << to_utf8(call_wrong.method);
    }
    const auto name = property(columns, u"A").query<IContext_>();
    EXPECT_EQ(failure([&] { name->setPropVal(0, u"B"); }), twice(u"B"));
    EXPECT_EQ(failure([&] { name->setPropVal(0, u"a b"); }),
              message_text("IDS_VT_COLUMNCODE_ERROR", {u"a b"}));
    EXPECT_EQ(text(table), before);
}

TEST_F(Tables, AreGroupedInOrderOfFirstAppearance) {
    const auto sales = [] {
        return table_of(u"City,Item,Sum,Note", {{u"B", 1, 10.5, u"n"},
                                                {u"A", 1, 1, u"n"},
                                                {u"B", 2, u"no number", u"n"},
                                                {u"B", 1, Numeric(10).pow(30), u"n"},
                                                {u"C", GenericValue(), GenericValue(), u"n"}});
    };
    GenericValue table = sales();
    const GenericValue row = call(table, u"Get", {0});
    call(property(table, u"Indexes"), u"Add", {u"Note"});
    call(property(table, u"Indexes"), u"Add", {u"City"});
    call(table, u"GroupBy", {u"Item, City", u"Sum"});
    EXPECT_EQ(content(table), u"1,B,1000000000000000000000000000010.5;1,A,1;2,B,;,C,;");
    EXPECT_EQ(failure([&] { return property(row, u"City"); }), unknown_row());
    EXPECT_TRUE(call(property(table, u"Indexes"), u"Count").equals(1)) << "that of a dropped column is gone";
    EXPECT_EQ(walk(call(table, u"FindRows", {make(u"Structure", {u"City", u"B"})})).size(), 2U);

    table = sales();
    call(table, u"GroupBy", {u"", u"Item, Sum"});
    EXPECT_EQ(content(table), u"5,1000000000000000000000000000011.5;");
    table = sales();
    call(table, u"GroupBy", {u"Note"});
    EXPECT_EQ(content(table), u"n;");
    call(table, u"Clear");
    call(table, u"GroupBy", {u"", u"Note"});
    EXPECT_TRUE(call(table, u"Count").equals(0)) << "no row makes no group";
}

TEST_F(Tables, GroupManyRowsAsAMapWould) {
    std::mt19937 random(5);
    for (const int range : {50, 20'000, 1'000'000'000}) {
        const GenericValue table = table_of(u"A,B,C", {});
        const auto rows = table.query<IValueTable>();
        std::vector<std::pair<std::pair<int, int>, std::int64_t>> expected;
        for (int i = 0; i < 20'000; ++i) {
            const int a = static_cast<int>(random() % static_cast<unsigned>(range)) - range / 2;
            const int b = static_cast<int>(random() % 3);
            const Value cells[] = {a, b == 0 ? Value() : Value(u"text" + string_intto(b)), i};
            rows->appendRow(cells);
            if (i % 3 == 0 && range == 1'000'000'000) // some that occur twice
                rows->appendRow(cells);
            const int times = i % 3 == 0 && range == 1'000'000'000 ? 2 : 1;
            expected.push_back({{a, b}, std::int64_t{i} * times});
        }
        std::map<std::pair<int, int>, std::int64_t> sums;
        for (const auto& [key, value] : expected)
            sums[key] += value;
        call(table, u"GroupBy", {u"A,B", u"C"});
        ASSERT_EQ(rows->rowCount(), sums.size());
        for (std::size_t i = 0; i < rows->rowCount(); ++i) {
            const GenericValue b = rows->get(i, 1);
            const int bKey = b.isUndefined() ? 0 : b.asString()->back() - u'0';
            const auto found = sums.find({static_cast<int>(*rows->get(i, 0).asNumeric()), bKey});
            ASSERT_NE(found, sums.end());
            ASSERT_TRUE(rows->get(i, 2).equals(found->second));
        }
    }
}

TEST_F(Tables, AreCopiedByRowsAndColumns) {
    const GenericValue table = table_of(u"A,B", {{1, u"x"}, {2, u"y"}, {1, u"z"}});
    property(property(table, u"Columns"), u"A").query<IContext_>()->setPropVal(3, 12);
    EXPECT_EQ(content(call(table, u"Copy")), content(table));
    EXPECT_EQ(content(call(table, u"Copy", {make(u"Structure", {u"A", 1}), u"B"})), u"x;z;");
    const GenericValue array = make(u"Array");
    for (const int row : {2, 0, 2})
        call(array, u"Add", {call(table, u"Get", {row})});
    const GenericValue copy = call(table, u"Copy", {array, u"B,A"});
    EXPECT_EQ(content(copy), u"z,1;x,1;z,1;");
    EXPECT_TRUE(property(property(property(copy, u"Columns"), u"a"), u"Width").equals(12));
    call(call(copy, u"Get", {0}), u"Set", {u"A", u"changed"});
    EXPECT_EQ(content(table), u"1,x;2,y;1,z;");
    EXPECT_EQ(content(call(table, u"CopyColumns", {u"B"})), u"");
    EXPECT_TRUE(call(property(call(table, u"CopyColumns"), u"Columns"), u"Count").equals(2));
}

TEST_F(Tables, HoldCellsToTheTypesOfTheirColumns) {
    const GenericValue table = table_of(u"Any", {{u"12"}, {u"x"}, {5}});
    const GenericValue columns = property(table, u"Columns");
    call(columns, u"Add", {u"N", description(u"Number"), u"A number", 8});
    EXPECT_EQ(content(table), u"12,0;x,0;5,0;") << "a new column has the default of its type";
    call(call(table, u"Get", {1}), u"Set", {u"N", u" 7 "});
    call(table, u"FillValues", {u"3", u"Any"});
    const GenericValue any = property(columns, u"Any");
    EXPECT_EQ(property(any, u"Title").presentation(), u"Any") << "without a title the name";
    call(call(table, u"Get", {0}), u"Set", {u"Any", u"many"});
    any.query<IContext_>()->setPropVal(any.query<IContext_>()->findProp(u"ТипЗначения"),
                                       description(u"Number"));
    EXPECT_TRUE(call(table, u"Total", {u"Any"}).equals(6))
        << "the cells became numbers, and one that is none 0";
    EXPECT_TRUE(call(table, u"Total", {u"N"}).equals(7));
    call(table, u"LoadColumn", {call(table, u"UnloadColumn", {u"Any"}), u"N"});
    EXPECT_EQ(content(table), u"0,0;3,3;3,3;");
    EXPECT_TRUE(property(any, u"ValueType").equals(description(u"Number")));
    EXPECT_TRUE(property(call(table, u"Add"), u"Any").equals(0));
}

TEST_F(Tables, KeepCellsOfEveryFormThroughEveryChange) {
    // Values that need a wider form than the column has, each written between plain ones and read back.
    const GenericValue changes[] = {0.5,
                                    Numeric::fromScaled(1, 18),
                                    std::numeric_limits<std::int64_t>::max(),
                                    std::numeric_limits<std::int64_t>::min(),
                                    Numeric(10).pow(40),
                                    u"text",
                                    Date(2020, 1, 1),
                                    Date(~std::uint64_t{0}),
                                    Date(std::uint64_t{1} << 63),
                                    Value::null(),
                                    true,
                                    Type(Type::number),
                                    GenericValue(),
                                    make(u"Array")};
    for (const GenericValue& first : changes) {
        for (const GenericValue& second : changes) {
            const GenericValue table = table_of(u"A", {});
            const auto rows = table.query<IValueTable>();
            call(property(table, u"Indexes"), u"Add", {u"A"});
            std::vector<Value> expected;
            for (int i = 0; i < 60; ++i) {
                expected.push_back(i < 20 ? Value(first) : i % 7 == 0 ? Value(second) : Value(first));
                rows->appendRow(std::span(&expected.back(), 1));
                if (i == 30)
                    static_cast<void>(
                        rows->IValueTableBaseRO_findRows({})); // and keep the index through the rest
                const VTFindParam wanted[] = {{0, expected.back()}};
                const auto found = rows->IValueTableBaseRO_findRows(wanted);
                ASSERT_EQ(found.size(), static_cast<std::size_t>(
                                            std::count(expected.begin(), expected.end(), expected.back())));
            }
            for (std::size_t i = 0; i < expected.size(); ++i)
                ASSERT_TRUE(rows->get(i, 0).equals(expected[i]));
        }
    }
    // Many texts that are all different: a dictionary of them saves nothing.
    const GenericValue table = table_of(u"A", {});
    const auto rows = table.query<IValueTable>();
    for (int i = 0; i < 12'000; ++i) {
        const Value text(u"text " + string_intto(i * 7919 % 12'000));
        rows->appendRow(std::span(&text, 1));
    }
    call(table, u"Sort", {u"A Desc"});
    for (std::size_t i = 1; i < rows->rowCount(); ++i)
        ASSERT_GT(compare_values(rows->get(i - 1, 0), rows->get(i, 0)), 0);
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

TEST_F(Tables, LetTheHostChoose) {
    const GenericValue table = table_of(u"A", {{1}, {2}});
    const GenericValue list = make(u"ValueList");
    for (const int value : {1, 2})
        call(list, u"Add", {value});
    EXPECT_TRUE(call(table, u"ChooseRow").isUndefined());
    EXPECT_TRUE(call(list, u"ChooseItem").isUndefined());
    EXPECT_TRUE(call(list, u"CheckItems").isFalse());

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
}

} // namespace
