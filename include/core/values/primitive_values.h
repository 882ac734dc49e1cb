// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/dates/date.h>
#include <core/numbers/numeric.h>
#include <core/runtime/refcount.h>
#include <core/values/ivalue.h>
#include <core/values/type.h>

#include <atomic>
#include <cstddef>

/// The objects of the primitive values. They are made by the functions of create_value.h and held by Value,
/// which knows their layout so that reading and counting them needs no virtual call; other code sees IValue.
namespace core {

/// What primitive values share: the count, which stands still for the objects that everybody shares.
class CORE_API PrimitiveValue : public IValue, public IValueSerialize {
  public:
    /// Answers IUnknown, IValue and IValueSerialize with a reference.
    HRESULT QueryInterface(const GUID& iid, void** out) noexcept override;
    /// Counts a reference and returns the count; 0 for a shared object.
    std::uint32_t AddRef() noexcept override { return static_cast<std::uint32_t>(acquire()); }
    /// Lets go of a reference and returns the count; the last one destroys the object. 0 for a shared object.
    std::uint32_t Release() noexcept override { return static_cast<std::uint32_t>(release()); }

    // A shared object is read by all threads, so not even its count may be written to.

    /// AddRef() without a virtual call.
    std::int32_t acquire() noexcept { return shared() ? 0 : detail::HolderCount::acquire(count_); }
    /// Release() without a virtual call to count.
    std::int32_t release() noexcept {
        if (shared())
            return 0;
        const std::int32_t count = detail::HolderCount::release(count_);
        if (count == 0)
            destroy();
        return count;
    }

    /// Sets false and returns false.
    bool getBoolean(bool& out) const override;
    /// Sets zero and returns false.
    bool getNumeric(Numeric& out) const override;
    /// Sets the empty string and returns true.
    bool getString(wstring& out) const override;
    /// Sets the empty date and returns false.
    bool getDate(Date& out) const override;
    /// Writes nothing.
    void serialize(IOutPersistenceStorage* storage) const override;

  protected:
    /// Whether an object counts its references, or lives for the whole process.
    enum class Life {
        counted, ///< begins with one reference
        shared   ///< is never destroyed
    };

    /// Makes an object with that kind of life.
    constexpr explicit PrimitiveValue(Life life) noexcept : count_(life == Life::shared ? kShared : 1) {}
    ~PrimitiveValue() = default;

  private:
    static constexpr std::int32_t kShared = -1;

    [[nodiscard]] bool shared() noexcept {
        return std::atomic_ref(count_).load(std::memory_order_relaxed) == kShared;
    }
    virtual void destroy() noexcept {}

    std::int32_t count_;
};

/// The one Undefined.
class CORE_API UndefinedValue final : public PrimitiveValue {
  public:
    /// Makes the shared object.
    constexpr UndefinedValue() noexcept : PrimitiveValue(Life::shared) {}
    /// Returns the one type object of this kind of value.
    IType* getType() const noexcept override;
    /// Returns null.
    const void* getDataPtr() const noexcept override { return nullptr; }
    /// Returns whether `other` is this object.
    bool isEqual(const IValue* other) const noexcept override { return this == other; }
    /// Returns 0x7FFFFFFF.
    std::int32_t hashCode() const noexcept override;
};

/// The one Null.
class CORE_API NullValue final : public PrimitiveValue {
  public:
    /// Makes the shared object.
    constexpr NullValue() noexcept : PrimitiveValue(Life::shared) {}
    /// Returns the one type object of this kind of value.
    IType* getType() const noexcept override;
    /// Returns null.
    const void* getDataPtr() const noexcept override { return nullptr; }
    /// Returns whether `other` is this object.
    bool isEqual(const IValue* other) const noexcept override { return this == other; }
    /// Returns 0x7FFFFFFE.
    std::int32_t hashCode() const noexcept override;
};

/// True or false; there is one object of each.
class CORE_API BooleanValue final : public PrimitiveValue {
  public:
    /// Makes one of the two shared objects.
    constexpr explicit BooleanValue(bool value) noexcept : PrimitiveValue(Life::shared), value_(value) {}
    /// Returns the Boolean.
    [[nodiscard]] bool payload() const noexcept { return value_; }

