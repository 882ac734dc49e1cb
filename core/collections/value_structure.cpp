// SPDX-License-Identifier: Apache-2.0
#include "core/collections/pairs_impl.h"
#include "core/collections/parameters.h"
#include "core/lists/malformed.h"
#include "core/values/value_hash.h"

#include <core/collections/errors.h>
#include <core/collections/value_structure.h>
#include <core/context/arguments.h>
#include <core/context/errors.h>
#include <core/strings/compare.h>
#include <core/strings/names.h>
#include <core/strings/trim.h>
#include <core/values/errors.h>

namespace core {
namespace {

struct Name {
    wstring_view text;
    std::uint64_t hash;

    explicit Name(wstring_view name) noexcept : Name(name, name_table_hash(name)) {}
    Name(wstring_view name, std::uint64_t nameHash) noexcept : text(name), hash(nameHash) {}
};

PairTable::Pair* find_pair(PairTable& table, const Name& name) noexcept {
    return table.find(name.hash, [&](const PairTable::Pair& pair) {
        return compare_nocase(*pair.key.asString(), name.text) == 0;
    });
}

/// The name that a key stands for: a String, trimmed, that is a valid name.
Name name_of(const Value& key) {
    if (const std::uint64_t hash = name_table_hash(key); hash != 0)
        return {*key.asString(), hash};
    const wstring_view* const text = key.asString();
    const wstring_view name = text != nullptr ? trim_all(*text) : wstring_view();
    if (!is_valid_name(name))
        throw_error<ContextException>(messages::kBadKey, {key.presentation()});
    return Name(name);
}

/// The pair with the name that the key stands for; null after adding one where there was none.
PairTable::Pair* find_or_add(PairTable& table, const Value& key, const Name& name, Value& value) {
    PairTable::Pair* const pair = find_pair(table, name);
    if (pair == nullptr) {
        const bool trimmed = name.text.size() != key.asString()->size();
        table.append(name.hash, trimmed ? Value(name.text) : key, std::move(value));
    }
    return pair;
}

} // namespace

class ValueStructure : public PairsImpl<ValueStructure, IValueStructure> {
  public:
    static constexpr ScriptClass script = {
        .names = kValueStructureTypeString,
        .type = kValueStructureType,
        .object = kValueStructureClass,
        .presentation = "IDS_TYPE_PRESENTATION_VALUESTRUCTURE",
        .arguments = {0, -1},
        .elements = &kValuePairType,
    };

    static GenericValue construct(std::span<GenericValue> arguments);
    static std::span<const Method<ValueStructure>> methods() noexcept;
    static void take(PairTable& table, KeyAndValue&& pair) {
        const std::uint64_t hash = name_table_hash(pair.key);
        if (hash == 0 || find_or_add(table, pair.key, {*pair.key.asString(), hash}, pair.value) != nullptr)
            throw_malformed();
    }

    // IContextDef: the keys are the properties
    int getNProps() const override { return static_cast<int>(table_.size()); }
    const wchar* getPropName(int prop, int alias) const override {
        const bool named = isProp(prop) && (alias == kEnglish || alias == kRussian);
        return named ? at(prop).key.asString()->data() : nullptr;
    }
    bool isPropReadable(int prop) const override { return isProp(prop); }
    bool isPropWritable(int prop) const override { return isProp(prop); }
    int findProp(const wchar* name) const override {
        const PairTable::Pair* const pair = name != nullptr ? pairOf(Name(name)) : nullptr;
        return pair != nullptr ? static_cast<int>(table_.positionOf(*pair)) : -1;
    }

    // IContext_
    void getPropVal(int prop, GenericValue& out) override {
        checkProp(prop);
        out = GenericValue(at(prop).value);
    }
    void setPropVal(int prop, const GenericValue& value) override {
        checkProp(prop);
        Value copy(value);
        swap(at(prop).value, copy);
    }

    // IValueStructure
    void insert(const Value& key, Value value) override {
        if (PairTable::Pair* const pair = find_or_add(table_, key, name_of(key), value))
            swap(pair->value, value);
    }
    const Value* find(const Value& key) const override { return valueOf(pairOf(name_of(key))); }
    const Value* find(wstring_view name) const noexcept override { return valueOf(pairOf(Name(name))); }
    bool remove(const Value& key) override {
        PairTable::Pair* const pair = pairOf(name_of(key));
        if (pair == nullptr)
            return false;
        table_.erase(*pair);
        return true;
    }

  private:
    [[nodiscard]] bool isProp(int prop) const noexcept {
        return prop >= 0 && static_cast<std::size_t>(prop) < table_.size();
    }
    void checkProp(int prop) const {
        if (!isProp(prop))
            detail::bad_property(prop);
    }
    [[nodiscard]] PairTable::Pair& at(int prop) const noexcept {
        return table_.at(static_cast<std::size_t>(prop));
    }
    [[nodiscard]] PairTable::Pair* pairOf(const Name& name) const noexcept { return find_pair(table_, name); }
    [[nodiscard]] static const Value* valueOf(const PairTable::Pair* pair) noexcept {
        return pair != nullptr ? &pair->value : nullptr;
    }

    GenericValue callInsert(std::span<GenericValue> arguments) {
        insert(arguments[0], arguments[1]);
        return {};
    }
    GenericValue callDelete(std::span<GenericValue> arguments) {
        remove(arguments[0]);
        return {};
    }
    GenericValue callProperty(std::span<GenericValue> arguments) {
        const Value* const value = find(arguments[0]);
        if (value != nullptr)
            arguments[1] = GenericValue(*value);
        return value != nullptr;
    }
};

InterfacePtr<IValueStructure> create_value_structure() {
    return make_object<ValueStructure>();
}

/// New Structure(), or of names with "," between them and their values; missing values are Undefined.
GenericValue ValueStructure::construct(std::span<GenericValue> arguments) {
    auto structure = make_object<ValueStructure>();
    if (arguments.empty())
        return structure;
    std::size_t param = 1;
    for (const wstring_view name : list_argument(arguments[0], 0)) {
        structure->insert(Value(name), param < arguments.size() ? arguments[param] : Value());
        ++param;
    }
    if (param < arguments.size())
        parameter_value_mismatch(static_cast<int>(param));
    return structure;
}

std::span<const Method<ValueStructure>> ValueStructure::methods() noexcept {
    static constexpr Param kKeyAndOptionalValue[] = {kKeyParam,
                                                     named_param(kValueTerm, ParamDefault::undefined)};
    static constexpr Param kKeyAndFoundValue[] = {
        kKeyParam, {.byDefault = ParamDefault::undefined, .in = false, .out = true, .names = kValueTerm}};
    static constexpr Method<ValueStructure> kTable[] = {
        {kCollectTermCount, required(0), kFunction, &ValueStructure::callCount, &kNumberType},
        {kCollectTermInsert, kKeyAndOptionalValue, kProcedure, &ValueStructure::callInsert},
        {kCollectTermRemove, kOfKey, kProcedure, &ValueStructure::callDelete},
        {kCollectTermClear, required(0), kProcedure, &ValueStructure::callClear},
        {kStructureTermProperty, kKeyAndFoundValue, kFunction, &ValueStructure::callProperty, &kBooleanType},
    };
    return kTable;
}

namespace {

const ScriptClassEntry<ValueStructure> kValueStructureEntry;

} // namespace
} // namespace core
