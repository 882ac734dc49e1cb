// SPDX-License-Identifier: Apache-2.0
#include "core/exchange/cells/cell_writer.h"
#include "core/runtime/threads/loop_check.h"

#include <core/collections/value_map.h>
#include <core/collections/value_structure.h>
#include <core/context/context_def.h>
#include <core/context/iteration.h>
#include <core/exchange/errors.h>
#include <core/exchange/json.h>
#include <core/exchange/json_text.h>
#include <core/lists/nesting.h>
#include <core/runtime/utf8.h>
#include <core/strings/integer_text.h>
#include <core/tables/terms.h>
#include <core/tables/value_list.h>

#include <unordered_set>
#include <utility>
#include <vector>

namespace core {
namespace {

[[noreturn]] void too_deep() {
    throw_error<ContextException>(messages::kJsonTooDeep, {string_intto(Nesting::kMaxDepth)});
}

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
            text_ += '"';
            append_full_date(text_, *value.asDate());
            text_ += '"';
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
            writer_.check_();
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
            throw_error<ContextException>(messages::kJsonSameNames, {name});
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
    detail::LoopCheck check_;
};

} // namespace

std::string to_json(const GenericValue& value, int indent) {
    Writer writer(indent);
    writer.write(value);
    return writer.take();
}

std::string to_json_lines(const GenericValue& value) {
    std::string lines;
    const auto pairs = value.query<IValuePairs>();
    const auto elements = pairs ? nullptr : value.query<IValueCollection>();
    if (!elements)
        return to_json(value) + '\n';
    GenericValue element;
    detail::LoopCheck check; // the writer of a line meets few elements
    for (const auto walk = elements->enumerate(); walk->next(element);) {
        check();
        lines += to_json(element);
        lines += '\n';
    }
    return lines;
}

} // namespace core
