// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/values/numeric_ref.h>
#include <core/values/primitive_values.h>

#include <concepts>
#include <cstdint>
#include <limits>
#include <optional>
#include <utility>

namespace core {

/// What a value is, where the difference matters to code.
enum class ValueKind : std::uint8_t {
    undefined, ///< Undefined
    null,      ///< Null
    boolean,   ///< a Boolean
    number,    ///< a Number
    string,    ///< a String
    date,      ///< a Date
    type,      ///< a type as a value
    object     ///< every other object, other modules' primitive values among them
};

/// Holds one value, never none: a null pointer becomes Undefined.
///
/// One word, in whose lowest bits the kind stands, so that telling kinds apart and reading primitive
/// values touch no more than the payload. Undefined, Null, the Booleans and whole numbers of up to 60
/// bits are the word alone; an object is made of such a number when one is asked for. Copies count,
/// moves do not and leave Undefined.
class CORE_API Value {
  public:
    /// Holds Undefined.
    Value() = default;
    /// Holds a Boolean.
    template <std::same_as<bool> T>
    Value(T value) noexcept : bits_(tag(ValueKind::boolean) | (value ? kTrueBit : 0)) {}
    /// Holds a Number. Throws std::bad_alloc for one that does not fit the word.
    template <NumericInteger T>
    Value(T value) : bits_(make(value)) {}
    /// Holds the shortest decimal that reads back to `value`. Throws NumericException for infinities and NaN.
    Value(double value);
    /// Holds the shortest decimal that reads back to `value`. Throws NumericException for infinities and NaN.
    Value(long double value) : Value(Numeric(value)) {}
    /// Refuses a character, which is not a number.
    Value(wchar) = delete;
    /// Holds a copy of a number.
    Value(const Numeric& value) : Value(Numeric(value)) {}
    /// Holds a number, which is moved from.
    Value(Numeric&& value);
    /// Holds a String with a copy of `text`.
    Value(wstring_view text);
    /// Holds a String with a copy of `text`.
    Value(const wstring& text) : Value(wstring_view(text)) {}
    /// Holds a String with a copy of the units before the null unit. Null gives the empty string.
    Value(const wchar* text) : Value(text != nullptr ? wstring_view(text) : wstring_view()) {}
    /// Holds a Date.
    Value(Date value);
    /// Holds a type, or none, as a value.
    Value(const Type& type);
    /// Holds an object, of which it takes a reference of its own; null gives Undefined.
    Value(IValue* value);
    /// Holds an object, as above.
    template <std::derived_from<IValue> T>
    Value(const InterfacePtr<T>& value) : Value(static_cast<IValue*>(value.get())) {}
    /// Holds Undefined.
    Value(std::nullptr_t) noexcept {}

    /// Holds what `other` holds.
    Value(const Value& other) noexcept : bits_(other.bits_) { acquire(); }
    /// Takes what `other` holds and leaves Undefined there.
    Value(Value&& other) noexcept : bits_(std::exchange(other.bits_, 0)) {}
    /// Lets go of the object that it holds.
    ~Value() { release(); }
    /// Holds what `other` holds; the old object is let go of last.
    Value& operator=(const Value& other) noexcept {
        other.acquire(); // before release: both may be one object's
        release();
        bits_ = other.bits_;
        return *this;
    }
    /// Takes what `other` holds and leaves Undefined there.
    Value& operator=(Value&& other) noexcept {
        Value taken(std::move(other));
        std::swap(bits_, taken.bits_);
        return *this;
    }

    /// Returns Null.
    [[nodiscard]] static Value null() noexcept { return Value(Bits{tag(ValueKind::null)}); }

    // modify

    /// Holds `value`, or Undefined for null. It takes the new reference before it releases the old one.
    void setIValue(IValue* value) { *this = Value(value); }
    /// Exchanges what two values hold.
    friend void swap(Value& a, Value& b) noexcept { std::swap(a.bits_, b.bits_); }

    // inspect

