// SPDX-License-Identifier: Apache-2.0
#include "core/runtime/memory/counted_block.h"
#include "core/values/primitive_types.h"
#include "core/values/value_hash.h"

#include <core/lists/list_out_stream.h>
#include <core/locales/bool_format.h>
#include <core/locales/date_format.h>
#include <core/locales/numeric_format.h>
#include <core/persistence/persistence.h>
#include <core/strings/compare.h>
#include <core/strings/names.h>
#include <core/strings/trim.h>
#include <core/values/primitive_values.h>

#include <cstring>
#include <new>

namespace core {
namespace {

/// Whether only white space is left of `text` behind `end`.
bool only_space_behind(wstring_view text, const wchar* end) noexcept {
    return trim_left(text.substr(static_cast<std::size_t>(end - text.data()))).empty();
}

/// A hash that is computed once, and is not 0. Another thread may compute and store the same meanwhile.
template <class Compute>
std::uint64_t cached_hash(std::atomic<std::uint64_t>& known, Compute compute) noexcept {
    std::uint64_t hash = known.load(std::memory_order_relaxed);
    if (hash == 0) {
        hash = compute();
        known.store(hash, std::memory_order_relaxed);
    }
    return hash;
}

template <class T>
void destroy_block(T* value, std::size_t size) noexcept {
    value->~T();
    detail::give_counted_block(value, size, live_counter<T>);
}

} // namespace

// What primitive values share

HRESULT PrimitiveValue::QueryInterface(const GUID& iid, void** out) noexcept {
    if (out == nullptr)
        return kNoInterface;
    *out = nullptr;
    if (iid == IValue::IID || iid == IUnknown::IID)
        *out = static_cast<IValue*>(this);
    else if (iid == IValueSerialize::IID)
        *out = static_cast<IValueSerialize*>(this);
    else
        return kNoInterface;
    acquire();
    return kOk;
}

bool PrimitiveValue::getBoolean(bool& out) const {
    out = false;
    return false;
}

bool PrimitiveValue::getNumeric(Numeric& out) const {
    out = Numeric();
    return false;
}

bool PrimitiveValue::getString(wstring& out) const {
    out.clear();
    return true;
}

bool PrimitiveValue::getDate(Date& out) const {
    out = Date();
    return false;
}

void PrimitiveValue::serialize(IOutPersistenceStorage*) const {}

// Undefined and Null

IType* UndefinedValue::getType() const noexcept {
    return detail::primitive_type(ValueKind::undefined);
}

std::int32_t UndefinedValue::hashCode() const noexcept {
    return 0x7FFFFFFF;
}

IType* NullValue::getType() const noexcept {
    return detail::primitive_type(ValueKind::null);
}

std::int32_t NullValue::hashCode() const noexcept {
    return 0x7FFFFFFE;
}

// Boolean

IType* BooleanValue::getType() const noexcept {
    return detail::primitive_type(ValueKind::boolean);
}

bool BooleanValue::getBoolean(bool& out) const {
    out = value_;
    return true;
}

bool BooleanValue::getString(wstring& out) const {
    out = default_bool_format().format(value_);
    return true;
}

std::int32_t BooleanValue::hashCode() const noexcept {
    return value_ ? 0x7FFFFFFD : 0x7FFFFFFC;
}

void BooleanValue::serialize(IOutPersistenceStorage* storage) const {
    storage->listStream().put(value_);
}

// Number

template <class T>
NumberValue::NumberValue(T&& value) noexcept
    : PrimitiveValue(Life::counted), value_(std::forward<T>(value)) {}

NumberValue* NumberValue::make(Numeric&& value) {
    return new (detail::take_counted_block(sizeof(NumberValue), live_counter<NumberValue>))
        NumberValue(std::move(value));
}

NumberValue* NumberValue::make(std::int64_t value) {
    return new (detail::take_counted_block(sizeof(NumberValue), live_counter<NumberValue>))
        NumberValue(value);
}

void NumberValue::destroy() noexcept {
    destroy_block(this, sizeof(NumberValue));
}

HRESULT NumberValue::QueryInterface(const GUID& iid, void** out) noexcept {
    if (out == nullptr || !(iid == IValueIsEmpty::IID))
        return PrimitiveValue::QueryInterface(iid, out);
    *out = static_cast<IValueIsEmpty*>(this);
    acquire();
    return kOk;
}

IType* NumberValue::getType() const noexcept {
    return detail::primitive_type(ValueKind::number);
}

bool NumberValue::getBoolean(bool& out) const {
    out = value_.sign() != 0;
    return true;
}

bool NumberValue::getNumeric(Numeric& out) const {
    out = value_;
    return true;
}

bool NumberValue::getString(wstring& out) const {
    default_numeric_format().format(value_, out);
    return true;
}

bool NumberValue::isEqual(const IValue* other) const noexcept {
    return other != nullptr && other->getType() == getType() &&
           value_ == *static_cast<const Numeric*>(other->getDataPtr());
}

void NumberValue::serialize(IOutPersistenceStorage* storage) const {
    storage->listStream().put(value_);
}

// String

StringValue::StringValue(wstring_view text) noexcept : PrimitiveValue(Life::counted) {
    auto* const units = reinterpret_cast<wchar*>(this + 1);
    std::memcpy(units, text.data(), text.size() * sizeof(wchar));
    units[text.size()] = u'\0';
    text_ = wstring_view(units, text.size());
}

namespace {

constexpr std::size_t string_block_size(std::size_t length) noexcept {
    return sizeof(StringValue) + (length + 1) * sizeof(wchar);
}

} // namespace

StringValue* StringValue::make(wstring_view text) {
    return new (detail::take_counted_block(string_block_size(text.size()), live_counter<StringValue>))
        StringValue(text);
}

void StringValue::destroy() noexcept {
    destroy_block(this, string_block_size(text_.size()));
}

IType* StringValue::getType() const noexcept {
    return detail::primitive_type(ValueKind::string);
}

bool StringValue::getBoolean(bool& out) const {
    const wchar* end = text_.data();
    if (default_bool_format().parse(text_, out, &end) && only_space_behind(text_, end))
        return true;
    out = false;
    const wstring_view word = trim_all(text_);
    const auto is = [&](wstring_view known) { return compare_nocase(word, known) == 0; };
    if (is(u"True") || is(u"Истина")) {
        out = true;
        return true;
    }
    return is(u"False") || is(u"Ложь");
}

bool StringValue::getNumeric(Numeric& out) const {
    const wchar* end = text_.data();
    if (default_numeric_format().parse(text_, out, &end) && only_space_behind(text_, end))
        return true;
    out = Numeric::fromString(text_, &end);
    if (end != text_.data() && only_space_behind(text_, end))
        return true;
    out = Numeric();
    return false;
}

bool StringValue::getString(wstring& out) const {
    out = text_;
    return true;
}

bool StringValue::getDate(Date& out) const {
    const wchar* end = text_.data();
    if (default_date_format().parse(text_, out, &end) && only_space_behind(text_, end))
        return true;
    out = Date::fromString(text_, &end);
    if (end != text_.data() && only_space_behind(text_, end))
        return true;
    out = Date();
    return false;
}

bool StringValue::isEqual(const IValue* other) const noexcept {
    return other != nullptr && other->getType() == getType() &&
           text_ == *static_cast<const wstring_view*>(other->getDataPtr());
}

std::int32_t StringValue::hashCode() const noexcept {
    return hash_folded(text_); // the plain rule, on the units as they are
}

std::uint64_t StringValue::tableHash() const noexcept {
    return cached_hash(tableHash_, [this] { return text_table_hash(text_); });
}

std::uint64_t StringValue::nameHash() const noexcept {
    constexpr std::uint64_t kNoName = 1; // hashes of names are even
    const std::uint64_t hash =
        cached_hash(nameHash_, [this] { return is_valid_name(text_) ? name_table_hash(text_) : kNoName; });
    return hash == kNoName ? 0 : hash;
}

void StringValue::serialize(IOutPersistenceStorage* storage) const {
    storage->listStream().put(text_);
}

// Date

DateValue::DateValue(Date value) noexcept : PrimitiveValue(Life::counted), value_(value) {}

DateValue* DateValue::make(Date value) {
    return new (detail::take_counted_block(sizeof(DateValue), live_counter<DateValue>)) DateValue(value);
}

void DateValue::destroy() noexcept {
    destroy_block(this, sizeof(DateValue));
}

HRESULT DateValue::QueryInterface(const GUID& iid, void** out) noexcept {
    if (out == nullptr || !(iid == IValueIsEmpty::IID))
        return PrimitiveValue::QueryInterface(iid, out);
    *out = static_cast<IValueIsEmpty*>(this);
    acquire();
    return kOk;
}

IType* DateValue::getType() const noexcept {
    return detail::primitive_type(ValueKind::date);
}

bool DateValue::getString(wstring& out) const {
    default_date_format().format(value_, out);
    return true;
}

bool DateValue::getDate(Date& out) const {
    out = value_;
    return true;
}

bool DateValue::isEqual(const IValue* other) const noexcept {
    return other != nullptr && other->getType() == getType() &&
           value_ == *static_cast<const Date*>(other->getDataPtr());
}

std::int32_t DateValue::hashCode() const noexcept {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(value_.ticks() / 10000));
}

