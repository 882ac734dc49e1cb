// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tests/collections/script.h"

#include <core/containers.h>
#include <core/descriptions.h>
#include <core/objects.h>
#include <core/tables.h>

#include <random>

/// Values of every kind, for whatever carries values.
namespace core::test {

/// Random values: each kind often enough, the borders of each, collections in collections.
class ValueSamples {
  public:
    explicit ValueSamples(unsigned seed) : random_(seed) {}

    GenericValue any(int depth = 3) {
        switch (below(depth > 0 ? 22 : 12)) {
        case 0:
            return {};
        case 1:
            return Value::null();
        case 2:
            return below(2) == 0;
        case 3:
        case 4:
            return number();
        case 5:
        case 6:
            return text();
        case 7:
            return date();
        case 8:
            return Type(std::vector{u"Number", u"Array", u"ValueTable"}[below(3)]);
        case 9: {
            const std::size_t size = below(100);
            return create_binary_data(std::vector(size, static_cast<std::byte>(below(256))));
        }
        case 10:
            return to_value(languages());
        case 11:
            return to_value(Locale("es-MX"));
        case 12:
        case 13:
            return array(depth);
        case 14:
            return script::make(u"FixedArray", {array(depth)});
        case 15:
            return map(depth);
        case 16:
            return structure(depth);
        case 17:
            return list(depth);
        case 18:
            return tree(depth);
        case 19:
            return script::make(u"TypeDescription",
                                {u"Number, String, Date", create_qualifiers_value(NumericQualifiers(10, 2))});
        case 20:
            return create_stored_value(any(depth - 1)).query<IValue>();
        default:
            return table(depth);
        }
    }

    static LocalWString languages() {
        LocalWString text(u"title");
        text.set(Locale("ru"), u"Заголовок");
        return text;
    }
    GenericValue number() {
        const std::int64_t bits = static_cast<std::int64_t>(random_()) >> below(64);
        switch (below(6)) {
        case 0:
            return static_cast<std::int64_t>(below(300)) - 150;
        case 1:
            return bits;
        case 2:
            return std::numeric_limits<std::int64_t>::min() + static_cast<std::int64_t>(below(2));
        case 3:
            return Numeric::fromScaled(bits, static_cast<std::uint32_t>(below(19)));
        case 4:
            return Numeric(bits) * Numeric(std::numeric_limits<std::uint64_t>::max());
        default:
            return Numeric(bits) * Numeric(10).pow(Numeric(-static_cast<int>(below(60))));
        }
    }
    GenericValue text() {
        static const std::vector<wstring> kAlphabets = {
            u"abc\"{},\n", u"éß÷\u00FF", u"Имя вишни", u"😀a", {u'\xD83D', u'\xFFFF', u'\0', u'x'}};
        const wstring& alphabet = kAlphabets[below(kAlphabets.size())];
        wstring text(below(20) == 0 ? below(20'000) : below(80), u' ');
        for (wchar& unit : text)
            unit = alphabet[below(alphabet.size())];
        return text;
    }
    GenericValue date() {
        switch (below(4)) {
        case 0:
            return Date(2024, 2, 29);
        case 1: {
            const int year = 1 + static_cast<int>(below(9999));
            return Date(year, 12, 31, 23, 59, static_cast<int>(below(60)));
        }
        case 2:
            return Date(random_() % Date::kLimit); // parts of a second, which text drops
        default:
            return Date(random_());
        }
    }
    GenericValue array(int depth) {
        const GenericValue array = script::make(u"Array");
        for (std::size_t left = below(6); left > 0; --left)
            script::call(array, u"Add", {any(depth - 1)});
        return array;
    }
    GenericValue map(int depth) {
        const GenericValue map = script::make(u"Map");
        for (std::size_t left = below(12); left > 0; --left) // keys that text tells apart
            script::call(map, u"Insert", {static_cast<int>(left), any(depth - 1)});
        return map;
    }
    GenericValue structure(int depth) {
        const GenericValue structure = script::make(u"Structure");
        for (std::size_t left = below(12); left > 0; --left)
            script::call(structure, u"Insert", {u"Имя" + string_intto(left), any(depth - 1)});
        return structure;
    }
    GenericValue list(int depth) {
        const GenericValue list = script::make(u"ValueList");
        for (std::size_t left = below(5); left > 0; --left)
            script::call(list, u"Add",
                         {any(depth - 1), below(2) == 0 ? text() : to_value(languages()), below(2) == 0,
                          any(depth - 1)});
        return list;
    }
    GenericValue tree(int depth) {
        const GenericValue tree = script::make(u"ValueTree");
        script::call(script::property(tree, u"Columns"), u"Add", {u"A"});
        std::vector<GenericValue> rows = {tree};
        for (std::size_t left = below(6); left > 0; --left) {
            const GenericValue parent = rows[below(rows.size())];
            rows.push_back(script::call(script::property(parent, u"Rows"), u"Add"));
            script::call(rows.back(), u"Set", {0, any(depth - 1)});
        }
        return tree;
    }
    /// Columns in every form, with holes, rows that are gone and rows in another order.
    GenericValue table(int depth) {
        const GenericValue table = script::make(u"ValueTable");
        const GenericValue columns = script::property(table, u"Columns");
        const std::size_t width = below(5);
        std::vector<std::size_t> kinds;
        for (std::size_t i = 0; i < width; ++i) {
            kinds.push_back(below(6));
            const wstring name = u"C" + string_intto(i);
            const GenericValue typed = script::make(u"TypeDescription", {u"Date"});
            script::call(columns, u"Add",
                         kinds[i] == 5 ? script::Arguments{name, typed, to_value(languages()), 7}
                                       : script::Arguments{name});
        }
        for (std::size_t left = below(40); left > 0; --left) {
            const GenericValue row = script::call(table, u"Add");
            for (std::size_t i = 0; i < width; ++i) {
                if (kinds[i] == 5 || below(4) != 0)
                    script::call(row, u"Set", {static_cast<int>(i), cell(kinds[i], depth)});
            }
        }
        for (std::size_t count = rows_of(table); count > 0 && below(2) == 0; count = rows_of(table))
            script::call(table, u"Delete", {static_cast<int>(below(count))});
        if (width > 0 && below(3) == 0)
            script::call(table, u"Sort", {u"C0 Desc"});
        if (width > 0 && below(3) == 0)
            script::call(script::property(table, u"Indexes"), u"Add", {u"C0"});
        return table;
    }

  private:
    std::size_t below(std::size_t count) { return static_cast<std::size_t>(random_() % count); }
    static std::size_t rows_of(const GenericValue& table) {
        return static_cast<std::size_t>(*script::call(table, u"Count").asSmallWhole());
    }
    GenericValue cell(std::size_t kind, int depth) {
        switch (kind) {
        case 0: // words
            return Numeric::fromScaled(static_cast<std::int64_t>(random_()) >> below(64), 2);
        case 1: // a few names
            return GenericValue(std::vector{u"Чай", u"Tea", u""}[below(3)]);
        case 2: // days
            return Date(2024, 1, 1 + static_cast<int>(below(31)));
        case 3:
            return date();
        case 4:
            return any(depth - 1);
        default: // seconds
            return Date(2024, 1, 1, 0, 0, static_cast<int>(below(60)));
        }
    }

    std::mt19937_64 random_;
};

} // namespace core::test
