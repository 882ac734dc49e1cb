// SPDX-License-Identifier: Apache-2.0
#include "core/tables/query/expression_node.h"

#include <core/collections/value_map.h>
#include <core/collections/value_structure.h>
#include <core/context/script_object.h>
#include <core/objects/standard_periods.h>
#include <core/tables/filter.h>

namespace core {
namespace {

/// Equal conditions have equal hashes. Needs no memory.
std::uint32_t hash_of(const ExpressionNode& node) noexcept {
    std::uint32_t hash =
        static_cast<std::uint32_t>(node.kind) * 31 + static_cast<std::uint32_t>(node.value.hashCode());
    for (const wchar unit : node.name)
        hash = hash * 31 + unit;
    for (const ExpressionPtr& operand : node.operands)
        hash = hash * 31 + hash_of(*operand);
    return hash;
}

class FilterObject : public ScriptObject<FilterObject, IPersistableObject> {
  public:
    static constexpr ScriptClass script = {
        .names = {u"Filter", u"Отбор"},
        .type = kFilterType,
        .object = kFilterClass,
        .presentation = "IDS_TYPE_PRESENTATION_FILTER",
        .arguments = {0, 3},
    };

    explicit FilterObject(Filter filter = {}) noexcept : filter_(std::move(filter)) {}

    /// New Filter(Text, [Parameters]), or Filter(Column, [Comparison], Value).
    static GenericValue construct(std::span<GenericValue> arguments) {
        if (arguments.empty())
            return make_object<FilterObject>();
        if (arguments.size() == 1)
            return make_object<FilterObject>(from_value<Filter>(arguments[0]));
        const auto first = from_value<wstring_view>(arguments[0]);
        if (arguments.size() == 3)
            return make_object<FilterObject>(Filter::where(
                first, from_value<wstring_view>(arguments[1], ValueReceiver::parameter(1)), arguments[2]));
        if (const InterfacePtr<IValuePairs> pairs = parameters(arguments[1]))
            return make_object<FilterObject>(Filter(first, read(*pairs)));
        const wstring_view comparison = as_standard_period(arguments[1]) != nullptr ? u"In" : u"=";
        return make_object<FilterObject>(Filter::where(first, comparison, arguments[1]));
    }
    static auto members() {
        using T = FilterObject;
        return core::members(
            property(u"Text", u"Текст", &T::text), method(u"And", u"И", &T::both, {u"Filter", u"Отбор"}),
            method(u"Or", u"Или", &T::either, {u"Filter", u"Отбор"}), method(u"Not", u"Не", &T::opposite));
    }

    wstring text() const { return filter_.text(); }
    Filter both(const Filter& other) const { return filter_ && other; }
    Filter either(const Filter& other) const { return filter_ || other; }
    Filter opposite() const { return !filter_; }
    [[nodiscard]] const Filter& filter() const noexcept { return filter_; }

    // IValue
    bool getString(wstring& out) const override {
        out = text();
        return true;
    }
    bool isEqual(const IValue* other) const noexcept override {
        const FilterObject* const same = of(other);
        return same != nullptr && same->filter_ == filter_;
    }
    std::int32_t hashCode() const noexcept override {
        const ExpressionNode* const condition = filter_.condition();
        return condition != nullptr ? static_cast<std::int32_t>(hash_of(*condition)) : 0;
    }

    // IPersistableObject
    void serialize(IOutPersistenceStorage* storage) const override { filter_.serialize(storage); }
    void deserialize(IInPersistenceStorage* storage) override { filter_ = Filter::deserialize(storage); }

  private:
    static InterfacePtr<IValuePairs> parameters(const Value& value) {
        if (const auto structure = value.query<IValueStructure>())
            return structure;
        return value.query<IValueMap>();
    }
    static ExpressionParameters read(const IValuePairs& pairs) {
        ExpressionParameters parameters;
        std::size_t position = 0;
        for (IValuePairs::View pair; pairs.next(position, pair);)
            parameters.push_back({pair.key->presentation(), *pair.value});
        return parameters;
    }

    Filter filter_;
};

const ScriptClassEntry<FilterObject> kFilterObjectEntry;

/// The columns of a structure equal its values.
Filter equalities(const IValueStructure& structure) {
    Filter filter;
    std::size_t position = 0;
    for (IValuePairs::View pair; structure.next(position, pair);)
        filter = filter && Filter::where(*pair.key->asString(), u"=", *pair.value);
    return filter;
}

} // namespace

Filter NativeValue<Filter>::from(const Value& value, ValueReceiver receiver) {
    if (const FilterObject* const object = FilterObject::of(value))
        return object->filter();
    if (const wstring_view* const text = value.asString())
        return Filter(*text);
    const auto structure = value.query<IValueStructure>();
    if (!structure)
        receiver.refuseType();
    return equalities(*structure);
}

Value NativeValue<Filter>::to(const Filter& filter) {
    return make_object<FilterObject>(filter);
}

} // namespace core