void DateValue::serialize(IOutPersistenceStorage* storage) const {
    storage->listStream().put(value_);
}

// Type

TypeValue::TypeValue(const Type& value) noexcept : PrimitiveValue(Life::counted), value_(value) {
    if (value_.isDefined())
        value_.get()->AddRef(); // the module of the type stays loaded
}

TypeValue* TypeValue::make(const Type& value) {
    return new (detail::take_counted_block(sizeof(TypeValue), live_counter<TypeValue>)) TypeValue(value);
}

void TypeValue::destroy() noexcept {
    if (value_.isDefined())
        value_.get()->Release();
    destroy_block(this, sizeof(TypeValue));
}

IType* TypeValue::getType() const noexcept {
    return detail::primitive_type(ValueKind::type);
}

bool TypeValue::getString(wstring& out) const {
    out = value_.presentation();
    return true;
}

bool TypeValue::isEqual(const IValue* other) const noexcept {
    return other != nullptr && other->getType() == getType() &&
           value_ == *static_cast<const Type*>(other->getDataPtr());
}

std::int32_t TypeValue::hashCode() const noexcept {
    return static_cast<std::int32_t>(value_.id().data1);
}

void TypeValue::serialize(IOutPersistenceStorage* storage) const {
    storage->listStream().put(value_.id());
}

} // namespace core