    /// Returns the one type object of this kind of value.
    IType* getType() const noexcept override;
    /// Returns the address of the Boolean.
    const void* getDataPtr() const noexcept override { return &value_; }
    /// Sets the Boolean and returns true.
    bool getBoolean(bool& out) const override;
    /// Sets the text that the process's Boolean format gives and returns true.
    bool getString(wstring& out) const override;
    /// Returns whether `other` is this object.
    bool isEqual(const IValue* other) const noexcept override { return this == other; }
    /// Returns 0x7FFFFFFD for true, 0x7FFFFFFC for false.
    std::int32_t hashCode() const noexcept override;
    /// Writes the Boolean.
    void serialize(IOutPersistenceStorage* storage) const override;

  private:
    bool value_;
};

/// A Number as an object.
class CORE_API NumberValue final : public PrimitiveValue, public IValueIsEmpty {
  public:
    /// Returns a counted object with one reference, which the caller owns.
    [[nodiscard]] static NumberValue* make(Numeric&& value);
    /// Returns a counted object with one reference, which the caller owns.
    [[nodiscard]] static NumberValue* make(std::int64_t value);
    /// Chooses the constructor of the shared zero.
    struct SharedZero {};
    /// Makes the shared zero.
    explicit NumberValue(SharedZero) noexcept : PrimitiveValue(Life::shared) {}
    /// Returns the number, borrowed as long as the object lives.
    [[nodiscard]] const Numeric& payload() const noexcept { return value_; }

    /// Answers IValueIsEmpty as well.
    HRESULT QueryInterface(const GUID& iid, void** out) noexcept override;
    /// Counts a reference.
    std::uint32_t AddRef() noexcept override { return PrimitiveValue::AddRef(); }
    /// Lets go of a reference.
    std::uint32_t Release() noexcept override { return PrimitiveValue::Release(); }
    /// Returns the one type object of this kind of value.
    IType* getType() const noexcept override;
    /// Returns the address of the Numeric.
    const void* getDataPtr() const noexcept override { return &value_; }
    /// Sets whether the number is not zero and returns true.
    bool getBoolean(bool& out) const override;
    /// Sets a copy of the number and returns true.
    bool getNumeric(Numeric& out) const override;
    /// Sets the text that the process's number format gives and returns true.
    bool getString(wstring& out) const override;
    /// Returns whether `other` is an equal Number.
    bool isEqual(const IValue* other) const noexcept override;
    /// Returns the low 32 bits of the whole part.
    std::int32_t hashCode() const noexcept override { return static_cast<std::int32_t>(value_); }
    /// Writes the number.
    void serialize(IOutPersistenceStorage* storage) const override;
    /// Returns whether the number is zero.
    bool isEmpty() const noexcept override { return value_.sign() == 0; }

  private:
    template <class T>
    explicit NumberValue(T&& value) noexcept;
    void destroy() noexcept override;

    alignas(16) Numeric value_; // so that the object's address leaves a fourth bit to Value
};

/// Keeps its characters in its own block, behind itself, with a null unit at the end.
class CORE_API StringValue final : public PrimitiveValue {
  public:
    /// Returns a counted object with a copy of `text` and one reference, which the caller owns.
    [[nodiscard]] static StringValue* make(wstring_view text);
    /// Chooses the constructor of the shared empty string.
    struct SharedEmpty {};
    /// Makes the shared empty string.
    constexpr explicit StringValue(SharedEmpty) noexcept
        : PrimitiveValue(Life::shared), text_(wstring_view(u"")) {}
    /// Returns the text, borrowed as long as the object lives.
    [[nodiscard]] wstring_view payload() const noexcept { return text_; }

