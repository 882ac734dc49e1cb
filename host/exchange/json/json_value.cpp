// SPDX-License-Identifier: Apache-2.0
#include "host/exchange/json/json_value.h"

#include "host/exchange/json/json_reader.h"
#include "host/exchange/json/json_text.h"

#include <core/collections/value_array.h>
#include <core/collections/value_map.h>
#include <core/collections/value_structure.h>
#include <core/context/context_def.h>
#include <core/context/iteration.h>
#include <core/persistence/persistence.h>
#include <core/runtime/utf8.h>
#include <core/strings/integer_text.h>
#include <core/strings/names.h>
#include <core/tables/terms.h>
#include <core/tables/value_list.h>
#include <core/tables/value_table.h>
#include <core/values/errors.h>

#include <algorithm>
#include <unordered_set>
#include <utility>
#include <vector>

namespace host {

using namespace core;

namespace {

[[noreturn]] void too_deep() {
    throw_error<ContextException>("IDS_SCRIPT_JSON_TOO_DEEP", {string_intto(Nesting::kMaxDepth)});
}

/// The number that the digits stand for; an exponent shifts the point.
Numeric exact_number(std::string_view text) {
    constexpr int kMaxExponent = 100'000; // a longer one is an attack, not a number
    const auto mark = text.find_first_of("eE");
    Numeric number = Numeric::fromString(text.substr(0, mark));
    if (mark == std::string_view::npos)
        return number;
    std::string_view digits = text.substr(mark + 1);
    if (digits.starts_with('+'))
        digits.remove_prefix(1);
    const auto exponent = string_toint<int>(digits);
    if (!exponent || *exponent > kMaxExponent || *exponent < -kMaxExponent)
        throw_error<ContextException>("IDS_SCRIPT_JSON_NUMBER", {from_utf8(text)});
    // A power of ten written out, since a division would round.
    const std::string zeros(static_cast<std::size_t>(std::abs(*exponent)), '0');
    if (*exponent < 0)
        return number * Numeric::fromString("0." + zeros.substr(1) + "1");
    return number * Numeric::fromString("1" + zeros);
}

/// Builds values from the reader's events, without recursion.
class Builder : public JsonEvents {
  public:
    explicit Builder(Objects objects) : objects_(objects) {}

    GenericValue take() { return std::move(result_); }

    void onNull() override { put({}); }
    void onBoolean(bool value) override { put(Value(value)); }
    void onNumber(std::string_view text) override { put(Value(exact_number(text))); }
    void onString(std::string_view piece, bool isLast) override {
        string_ += piece;
        if (isLast) {
            put(Value(from_utf8(string_)));
            string_.clear();
        }
    }
    void onName(std::string_view name) override { open_.back().keys.emplace_back(from_utf8(name)); }
    void onArrayBegin() override { open_.emplace_back(); }
    void onArrayEnd() override {
        Container array = pop();
        put(Value(create_value_array(std::move(array.values)).query<IValue>()));
    }
    void onObjectBegin() override { open_.emplace_back(); }
    void onObjectEnd() override {
        Container members = pop();
        put(object(members));
    }

  private:
    struct Container {
        std::vector<wstring> keys; // of an object
        std::vector<Value> values;
    };

    Container pop() {
        Container container = std::move(open_.back());
        open_.pop_back();
        return container;
    }

    [[nodiscard]] Value object(Container& container) const {
        InterfacePtr<IValueStructure> structure;
        if (objects_ == Objects::structures &&
            std::ranges::all_of(container.keys, [](const wstring& key) { return is_valid_name(key); })) {
            structure = create_value_structure();
            fill(*structure, container);
            if (structure->count() == container.keys.size())
                return Value(structure.query<IValue>());
        }
        const auto map = create_value_map();
        fill(*map, container);
        // A name that comes twice is the later one; names that differ in case alone need the map.
        return structure && structure->count() == map->count() ? Value(structure.query<IValue>())
                                                               : Value(map.query<IValue>());
    }
    template <class Table>
    static void fill(Table& table, Container& container) {
        for (std::size_t i = 0; i < container.keys.size(); ++i)
            table.insert(Value(container.keys[i]), container.values[i]);
    }

    void put(Value value) {
        if (open_.empty())
            result_ = std::move(value);
        else
            open_.back().values.push_back(std::move(value));
    }

    Objects objects_;
    std::vector<Container> open_;
    std::string string_; // as far as it has been read
    GenericValue result_;
};

class Writer {
  public:
    explicit Writer(int indent) : indent_(indent) {}

    std::string take() { return std::move(text_); }

    void write(const Value& value) {
        switch (value.kind()) {
        case ValueKind::undefined:
        case ValueKind::null:
            text_ += "null";
            return;
        case ValueKind::boolean:
            text_ += value.isTrue() ? "true" : "false";
            return;
        case ValueKind::number:
            text_ += to_utf8(value.asNumeric()->toString());
            return;
        case ValueKind::date:
            writeString(value.asDate()->toXMLString());
            return;
        case ValueKind::string:
            writeString(*value.asString());
            return;
        case ValueKind::type:
            writeString(value.asType()->name(kEnglish));
            return;
        case ValueKind::object:
            writeObject(value);
        }
    }

  private:
    void writeString(wstring_view text) { append_json_string(text_, to_utf8(text)); }

    /// Elements or members between brackets, with commas, each on a line of its own where that is wanted.
    class Block {
      public:
        Block(Writer& writer, char open) : writer_(writer), depth_(writer.depth_) {
            if (depth_ == Nesting::kMaxDepth)
                too_deep();
            writer_.text_ += open;
            ++writer_.depth_;
        }
        Block(const Block&) = delete;
        Block& operator=(const Block&) = delete;
        ~Block() { writer_.depth_ = depth_; }