    /// Returns the kind of the value.
    [[nodiscard]] ValueKind kind() const noexcept { return static_cast<ValueKind>(bits_ & kTagMask); }
    /// Returns whether the value is Undefined.
    [[nodiscard]] bool isUndefined() const noexcept { return bits_ == 0; }
    /// Returns whether the value is an object, not a primitive value of the library.
    [[nodiscard]] bool isObject() const noexcept { return kind() == ValueKind::object; }
    /// Returns the number of a Number, else null; borrowed as long as the value and the result live.
    [[nodiscard]] NumericRef asNumeric() const noexcept {
        if (inWord())
            return NumericRef(whole());
        return kind() == ValueKind::number ? NumericRef(number()->payload()) : NumericRef();
    }
    /// Returns the number that the word itself holds, the quickest way to one. Empty for other values,
    /// Numbers that were given as objects among them.
    [[nodiscard]] std::optional<std::int64_t> asSmallWhole() const noexcept {
        return inWord() ? std::optional(whole()) : std::nullopt;
    }
    /// Returns the date of a Date, else null; borrowed as long as the value lives.
    [[nodiscard]] const Date* asDate() const noexcept {
        return kind() == ValueKind::date ? &as<DateValue>()->payload() : nullptr;
    }
    /// Returns the type of a Type, else null; borrowed as long as the value lives.
    [[nodiscard]] const Type* asType() const noexcept {
        return kind() == ValueKind::type ? &as<TypeValue>()->payload() : nullptr;
    }
    /// Returns the text of a String, else null; borrowed as long as the value lives.
    [[nodiscard]] const wstring_view* asString() const noexcept {
        return kind() == ValueKind::string ? static_cast<const wstring_view*>(string()->getDataPtr())
                                           : nullptr;
    }
    /// Returns whether the value is the Boolean true.
    [[nodiscard]] bool isTrue() const noexcept { return bits_ == (tag(ValueKind::boolean) | kTrueBit); }
    /// Returns whether the value is the Boolean false.
    [[nodiscard]] bool isFalse() const noexcept { return bits_ == tag(ValueKind::boolean); }
    /// Returns the interface `T` of an object with a reference; null for primitive values and for objects
    /// without it.
    template <Interface T>
    [[nodiscard]] InterfacePtr<T> query() const noexcept {
        return isObject() ? InterfacePtr<T>(object()) : InterfacePtr<T>();
    }
    /// Returns the value as an object with a reference, never null. Throws std::bad_alloc.
    [[nodiscard]] InterfacePtr<IValue> getIValue() const {
        return inWord() ? makeObject() : InterfacePtr<IValue>(object());
    }
    /// Returns the object behind the value, borrowed as long as the value lives; null for a Number without
    /// one.
    [[nodiscard]] IValue* object() const noexcept {
        return counted() ? reinterpret_cast<IValue*>(bits_ & ~kTagMask) : sharedObject();
    }
    /// Returns the type of the value.
    [[nodiscard]] Type type() const noexcept;

    // read

    /// Sets the Boolean reading and returns true; sets false and returns false when the value has none.
    bool getBoolean(bool& out) const {
        if (!inWord())
            return object()->getBoolean(out);
        out = whole() != 0;
        return true;
    }
    /// Sets the numeric reading and returns true; sets zero and returns false when the value has none.
    bool getNumeric(Numeric& out) const {
        if (!inWord())
            return object()->getNumeric(out);
        out = whole();
        return true;
    }
    /// Sets the presentation, which may be empty, and returns true.
    bool getString(wstring& out) const {
        return inWord() ? makeObject()->getString(out) : object()->getString(out);
    }
    /// Sets the date reading and returns true; sets the empty date and returns false when the value has none.
    bool getDate(Date& out) const { return inWord() ? makeObject()->getDate(out) : object()->getDate(out); }
    /// Returns the presentation, which may be empty.
    [[nodiscard]] wstring presentation() const {
        wstring text;
        getString(text);
        return text;
    }

    // compare

    /// Returns a hash; equal values have equal ones.
    [[nodiscard]] std::int32_t hashCode() const noexcept;
    /// Returns whether the values are equal. Values of different types never are.
    [[nodiscard]] bool equals(const Value& other) const noexcept;
    /// Returns whether the value equals an object; null equals nothing.
    [[nodiscard]] bool equals(const IValue* other) const noexcept;
    /// Returns whether the value equals Value(other); 0 is a number here. Throws what the constructor throws.
    template <class T>
    requires(!std::derived_from<T, Value> && !std::convertible_to<const T&, const IValue*>)
        [[nodiscard]] bool equals(const T& other) const {
        return equals(Value(other));
    }
    /// Returns whether the values are equal.
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
    [[nodiscard]] IValue* sharedObject() const noexcept;

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

/// The hash of tables keyed by values.
struct GenericValueHash {
    /// Returns the value's own hash.
    std::size_t operator()(const Value& v) const noexcept { return static_cast<std::uint32_t>(v.hashCode()); }
};
/// The equality of tables keyed by values.
struct GenericValueCompare {
    /// Returns whether the values are equal.
    bool operator()(const Value& a, const Value& b) const noexcept { return a.equals(b); }
};

/// Compares two values: a negative number, 0 or a positive number. Kinds come first (Undefined, Null,
/// Boolean, Number, String, Date, Type, objects), then within a kind: false before true, numbers and dates by
/// size, strings by the collation of the process's locale with ties by code units, types and objects by
/// presentation.
[[nodiscard]] CORE_API int compare_values(const Value& a, const Value& b);

} // namespace core
