// SPDX-License-Identifier: Apache-2.0
#include "core/exchange/json/json_builder.h"

#include <core/collections/value_array.h>
#include <core/collections/value_map.h>
#include <core/collections/value_structure.h>
#include <core/exchange/errors.h>
#include <core/lists/nesting.h>
#include <core/runtime/utf8.h>
#include <core/strings/integer_text.h>
#include <core/strings/names.h>

#include <algorithm>
#include <cstdlib>

namespace core {
namespace {

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
        throw_error<ContextException>(messages::kJsonNumber, {from_utf8(text)});
    // A power of ten written out, since a division would round.
    const std::string zeros(static_cast<std::size_t>(std::abs(*exponent)), '0');
    if (*exponent < 0)
        return number * Numeric::fromString("0." + zeros.substr(1) + "1");
    return number * Numeric::fromString("1" + zeros);
}

template <class Table>
void fill(Table& table, const std::vector<wstring>& keys, const std::vector<Value>& values) {
    for (std::size_t i = 0; i < keys.size(); ++i)
        table.insert(Value(keys[i]), values[i]);
}

} // namespace

void JsonBuilder::onNull() {
    put({});
}
void JsonBuilder::onBoolean(bool value) {
    put(Value(value));
}
void JsonBuilder::onNumber(std::string_view text) {
    put(Value(exact_number(text)));
}
void JsonBuilder::onString(std::string_view piece, bool isLast) {
    string_ += piece;
    if (isLast) {
        put(Value(from_utf8(string_)));
        string_.clear();
    }
}
void JsonBuilder::onName(std::string_view name) {
    open_.back().keys.emplace_back(from_utf8(name));
}
void JsonBuilder::onArrayEnd() {
    Container array = pop();
    put(Value(create_value_array(std::move(array.values)).query<IValue>()));
}
void JsonBuilder::onObjectEnd() {
    Container members = pop();
    put(object(members));
}

JsonBuilder::Container JsonBuilder::pop() {
    Container container = std::move(open_.back());
    open_.pop_back();
    return container;
}

Value JsonBuilder::object(Container& container) const {
    const std::vector<wstring>& keys = container.keys;
    InterfacePtr<IValueStructure> structure;
    if (objects_ == Objects::structures &&
        std::ranges::all_of(keys, [](const wstring& key) { return is_valid_name(key); })) {
        structure = create_value_structure();
        fill(*structure, keys, container.values);
        if (structure->count() == keys.size())
            return Value(structure.query<IValue>());
    }
    const auto map = create_value_map();
    fill(*map, keys, container.values);
    // A name that comes twice is the later one; names that differ in case alone need the map.
    return structure && structure->count() == map->count() ? Value(structure.query<IValue>())
                                                           : Value(map.query<IValue>());
}

void JsonBuilder::put(Value value) {
    if (open_.empty())
        result_ = std::move(value);
    else
        open_.back().values.push_back(std::move(value));
}

GenericValue from_json(std::string_view text, Objects objects) {
    JsonBuilder builder(objects);
    JsonReader reader(builder, Nesting::kMaxDepth);
    reader.read(text);
    reader.finish();
    return builder.take();
}

GenericValue from_json_lines(std::string_view text, Objects objects) {
    std::vector<Value> values;
    JsonBuilder builder(objects);
    each_json_line(text, [&](std::string_view line, std::uint64_t number) {
        JsonReader reader(builder, Nesting::kMaxDepth, number);
        reader.read(line);
        reader.finish();
        values.push_back(builder.take());
    });
    return Value(create_value_array(std::move(values)).query<IValue>());
}

} // namespace core
