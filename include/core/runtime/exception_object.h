// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/class_entry.h>
#include <core/runtime/errors.h>
#include <core/runtime/persistable.h>

#include <array>
#include <tuple>
#include <type_traits>
#include <utility>

/// Failures as objects, and how a layer declares them.
namespace core {

/// The error object of exception class `X`: it holds one `X`, empty at first, and can be written and read
/// back.
///
/// An exception class that holds more than description and cause states its data, in the order in which they
/// are written, as a private `static auto fields(auto& self)` that returns a tuple of references to integers
/// of 32 bits, enumerations of that size, texts and ids; this class is its friend.
template <class X>
class IExceptionObjectImpl : public IExceptionObject,
                             public IPersistableObjectImpl<IExceptionObjectImpl<X>, &X::kClassId> {
  public:
    /// The interfaces that it answers queries for.
    using Interfaces = InterfaceList<IExceptionObject, IPersistableObject>;

    void init(const Exception& e) override {
        // The whole exception where its class is the same, what all exceptions have otherwise.
        X taken;
        if (const auto* const same = dynamic_cast<const X*>(&e))
            taken = *same;
        else
            static_cast<Exception&>(taken) = e;
        held_ = std::move(taken);
    }
    [[noreturn]] void raise() override { throw X(held_); }
    Exception& exception() noexcept override { return held_; }

    void serialize(IOutPersistenceStorage* storage) const override {
        storage->putFailure(held_, fieldsOf(held_));
    }
    void deserialize(IInPersistenceStorage* storage) override {
        auto fields = fieldsOf(X());
        const StoredFailure stored = storage->getFailure(fields);
        X taken(stored.description, stored.cause.get());
        taken.setMessage(stored.messageId.c_str(), stored.parameters);
        if constexpr (kHasFields) {
            std::size_t index = 0;
            std::apply([&](auto&... field) { (assign(field, fields[index++]), ...); }, X::fields(taken));
        }
        held_ = std::move(taken);
    }

  private:
    static_assert(std::is_nothrow_move_assignable_v<X>, "taking a failure must not fail half-way");

    static constexpr bool kHasFields = requires(X & x) { X::fields(x); };

    static auto fieldsOf(const X& e) {
        if constexpr (kHasFields) {
            return std::apply([](const auto&... field) { return std::array{stored(field)...}; },
                              X::fields(e));
        } else {
            return std::array<FailureField, 0>();
        }
    }
    template <class T>
    static FailureField stored(const T& field) {
        if constexpr (std::is_enum_v<T>)
            return static_cast<std::int32_t>(field);
        else
            return field;
    }
    template <class T>
    static void assign(T& field, const FailureField& value) {
        if constexpr (std::is_enum_v<T>)
            field = static_cast<T>(std::get<std::int32_t>(value));
        else
            field = std::get<T>(value);
    }

    X held_;
};

/// Declares the error object of exception class `X`, as a static object of a source file of its module.
template <class X>
using SCOM_ExceptionEntry = SCOM_ClassEntryInit<IExceptionObjectImpl<X>, &X::kClassId>;

/// Returns a new error object that holds `e`: how a failure leaves a module. The object is made by the class
/// id of `e` in the current process. When nothing makes that class, it is an ExceptionObject, which keeps
/// class id, description, message id and cause. Never null; throws std::bad_alloc.
[[nodiscard]] CORE_API InterfacePtr<IExceptionObject> wrap_exception(const Exception& e);
/// Returns a new error object that holds whatever was thrown: what is not an Exception becomes one with the
/// message kUnknownFailure, whose parameter says what is known of it. Never null; throws std::bad_alloc.
/// `failure` must not be null.
[[nodiscard]] CORE_API InterfacePtr<IExceptionObject> wrap_exception(const std::exception_ptr& failure);

} // namespace core