    /// Returns the one type object of this kind of value.
    IType* getType() const noexcept override;
    /// Returns the address of a wstring_view of the text, which a null unit follows.
    const void* getDataPtr() const noexcept override { return &text_; }
    /// Sets what the process's Boolean format or the words for true and false say; returns false if none
    /// fits.
    bool getBoolean(bool& out) const override;
    /// Sets the number that the process's number format or the plain form reads; returns false if neither
    /// fits.
    bool getNumeric(Numeric& out) const override;
    /// Sets a copy of the text and returns true.
    bool getString(wstring& out) const override;
    /// Sets the date that the process's date format or the form of fourteen digits reads; returns false if
    /// neither fits.
    bool getDate(Date& out) const override;
    /// Returns whether `other` is a String of the same units.
    bool isEqual(const IValue* other) const noexcept override;
    /// Returns the sum of the units with powers of 5, in 32 bits.
    std::int32_t hashCode() const noexcept override;
    /// Writes the text in quotes.
    void serialize(IOutPersistenceStorage* storage) const override;

  private:
    friend struct StringHashes;

    explicit StringValue(wstring_view text) noexcept;
    void destroy() noexcept override;
    // The two hashes by which tables in memory find the text, each computed once and never 0; the second one,
    // that of a name in any case, is 0 for a text that is not a valid name.
    [[nodiscard]] std::uint64_t tableHash() const noexcept;
    [[nodiscard]] std::uint64_t nameHash() const noexcept;

    wstring_view text_;
    mutable std::atomic<std::uint64_t> tableHash_{0}; // 0 until it is asked for
    mutable std::atomic<std::uint64_t> nameHash_{0};  // the same; kNoName for 0
};

/// A Date as an object.
class CORE_API DateValue final : public PrimitiveValue, public IValueIsEmpty {
  public:
    /// Returns a counted object with one reference, which the caller owns.
    [[nodiscard]] static DateValue* make(Date value);
    /// Chooses the constructor of the shared empty date.
    struct SharedEmpty {};
    /// Makes the shared empty date.
    constexpr explicit DateValue(SharedEmpty) noexcept : PrimitiveValue(Life::shared) {}
    /// Returns the date, borrowed as long as the object lives.
    [[nodiscard]] const Date& payload() const noexcept { return value_; }

    /// Answers IValueIsEmpty as well.
    HRESULT QueryInterface(const GUID& iid, void** out) noexcept override;
    /// Counts a reference.
    std::uint32_t AddRef() noexcept override { return PrimitiveValue::AddRef(); }
    /// Lets go of a reference.
    std::uint32_t Release() noexcept override { return PrimitiveValue::Release(); }
    /// Returns the one type object of this kind of value.
    IType* getType() const noexcept override;
    /// Returns the address of the Date.
    const void* getDataPtr() const noexcept override { return &value_; }
    /// Sets the text that the process's date format gives and returns true.
    bool getString(wstring& out) const override;
    /// Sets the date and returns true.
    bool getDate(Date& out) const override;
    /// Returns whether `other` is an equal Date.
    bool isEqual(const IValue* other) const noexcept override;
    /// Returns the low 32 bits of the ticks divided by 10000.
    std::int32_t hashCode() const noexcept override;
    /// Writes the date as fourteen digits.
    void serialize(IOutPersistenceStorage* storage) const override;
    /// Returns whether the date is the empty one.
    bool isEmpty() const noexcept override { return value_.isEmpty(); }

  private:
    explicit DateValue(Date value) noexcept;
    void destroy() noexcept override;

    Date value_;
};

/// A type as a value.
class CORE_API TypeValue final : public PrimitiveValue {
  public:
    /// Returns a counted object with one reference, which the caller owns.
    [[nodiscard]] static TypeValue* make(const Type& value);
    /// Returns the type, borrowed as long as the object lives.
    [[nodiscard]] const Type& payload() const noexcept { return value_; }

    /// Returns the one type object of this kind of value.
    IType* getType() const noexcept override;
    /// Returns the address of the Type.
    const void* getDataPtr() const noexcept override { return &value_; }
    /// Sets what the user reads and returns true.
    bool getString(wstring& out) const override;
    /// Returns whether `other` is a Type value of the same type.
    bool isEqual(const IValue* other) const noexcept override;
    /// Returns the first 32 bits of the type's id.
    std::int32_t hashCode() const noexcept override;
    /// Writes the type's id.
    void serialize(IOutPersistenceStorage* storage) const override;

  private:
    explicit TypeValue(const Type& value) noexcept;
    void destroy() noexcept override;

    Type value_;
};

} // namespace core
