// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/values/primitive_values.h>

#include <concepts>
#include <cstdint>
#include <limits>
#include <optional>
#include <utility>

namespace core {

/// What a value is, where the difference matters to code.
enum class ValueKind : std::uint8_t { undefined, null, boolean, number, string, date, type, object };

/// The payload of a Number, to be used as a pointer to it would be: null when there is none. Either borrowed
/// from the Number's object or made for the occasion, so it is not to be kept longer than the value.
class NumericRef {
  public:
    NumericRef() noexcept = default;
    explicit NumericRef(const Numeric& number) noexcept : number_(&number) {}
    explicit NumericRef(std::int64_t whole) noexcept : number_(&made_.emplace(whole)) {}
    NumericRef(const NumericRef&) = delete;
    NumericRef& operator=(const NumericRef&) = delete;

    const Numeric& operator*() const noexcept { return *number_; }
    const Numeric* operator->() const noexcept { return number_; }
    explicit operator bool() const noexcept { return number_ != nullptr; }
    friend bool operator==(const NumericRef& ref, std::nullptr_t) noexcept { return ref.number_ == nullptr; }

  private:
    std::optional<Numeric> made_;
    const Numeric* number_ = nullptr;
};

/// Holds one value, never none: a null pointer becomes Undefined.
///
/// One word, in whose lowest bits the kind stands, so that telling kinds apart and reading primitive
/// values touch no more than the payload. Undefined, Null, the Booleans and whole numbers of up to 60
/// bits are the word alone; an object is made of such a number when one is asked for. Copies count,
/// moves do not and leave Undefined.
class CORE_API Value {
  public:
    Value() = default;
    template <std::same_as<bool> T>
    Value(T value) noexcept : bits_(tag(ValueKind::boolean) | (value ? kTrueBit : 0)) {}
    template <NumericInteger T>
    Value(T value) : bits_(make(value)) {}
    /// NumericException (overflow) for infinities and NaN.
    Value(double value);
    Value(wchar) = delete; // a character is not a number
    Value(const Numeric& value) : Value(Numeric(value)) {}
    Value(Numeric&& value);
    Value(wstring_view text);
    Value(const wstring& text) : Value(wstring_view(text)) {}
    /// Zero-terminated; null gives the empty string.
    Value(const wchar* text) : Value(text != nullptr ? wstring_view(text) : wstring_view()) {}
    Value(Date value);
    Value(const Type& type);
    /// Takes a reference of its own.
    Value(IValue* value);
    template <std::derived_from<IValue> T>
    Value(const InterfacePtr<T>& value) : Value(static_cast<IValue*>(value.get())) {}
    Value(std::nullptr_t) noexcept {}

    Value(const Value& other) noexcept : bits_(other.bits_) { acquire(); }
    Value(Value&& other) noexcept : bits_(std::exchange(other.bits_, 0)) {}
    ~Value() { release(); }
    Value& operator=(const Value& other) noexcept {
        other.acquire(); // before release: both may be one object's
        release();
        bits_ = other.bits_;
        return *this;
    }
    Value& operator=(Value&& other) noexcept {
        Value taken(std::move(other));
        std::swap(bits_, taken.bits_);
        return *this;
    }

    [[nodiscard]] static Value null() noexcept { return Value(Bits{tag(ValueKind::null)}); }

    // modify
    /// Holds `value`, or Undefined for null. Takes the new reference before it releases the old one.
    void setIValue(IValue* value) { *this = Value(value); }
    friend void swap(Value& a, Value& b) noexcept { std::swap(a.bits_, b.bits_); }

    // inspect
    [[nodiscard]] ValueKind kind() const noexcept { return static_cast<ValueKind>(bits_ & kTagMask); }
    [[nodiscard]] bool isUndefined() const noexcept { return bits_ == 0; }
    [[nodiscard]] bool isObject() const noexcept { return kind() == ValueKind::object; }
    /// The payload when the value is of that kind, else null. Borrowed from the value.
    [[nodiscard]] NumericRef asNumeric() const noexcept {
        if (inWord())
            return NumericRef(whole());
        return kind() == ValueKind::number ? NumericRef(number()->payload()) : NumericRef();
    }
    /// The number that the word itself holds, the quickest way to one. Empty for other values, among them
    /// Numbers that were given as objects.
    [[nodiscard]] std::optional<std::int64_t> asSmallWhole() const noexcept {
        return inWord() ? std::optional(whole()) : std::nullopt;
    }
    [[nodiscard]] const Date* asDate() const noexcept {
        return kind() == ValueKind::date ? &as<DateValue>()->payload() : nullptr;
    }
    [[nodiscard]] const Type* asType() const noexcept {
        return kind() == ValueKind::type ? &as<TypeValue>()->payload() : nullptr;
    }
    [[nodiscard]] const wstring_view* asString() const noexcept {
        return kind() == ValueKind::string ? static_cast<const wstring_view*>(string()->getDataPtr())
                                           : nullptr;
    }
    [[nodiscard]] bool isTrue() const noexcept { return bits_ == (tag(ValueKind::boolean) | kTrueBit); }
    [[nodiscard]] bool isFalse() const noexcept { return bits_ == tag(ValueKind::boolean); }
    /// The interface `T` of an object value with a reference; null for primitive values
    /// and for objects without it.
    template <Interface T>
    [[nodiscard]] InterfacePtr<T> query() const noexcept {
        return isObject() ? InterfacePtr<T>(object()) : InterfacePtr<T>();
    }
    /// The value as an object, never null.
    [[nodiscard]] InterfacePtr<IValue> getIValue() const {
        return inWord() ? makeObject() : InterfacePtr<IValue>(object());
    }
    /// The object behind the value, borrowed; null for a Number without one.
    [[nodiscard]] IValue* object() const noexcept;
    [[nodiscard]] Type type() const noexcept;

