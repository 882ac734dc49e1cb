// SPDX-License-Identifier: Apache-2.0
#include "core/containers/stored_value_impl.h"
#include "core/lists/malformed.h"

#include <core/containers/errors.h>
#include <core/files/url.h>
#include <core/lists/list_in_stream.h>
#include <core/lists/list_out_stream.h>

namespace core {
namespace {

constexpr EnumerationItem kForms[] = {
    {{u"Text", u"Текст"}, "IDS_VALUE_FORMS_TEXT", 0},
    {{u"Compact", u"Компактная"}, "IDS_VALUE_FORMS_COMPACT", 1},
    {{u"Parts", u"ПоЧастям"}, "IDS_VALUE_FORMS_PARTS", 2},
};
constexpr EnumerationInfo kFormsInfo = {
    .type = {.id = "d8e3a594-eded-4207-809e-ee04c14e0a30"_guid,
             .valueClass = "66b355cc-05b1-485e-b046-3b3a418f885a"_guid,
             .names = {u"ValueForms", u"ФормыЗначений"},
             .presentation = "IDS_VALUE_FORMS"},
    .factory = "ddee041e-5425-440c-b7f8-a8b93bb4b509"_guid,
    .items = kForms,
};
const EnumerationEntry<kFormsInfo> kFormsEntry("ValueForms");

const ScriptClassEntry<StoredValue> kStoredValueEntry;

/// What a body begins with.
enum class Place : std::int32_t { here, inPart };

} // namespace

Enumeration* script_enumeration(ValueForm) noexcept {
    return kFormsEntry.instance();
}

InterfacePtr<IStoredValue> create_stored_value(Value value) {
    return make_object<StoredValue>(std::move(value));
}

/// New StoredValue(), or of a value.
GenericValue StoredValue::construct(std::span<GenericValue> arguments) {
    return make_object<StoredValue>(arguments.empty() ? Value() : Value(arguments[0]));
}

const Value& StoredValue::value() const {
    if (!isLoaded_) {
        const std::vector<std::byte> content = source_->storage().get(part_);
        try {
            value_ = value_of_content(content, source_);
        } catch (const Exception& e) { // which does not know where the bytes are from
            throw_error<ContextException>(messages::kContainerNoValue,
                                          {shown_url(source_->storage().rootURL() + part_), e.description()});
        }
        isLoaded_ = true;
    }
    return value_;
}

void StoredValue::setValue(Value value) {
    isLoaded_ = true;
    swap(value_, value);
}

void StoredValue::serialize(IOutPersistenceStorage* storage) const {
    ListOutStream& out = storage->listStream();
    out.putBeginOfList();
    if (const InterfacePtr<IOutParts> parts(storage); parts) {
        out.put(static_cast<std::int32_t>(Place::inPart));
        out.put(parts->partOf(*this));
    } else {
        out.put(static_cast<std::int32_t>(Place::here));
        serialize_value(storage, value());
    }
    out.putEndOfList();
}

void StoredValue::deserialize(IInPersistenceStorage* storage) {
    static_cast<void>(load(storage));
}

GenericValue StoredValue::load(IInPersistenceStorage* storage) {
    ListInStream& in = storage->listStream();
    std::int32_t place = 0;
    in.getBeginOfList();
    in.get(place);
    if (place == static_cast<std::int32_t>(Place::here)) {
        GenericValue value = GenericValue::deserialize(storage);
        in.getEndOfList();
        setValue(std::move(value));
        return Value(this);
    }
    if (place != static_cast<std::int32_t>(Place::inPart))
        throw_malformed();
    wstring part;
    in.get(part);
    in.getEndOfList();
    const InterfacePtr<IInParts> parts(storage);
    if (!parts)
        throw_error<ContextException>(messages::kPartElsewhere, {part});
    const PartSourcePtr& source = parts->source();
    if (StoredValue* const same = source->find(part))
        return Value(same);
    source->enter(part, *this);
    leave(); // what it stood for before
    part_.swap(part);
    source_ = source;
    isLoaded_ = false;
    value_ = Value();
    return Value(this);
}

} // namespace core
