// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/context/native_value.h>
#include <core/runtime/internal_class.h>

#include <concepts>
#include <type_traits>

/// Objects as C++ pointers, in both directions. A pointer that a value converts to is never null: what may be
/// missing is an std::optional.
namespace core {

/// A class of script objects, see ScriptObject: it tells its own objects from other values.
template <class T>
concept ScriptClassType = requires(const Value& value) {
    { T::of(value) } -> std::convertible_to<const T*>;
};

/// Holds an object of a script class with a reference: what make_object() returns.
template <class T>
using ObjectPtr = InterfacePtr<SCOM_InternalClass<T>>;

namespace detail {

/// The object as a value; null is Undefined. Throws ContextException for an object that is not a value.
[[nodiscard]] CORE_API Value value_of_object(IUnknown* object);

/// The pointer as a value; null is Undefined.
template <class T>
[[nodiscard]] Value value_of_pointer(T* object) {
    if constexpr (std::convertible_to<T*, IValue*>)
        return Value(static_cast<IValue*>(object));
    else
        return value_of_object(object);
}

} // namespace detail

/// An object through an interface, never null, with a reference. A null pointer becomes Undefined.
template <class T>
struct NativeValue<InterfacePtr<T>> {
    /// Returns the object; refuses the type of every other value.
    static InterfacePtr<T> from(const Value& value, ValueReceiver receiver) requires Interface<T> {
        InterfacePtr<T> object;
        if constexpr (std::same_as<T, IValue>)
            object = value.getIValue();
        else
            object = value.query<T>();
        if (!object)
            receiver.refuseType();
        return object;
    }
    /// Returns the object as a value. Throws ContextException for an object that is not a value.
    static Value to(const InterfacePtr<T>& object) { return detail::value_of_pointer(object.get()); }
};

/// An object of a script class, never null, with a reference. A null pointer becomes Undefined.
template <ScriptClassType T>
struct NativeValue<ObjectPtr<T>> {
    /// Returns the object; refuses the type of every other value.
    static ObjectPtr<T> from(const Value& value, ValueReceiver receiver) {
        // No object of a script class has another form.
        return static_cast<SCOM_InternalClass<T>*>(NativeValue<T*>::from(value, receiver));
    }
    /// Returns the object as a value.
    static Value to(const ObjectPtr<T>& object) { return detail::value_of_pointer(object.get()); }
    /// Returns the type of the class.
    static const GUID* type() noexcept { return &T::type()->id(); }
};

/// The same borrowed from the value. An interface comes with a reference of its own, since the object may
/// answer a query with a part of itself.
template <class T>
requires ScriptClassType<std::remove_const_t<T>> || Interface<std::remove_const_t<T>>
struct NativeValue<T*> {
    /// Returns the object; refuses the type of every other value.
    static auto from(const Value& value, ValueReceiver receiver) {
        using Object = std::remove_const_t<T>;
        if constexpr (ScriptClassType<Object>) {
            Object* const object = Object::of(value);
            if (object == nullptr)
                receiver.refuseType();
            return object;
        } else {
            return NativeValue<InterfacePtr<Object>>::from(value, receiver);
        }
    }
    /// Returns the object as a value. Throws ContextException for an object that is not a value.
    static Value to(T* object) {
        return detail::value_of_pointer(const_cast<std::remove_const_t<T>*>(object));
    }
    /// Returns the type of a script class.
    static const GUID* type() noexcept {
        if constexpr (ScriptClassType<std::remove_const_t<T>>)
            return &T::type()->id();
        else
            return nullptr;
    }
};

} // namespace core