        void close(char close) { // not left to the destructor: there may be no memory for it
            writer_.depth_ = depth_;
            if (!empty_)
                writer_.newLine();
            writer_.text_ += close;
        }

        void next() {
            if (!empty_)
                writer_.text_ += ',';
            empty_ = false;
            writer_.newLine();
        }
        void member(wstring_view name, const Value& value) {
            next();
            writer_.writeString(name);
            writer_.text_ += writer_.indent_ > 0 ? ": " : ":";
            writer_.write(value);
        }

      private:
        Writer& writer_;
        int depth_;
        bool empty_ = true;
    };

    void writeObject(const Value& value) {
        const auto isA = [type = value.type()](const Term& name) {
            return wstring_view(type.name(kEnglish)) == name[kEnglish];
        };
        if (const auto pairs = value.query<IValuePairs>()) {
            writePairs(*pairs);
        } else if (const auto table = value.query<IValueTableBaseRO>()) {
            writeTable(*table);
        } else if (const auto list = value.query<IValueList>()) {
            writeList(*list);
        } else if (isA(kValueTreeTerm)) {
            const auto tree = value.query<IContext_>();
            write(property(*tree, tree->findProp(kRowCollectionTerm[kEnglish])));
        } else if (isA(kValueTreeRowTerm)) {
            writeRow(*value.query<IContext_>(), 2); // behind the rows below it and its parent
        } else if (isA(kValueTableRowTerm)) {
            writeRow(*value.query<IContext_>(), 0);
        } else if (const auto collection = value.query<IValueCollection>()) {
            writeElements(*collection);
        } else {
            writeString(value.presentation());
        }
    }

    /// The number 1 and the text "1" are two keys, but would be one name.
    static void refuseSameNames(const IValuePairs& pairs) {
        std::unordered_set<wstring> names; // of the keys that are not strings
        const auto refuse = [](const wstring& name) {
            throw_error<ContextException>("IDS_SCRIPT_JSON_SAME_NAMES", {name});
        };
        IValuePairs::View pair;
        for (std::size_t position = 0; pairs.next(position, pair);) {
            if (pair.key->kind() != ValueKind::string && !names.insert(pair.key->presentation()).second)
                refuse(pair.key->presentation());
        }
        for (std::size_t position = 0; !names.empty() && pairs.next(position, pair);) {
            if (pair.key->kind() == ValueKind::string && names.contains(pair.key->presentation()))
                refuse(pair.key->presentation());
        }
    }

    void writePairs(const IValuePairs& pairs) {
        refuseSameNames(pairs);
        Block block(*this, '{');
        IValuePairs::View pair;
        for (std::size_t position = 0; pairs.next(position, pair);)
            block.member(pair.key->presentation(), *pair.value);
        block.close('}');
    }

    void writeTable(const IValueTableBaseRO& table) {
        std::vector<IValueTableBaseRO::Column> columns;
        for (std::size_t i = 0; i < table.columnCount(); ++i)
            columns.push_back(table.column(i));
        Block rows(*this, '[');
        for (std::size_t row = 0; row < table.rowCount(); ++row) {
            rows.next();
            Block cells(*this, '{');
            for (const auto& column : columns)
                cells.member(column.name, table.get(row, column.id));
            cells.close('}');
        }
        rows.close(']');
    }

    /// The cells by the names of their columns, which are the properties from the first one on;
    /// then what is below the row.
    void writeRow(IContext_& row, int first) {
        Block block(*this, '{');
        for (int prop = first; prop < row.getNProps(); ++prop)
            block.member(row.getPropName(prop, kEnglish), property(row, prop));
        if (first > 0)
            block.member(kRowCollectionTerm[kEnglish],
                         property(row, row.findProp(kRowCollectionTerm[kEnglish])));
        block.close('}');
    }

    void writeList(const IValueList& list) {
        Block items(*this, '[');
        for (std::size_t i = 0; i < list.count(); ++i) {
            const IValueList::Item item = list.get(i);
            items.next();
            Block block(*this, '{');
            block.member(kVLColumnTermValue[kEnglish], item.value);
            block.member(kVLColumnTermPresent[kEnglish], Value(item.presentation.text()));
            block.member(kVLColumnTermCheck[kEnglish], Value(item.check));
            block.close('}');
        }
        items.close(']');
    }

    void writeElements(IValueCollection& collection) {
        Block block(*this, '[');
        GenericValue element;
        for (const auto walk = collection.enumerate(); walk->next(element);) {
            block.next();
            write(element);
        }
        block.close(']');
    }

    static GenericValue property(IContext_& context, int prop) {
        GenericValue value;
        context.getPropVal(prop, value);
        return value;
    }

    void newLine() {
        if (indent_ > 0) {
            text_ += '\n';
            text_.append(static_cast<std::size_t>(indent_) * static_cast<std::size_t>(depth_), ' ');
        }
    }

    int indent_;
    int depth_ = 0;
    std::string text_;
};

} // namespace

GenericValue from_json(std::string_view text, Objects objects) {
    Builder builder(objects);
    JsonReader reader(builder, Nesting::kMaxDepth);
    reader.read(text);
    reader.finish();
    return builder.take();
}

std::string to_json(const GenericValue& value, int indent) {
    Writer writer(indent);
    writer.write(value);
    return writer.take();
}

} // namespace host