    // read: true when the value has such a reading, see IValue
    bool getBoolean(bool& out) const {
        if (!inWord())
            return object()->getBoolean(out);
        out = whole() != 0;
        return true;
    }
    bool getNumeric(Numeric& out) const {
        if (!inWord())
            return object()->getNumeric(out);
        out = whole();
        return true;
    }
    bool getString(wstring& out) const {
        return inWord() ? makeObject()->getString(out) : object()->getString(out);
    }
    bool getDate(Date& out) const { return inWord() ? makeObject()->getDate(out) : object()->getDate(out); }
    /// The string reading.
    [[nodiscard]] wstring presentation() const {
        wstring text;
        getString(text);
        return text;
    }

    // compare
    [[nodiscard]] std::int32_t hashCode() const noexcept;
    [[nodiscard]] bool equals(const Value& other) const noexcept;
    [[nodiscard]] bool equals(const IValue* other) const noexcept;
    friend bool operator==(const Value& a, const Value& b) noexcept { return a.equals(b); }

  private:
    enum class Bits : std::uintptr_t {};
    static constexpr std::uintptr_t kTagMask = 7;
    static constexpr std::uintptr_t kTrueBit = 8;
    static constexpr std::uintptr_t kWholeBit = 8; // of a Number; never set in the address of its object
    static constexpr std::uintptr_t kWholeTag = static_cast<std::uintptr_t>(ValueKind::number) | kWholeBit;
    static constexpr int kWholeShift = 4;
    static constexpr std::int64_t kMostInWord = std::numeric_limits<std::intptr_t>::max() >> kWholeShift;

    explicit Value(Bits bits) noexcept : bits_(static_cast<std::uintptr_t>(bits)) {}
    static constexpr std::uintptr_t tag(ValueKind kind) noexcept { return static_cast<std::uintptr_t>(kind); }

    template <NumericInteger T>
    static std::uintptr_t make(T value) {
        if constexpr (std::is_unsigned_v<T> && sizeof(T) == sizeof(std::uint64_t)) {
            if (value > static_cast<std::uint64_t>(kMostInWord))
                return makeBoxed(Numeric(value));
        }
        return makeWhole(static_cast<std::int64_t>(value));
    }
    static std::uintptr_t makeWhole(std::int64_t value) {
        if (value > kMostInWord || value < -kMostInWord)
            return makeBoxed(Numeric(value));
        return static_cast<std::uintptr_t>(value) << kWholeShift | kWholeTag;
    }
    static std::uintptr_t makeBoxed(Numeric&& value);
    [[nodiscard]] InterfacePtr<IValue> makeObject() const;

    /// Whether the value is a Number without an object.
    [[nodiscard]] bool inWord() const noexcept { return (bits_ & (kTagMask | kWholeBit)) == kWholeTag; }
    [[nodiscard]] std::int64_t whole() const noexcept {
        return static_cast<std::intptr_t>(bits_) >> kWholeShift;
    }
    [[nodiscard]] bool counted() const noexcept {
        return (bits_ & kTagMask) >= tag(ValueKind::number) && !inWord();
    }
    template <class T>
    [[nodiscard]] T* as() const noexcept {
        return static_cast<T*>(primitive());
    }
    [[nodiscard]] PrimitiveValue* primitive() const noexcept {
        return static_cast<PrimitiveValue*>(reinterpret_cast<IValue*>(bits_ & ~kTagMask));
    }
    [[nodiscard]] NumberValue* number() const noexcept { return as<NumberValue>(); }
    [[nodiscard]] StringValue* string() const noexcept { return as<StringValue>(); }

    void acquire() const noexcept {
        if (counted())
            isObject() ? static_cast<void>(object()->AddRef()) : static_cast<void>(primitive()->acquire());
    }
    void release() noexcept {
        if (counted())
            isObject() ? static_cast<void>(object()->Release()) : static_cast<void>(primitive()->release());
    }

    std::uintptr_t bits_ = 0;
};

/// Key functors of tables keyed by values: the value's own hash and equality.
struct GenericValueHash {
    std::size_t operator()(const Value& value) const noexcept {
        return static_cast<std::size_t>(static_cast<std::uint32_t>(value.hashCode()));
    }
};
struct GenericValueCompare {
    bool operator()(const Value& a, const Value& b) const noexcept { return a.equals(b); }
};

/// The order of values: negative, 0, positive. Kinds first (Undefined, Null, Boolean, Number, String, Date,
/// Type, objects), then within a kind: false before true, numbers and dates by size, strings by the collation
/// of the process's locale with ties by code units, types and objects by presentation.
[[nodiscard]] CORE_API int compare_values(const Value& a, const Value& b);

} // namespace core
