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

/// What primitive values share: the count, and that it stands still for the objects that everybody shares.
class CORE_API PrimitiveValue : public IValue, public IValueSerialize {
  public:
    HRESULT QueryInterface(const GUID& iid, void** out) noexcept override;
    std::uint32_t AddRef() noexcept override { return static_cast<std::uint32_t>(acquire()); }
    std::uint32_t Release() noexcept override { return static_cast<std::uint32_t>(release()); }

    // A shared object is read by all threads, so not even its count may be written to.
    std::int32_t acquire() noexcept { return shared() ? 0 : AtomicCounter::increment(count_); }
    std::int32_t release() noexcept {
        if (shared())
            return 0;
        const std::int32_t count = AtomicCounter::decrement(count_);
        if (count == 0)
            destroy();
        return count;
    }

    bool getBoolean(bool& out) const override;
    bool getNumeric(Numeric& out) const override;
    bool getString(wstring& out) const override;
    bool getDate(Date& out) const override;
    void serialize(IOutPersistenceStorage* storage) const override;

  protected:
    enum class Life { counted, shared };

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

class CORE_API UndefinedValue final : public PrimitiveValue {
  public:
    constexpr UndefinedValue() noexcept : PrimitiveValue(Life::shared) {}
    IType* getType() const noexcept override;
    const void* getDataPtr() const noexcept override { return nullptr; }
    bool isEqual(const IValue* other) const noexcept override { return this == other; }
    std::int32_t hashCode() const noexcept override;
};

class CORE_API NullValue final : public PrimitiveValue {
  public:
    constexpr NullValue() noexcept : PrimitiveValue(Life::shared) {}
    IType* getType() const noexcept override;
    const void* getDataPtr() const noexcept override { return nullptr; }
    bool isEqual(const IValue* other) const noexcept override { return this == other; }
    std::int32_t hashCode() const noexcept override;
};

class CORE_API BooleanValue final : public PrimitiveValue {
  public:
    constexpr explicit BooleanValue(bool value) noexcept : PrimitiveValue(Life::shared), value_(value) {}
    [[nodiscard]] bool payload() const noexcept { return value_; }

    IType* getType() const noexcept override;
    const void* getDataPtr() const noexcept override { return &value_; }
    bool getBoolean(bool& out) const override;
    bool getString(wstring& out) const override;
    bool isEqual(const IValue* other) const noexcept override { return this == other; }
    std::int32_t hashCode() const noexcept override;
    void serialize(IOutPersistenceStorage* storage) const override;

  private:
    bool value_;
};

class CORE_API NumberValue final : public PrimitiveValue, public IValueIsEmpty {
  public:
    /// A counted object with one reference, the caller's.
    [[nodiscard]] static NumberValue* make(Numeric&& value);
    [[nodiscard]] static NumberValue* make(std::int64_t value);
    struct SharedZero {};
    explicit NumberValue(SharedZero) noexcept : PrimitiveValue(Life::shared) {}
    [[nodiscard]] const Numeric& payload() const noexcept { return value_; }

    HRESULT QueryInterface(const GUID& iid, void** out) noexcept override;
    std::uint32_t AddRef() noexcept override { return PrimitiveValue::AddRef(); }
    std::uint32_t Release() noexcept override { return PrimitiveValue::Release(); }
    IType* getType() const noexcept override;
    const void* getDataPtr() const noexcept override { return &value_; }
    bool getBoolean(bool& out) const override;
    bool getNumeric(Numeric& out) const override;
    bool getString(wstring& out) const override;
    bool isEqual(const IValue* other) const noexcept override;
    std::int32_t hashCode() const noexcept override { return static_cast<std::int32_t>(value_); }
    void serialize(IOutPersistenceStorage* storage) const override;
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
    [[nodiscard]] static StringValue* make(wstring_view text);
    struct SharedEmpty {};
    constexpr explicit StringValue(SharedEmpty) noexcept
        : PrimitiveValue(Life::shared), text_(wstring_view(u"")) {}
    [[nodiscard]] wstring_view payload() const noexcept { return text_; }

    /// The hashes that tables find the string by, computed once: of the text, never 0, and of a name in any
    /// case, which is 0 for a text that is no valid name.
    [[nodiscard]] std::uint64_t tableHash() const noexcept;
    [[nodiscard]] std::uint64_t nameHash() const noexcept;

    IType* getType() const noexcept override;
    const void* getDataPtr() const noexcept override { return &text_; }
    bool getBoolean(bool& out) const override;
    bool getNumeric(Numeric& out) const override;
    bool getString(wstring& out) const override;
    bool getDate(Date& out) const override;
    bool isEqual(const IValue* other) const noexcept override;
    std::int32_t hashCode() const noexcept override;
    void serialize(IOutPersistenceStorage* storage) const override;

  private:
    explicit StringValue(wstring_view text) noexcept;
    void destroy() noexcept override;

    wstring_view text_;
    mutable std::atomic<std::uint64_t> tableHash_{0}; // 0 until it is asked for
    mutable std::atomic<std::uint64_t> nameHash_{0};  // the same; kNoName for 0
};

class CORE_API DateValue final : public PrimitiveValue, public IValueIsEmpty {
  public:
    [[nodiscard]] static DateValue* make(Date value);
    struct SharedEmpty {};
    constexpr explicit DateValue(SharedEmpty) noexcept : PrimitiveValue(Life::shared) {}
    [[nodiscard]] const Date& payload() const noexcept { return value_; }

    HRESULT QueryInterface(const GUID& iid, void** out) noexcept override;
    std::uint32_t AddRef() noexcept override { return PrimitiveValue::AddRef(); }
    std::uint32_t Release() noexcept override { return PrimitiveValue::Release(); }
    IType* getType() const noexcept override;
    const void* getDataPtr() const noexcept override { return &value_; }
    bool getString(wstring& out) const override;
    bool getDate(Date& out) const override;
    bool isEqual(const IValue* other) const noexcept override;
    std::int32_t hashCode() const noexcept override;
    void serialize(IOutPersistenceStorage* storage) const override;
    bool isEmpty() const noexcept override { return value_.isEmpty(); }

  private:
    explicit DateValue(Date value) noexcept;
    void destroy() noexcept override;

    Date value_;
};

/// A type as a value.
class CORE_API TypeValue final : public PrimitiveValue {
  public:
    [[nodiscard]] static TypeValue* make(const Type& value);
    [[nodiscard]] const Type& payload() const noexcept { return value_; }

    IType* getType() const noexcept override;
    const void* getDataPtr() const noexcept override { return &value_; }
    bool getString(wstring& out) const override;
    bool isEqual(const IValue* other) const noexcept override;
    std::int32_t hashCode() const noexcept override;
    void serialize(IOutPersistenceStorage* storage) const override;

  private:
    explicit TypeValue(const Type& value) noexcept;
    void destroy() noexcept override;

    Type value_;
};

} // namespace core
