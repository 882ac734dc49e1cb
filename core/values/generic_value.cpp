// SPDX-License-Identifier: Apache-2.0
#include "core/lists/malformed.h"
#include "core/values/compact_value.h"
#include "core/values/value_run.h"

#include <core/lists/list_in_stream.h>
#include <core/lists/list_out_stream.h>
#include <core/persistence/persistence.h>
#include <core/runtime/process.h>
#include <core/runtime/utf8.h>
#include <core/streams/memory_stream.h>
#include <core/values/errors.h>
#include <core/values/value_file.h>

#include <ostream>

namespace core {
namespace {

/// The tag of each kind in the order of ValueKind.
constexpr wchar kTags[] = u"ULBNSDT#";

wchar tag_of(ValueKind kind) noexcept {
    return kTags[static_cast<std::size_t>(kind)];
}

void serialize_object(IOutPersistenceStorage* storage, const Value& value) {
    const auto object = value.query<IPersistableObject>();
    if (!object)
        throw_error<ContextException>(messages::kNotSerializable, {value.type().presentation()});
    storage->listStream().put(object->getCLSID());
    object->serialize(storage);
}

GenericValue deserialize_object(IInPersistenceStorage* storage) {
    GUID clsid;
    storage->listStream().get(clsid);
    const auto made = create_object<IUnknown>(clsid);
    if (const auto loader = made.query<IValueLoader>(); loader)
        return loader->load(storage);
    const auto object = made.query<IPersistableObject>();
    const auto value = made.query<IValue>();
    if (!object || !value)
        throw_error<TypeException>(messages::kTypeNotDefined, {to_string(clsid)});
    object->deserialize(storage);
    return GenericValue(value);
}

template <class T>
GenericValue get_payload(ListInStream& in) {
    T payload{};
    in.get(payload);
    return GenericValue(std::move(payload));
}

GenericValue get_payload_of(wchar tag, IInPersistenceStorage* storage) {
    ListInStream& in = storage->listStream();
    switch (tag) {
    case u'U':
        return {};
    case u'L':
        return Value::null();
    case u'B':
        return get_payload<bool>(in);
    case u'N':
        return get_payload<Numeric>(in);
    case u'S':
        return get_payload<wstring>(in);
    case u'D':
        return get_payload<Date>(in);
    case u'T': {
        GUID id;
        in.get(id);
        return GenericValue(id == kNullGuid ? Type() : Type(id)); // a Type may be none
    }
    case u'#':
        return deserialize_object(storage);
    default:
        throw_malformed();
    }
}

} // namespace

void serialize_value(IOutPersistenceStorage* storage, const Value& value) {
    const Nesting::Level level(storage->nesting());
    ListOutStream& out = storage->listStream();
    if (detail::CompactWriter* const compact = detail::ListRun::compact(out)) {
        if (!detail::put_compact(*compact, value)) {
            compact->putToken(detail::CompactToken::object);
            serialize_object(storage, value);
        }
        return;
    }
    if (detail::put_in_run(out, value, tag_of(value.kind())))
        return;
    out.putBeginOfList();
    const wchar tag = tag_of(value.kind());
    out.put(wstring_view(&tag, 1));
    switch (value.kind()) {
    case ValueKind::undefined:
    case ValueKind::null:
        break;
    case ValueKind::boolean:
        out.put(value.isTrue());
        break;
    case ValueKind::number:
        if (const auto whole = value.asSmallWhole())
            out.put(*whole);
        else
            out.put(*value.asNumeric());
        break;
    case ValueKind::string:
        out.put(*value.asString());
        break;
    case ValueKind::date:
        out.put(*value.asDate());
        break;
    case ValueKind::type:
        out.put(value.asType()->id());
        break;
    case ValueKind::object:
        serialize_object(storage, value);
    }
    out.putEndOfList();
}

GenericValue GenericValue::deserialize(IInPersistenceStorage* storage) {
    const Nesting::Level level(storage->nesting());
    ListInStream& in = storage->listStream();
    GenericValue value;
    if (detail::CompactReader* const compact = detail::ListRun::compact(in)) {
        if (detail::get_compact(*compact, value))
            return value;
        compact->expect(detail::CompactToken::object);
        return deserialize_object(storage);
    }
    if (detail::get_in_run(in, value))
        return value;
    in.getBeginOfList();
    wchar tag[2] = {};
    in.get(tag, 2);
    value = get_payload_of(tag[0], storage);
    in.getEndOfList();
    return value;
}

void detail::write_presentation(std::ostream& out, const Value& value) {
    out << to_utf8(value.presentation());
}

void GenericValue::toString(wstring& text) const {
    MemoryOutStream memory;
    ListOutStream out(memory);
    ListOutStorage storage(out);
    serialize(&storage);
    text = memory.take();
}

GenericValue GenericValue::fromString(wstring_view text) {
    MemoryInStream memory(text);
    ListInStream in(memory);
    ListInStorage storage(in);
    GenericValue value = deserialize(&storage);
    skip_spaces(memory);
    if (memory.peek() != MemoryInStream::traits_type::eof())
        throw_malformed();
    return value;
}

std::vector<std::byte> GenericValue::toBytes() const {
    std::vector<std::byte> bytes;
    StreamOutStorage storage(StoredForm::compact, [&bytes](std::span<const std::byte> part) {
        bytes.insert(bytes.end(), part.begin(), part.end());
    });
    serialize(&storage);
    storage.finish();
    return bytes;
}

GenericValue GenericValue::fromBytes(std::span<const std::byte> bytes) {
    StreamInStorage storage(bytes);
    GenericValue value = deserialize(&storage);
    storage.finish();
    return value;
}

void write_value(IFile& file, const Value& value, StoredForm form) {
    StreamOutStorage storage(form, file);
    serialize_value(&storage, value);
    storage.finish();
}

GenericValue read_value(IFile& file) {
    StreamInStorage storage(file);
    GenericValue value = GenericValue::deserialize(&storage);
    storage.finish();
    return value;
}

} // namespace core
