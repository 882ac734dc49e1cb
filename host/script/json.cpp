// SPDX-License-Identifier: Apache-2.0
#include "host/script/json.h"

#include <core/collections/value_array.h>
#include <core/collections/value_map.h>
#include <core/collections/value_structure.h>
#include <core/context/iteration.h>
#include <core/runtime/error.h>
#include <core/runtime/utf8.h>
#include <core/serialization/persistence.h>
#include <core/strings/integer_text.h>
#include <core/strings/names.h>
#include <core/strings/term.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <utility>
#include <vector>

namespace host::script {

using namespace core;

namespace {

[[noreturn]] void too_deep() {
    throw_error<ContextException>("IDS_SCRIPT_JSON_TOO_DEEP", {string_intto(Nesting::kMaxDepth)});
}

/// Builds values from the parser's events, without recursion.
class Builder : public nlohmann::json_sax<nlohmann::json> {
  public:
    explicit Builder(Objects objects) : objects_(objects) {}

    GenericValue take() { return std::move(result_); }

    bool null() override { return put({}); }
    bool boolean(bool value) override { return put(Value(value)); }
    bool number_integer(number_integer_t value) override { return put(Value(value)); }
    bool number_unsigned(number_unsigned_t value) override { return put(Value(value)); }
    bool number_float(number_float_t, const string_t& text) override { return put(Value(exact(text))); }
    bool string(string_t& text) override { return put(Value(from_utf8(text))); }
    bool binary(binary_t&) override { return false; }
    bool start_object(std::size_t) override { return open(true); }
    bool end_object() override { return close(); }
    bool start_array(std::size_t) override { return open(false); }
    bool end_array() override { return close(); }
    bool key(string_t& name) override {
        open_.back().keys.emplace_back(from_utf8(name));
        return true;
    }
    bool parse_error(std::size_t position, const std::string&, const nlohmann::json::exception& e) override {
        throw_error<ContextException>("IDS_SCRIPT_JSON_MALFORMED",
                                      {string_intto(position), from_utf8(e.what())});
    }

  private:
    struct Container {
        bool isObject;
        std::vector<wstring> keys;
        std::vector<Value> values;
    };

    /// The number that the digits stand for; an exponent shifts the point.
    static Numeric exact(std::string_view text) {
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
            return zeros.empty() ? number : number * Numeric::fromString("0." + zeros.substr(1) + "1");
        return number * Numeric::fromString("1" + zeros);
    }

    bool open(bool isObject) {
        if (open_.size() >= static_cast<std::size_t>(Nesting::kMaxDepth))
            too_deep();
        open_.push_back({isObject, {}, {}});
        return true;
    }

    bool close() {
        Container container = std::move(open_.back());
        open_.pop_back();
        return put(container.isObject
                       ? object(container)
                       : Value(create_value_array(std::move(container.values)).query<IValue>()));
    }

    [[nodiscard]] Value object(Container& container) const {
        if (objects_ == Objects::structures &&
            std::ranges::all_of(container.keys, [](const wstring& key) { return is_valid_name(key); })) {
            const auto structure = create_value_structure();
            fill(*structure, container);
            if (structure->count() == container.keys.size()) // names that differ in case alone need a Map
                return Value(structure.query<IValue>());
        }
        const auto map = create_value_map();
        fill(*map, container);
        return Value(map.query<IValue>());
    }
    template <class Table>
    static void fill(Table& table, Container& container) {
        for (std::size_t i = 0; i < container.keys.size(); ++i)
            table.insert(Value(container.keys[i]), container.values[i]);
    }

    bool put(Value value) {
        if (open_.empty())
            result_ = std::move(value);
        else
            open_.back().values.push_back(std::move(value));
        return true;
    }

    Objects objects_;
    std::vector<Container> open_;
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
    void writeString(wstring_view text) { text_ += nlohmann::json(to_utf8(text)).dump(); }

    void writeObject(const Value& value) {
        if (++depth_ > Nesting::kMaxDepth)
            too_deep();
        if (const auto pairs = value.query<IValuePairs>()) {
            writePairs(*pairs);
        } else if (const auto collection = value.query<IValueCollection>()) {
            writeElements(*collection);
        } else {
            writeString(value.presentation());
        }
        --depth_;
    }

    void writePairs(const IValuePairs& pairs) {
        text_ += '{';
        bool first = true;
        IValuePairs::View pair;
        for (std::size_t place = 0; pairs.next(place, pair); first = false) {
            separate(first);
            writeString(pair.key->presentation());
            text_ += indent_ > 0 ? ": " : ":";
            write(*pair.value);
        }
        finish(first, '}');
    }

    void writeElements(IValueCollection& collection) {
        text_ += '[';
        bool first = true;
        GenericValue element;
        for (const auto walk = collection.enumerate(); walk->next(element); first = false) {
            separate(first);
            write(element);
        }
        finish(first, ']');
    }

    void separate(bool first) {
        if (!first)
            text_ += ',';
        newLine(depth_);
    }
    void finish(bool empty, char close) {
        if (!empty)
            newLine(depth_ - 1);
        text_ += close;
    }
    void newLine(int depth) {
        if (indent_ > 0) {
            text_ += '\n';
            text_.append(static_cast<std::size_t>(indent_ * depth), ' ');
        }
    }

    int indent_;
    int depth_ = 0;
    std::string text_;
};

} // namespace

GenericValue from_json(std::string_view text, Objects objects) {
    Builder builder(objects);
    nlohmann::json::sax_parse(text, &builder);
    return builder.take();
}

std::string to_json(const GenericValue& value, int indent) {
    Writer writer(indent);
    writer.write(value);
    return writer.take();
}

} // namespace host::script
