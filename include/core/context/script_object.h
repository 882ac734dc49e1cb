// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/context/context_def_ext.h>
#include <core/context/iteration.h>
#include <core/persistence/persistence.h>
#include <core/values/type_object.h>

#include <array>

/// How a class of script objects is written: its names and ids, its functions, two tables, one declaration.
///
///     class Counter : public ScriptObject<Counter> {
///       public:
///         static constexpr ScriptClass script = {.names = {u"Counter", u"Счетчик"}, .type = "..."_guid,
///                                                .object = "..."_guid, .arguments = {0, 0}};
///         static std::span<const Property<Counter>> properties() noexcept;
///         static std::span<const Method<Counter>> methods() noexcept;
///         ...
///     };
///     const ScriptClassEntry<Counter> kEntry;
///
/// docs/contributing.md has the whole of such a class.
namespace core {

/// What a class of script objects is known by. Each class has one, as its static constant `script`.
struct ScriptClass {
    NamePair names;                        ///< the name by which scripts know the type
    GUID type;                             ///< the id of the type, minted once, never changed
    GUID object;                           ///< the class id of the objects, minted once, never changed
    const char* presentation = nullptr;    ///< message id of what the user reads; null for the script's name
    IType::Arguments arguments = {-1, -1}; ///< how many arguments New takes; -1 when there is no New
    const GUID* elements = nullptr; ///< the type of a collection's elements; null where they may be anything
};

/// The interfaces of a script object: the common ones, then its own.
template <class... Is>
using ScriptInterfaces = InterfaceList<IValue, IContext_, IContextDef, IContextDefExt, Is...>;

namespace detail {

/// The class that implements `I` for `T`, as far as that can be done for all classes alike.
template <class T, class I>
struct ScriptPart {
    using Type = I;
};
template <class T>
class PersistablePart : public IPersistableObject {
  public:
    const GUID& getCLSID() const noexcept override { return T::script.object; }

  protected:
    ~PersistablePart() = default;
};
template <class T>
struct ScriptPart<T, IPersistableObject> {
    using Type = PersistablePart<T>;
};

/// What New does: `T::construct(arguments)`, or an object without arguments where `T` has no such function.
template <class T>
GenericValue construct_object(std::span<GenericValue> arguments) {
    if constexpr (requires { T::construct(arguments); }) {
        return T::construct(arguments);
    } else {
        static_assert(T::script.arguments.most == 0, "arguments need a function construct() that reads them");
        return make_object<T>();
    }
}

template <class T>
inline constexpr TypeInfo script_type_info = {
    .id = T::script.type,
    .valueClass = T::script.object,
    .names = T::script.names,
    .presentation = T::script.presentation,
    .construct =
        [] {
            GenericValue (*construct)(std::span<GenericValue>) = nullptr;
            if constexpr (T::script.arguments.least >= 0)
                construct = &construct_object<T>;
            return construct;
        }(),
    .arguments = T::script.arguments,
};

/// The English name for reports.
template <class T>
inline constexpr auto script_class_name = [] {
    constexpr wstring_view name = T::script.names[kEnglish];
    std::array<char, name.size() + 1> text{};
    for (std::size_t i = 0; i < name.size(); ++i)
        text[i] = name[i] < 0x80 ? static_cast<char>(name[i]) : '?';
    return text;
}();

} // namespace detail

/// ScriptObject with a context of the class's own, which derives from IContextImpl.
template <class T, class Context, class... Is>
class ScriptObjectOver : public IValueImpl,
                         public Context,
                         public ContextDefExtImpl<T, (std::same_as<Is, IValueCollection> || ...)>,
                         public detail::ScriptPart<T, Is>::Type... {
  public:
    /// What objects answer queries for. A class of which an interface extends another one names both again.
    using Interfaces = ScriptInterfaces<Is...>;

    /// No properties; a class that has some defines its own table.
    [[nodiscard]] static std::span<const Property<T>> properties() noexcept { return {}; }
    /// No methods; a class that has some defines its own table.
    [[nodiscard]] static std::span<const Method<T>> methods() noexcept { return {}; }

    /// Returns the type of the objects, borrowed; it lives as long as the library.
    [[nodiscard]] static IType* type() noexcept { return TypeEntry<detail::script_type_info<T>>::instance(); }
    /// Returns the object of this class that a value holds, borrowed from the value; null for any other
    /// value.
    [[nodiscard]] static T* of(const Value& value) noexcept {
        return value.isObject() ? of(value.object()) : nullptr;
    }
    /// Returns the same of an object, which may be null.
    [[nodiscard]] static const T* of(const IValue* object) noexcept {
        // No other class has the type.
        return object != nullptr && object->getType() == type() ? static_cast<const T*>(object) : nullptr;
    }
    /// Returns the same of an object that can be changed.
    [[nodiscard]] static T* of(IValue* object) noexcept {
        return const_cast<T*>(of(static_cast<const IValue*>(object)));
    }

    /// Returns type().
    IType* getType() const noexcept override { return type(); }
    /// Stores the presentation of the type and returns true; a class that has a better text stores that.
    bool getString(wstring& out) const override {
        out = type()->presentation();
        return true;
    }
    /// Stores what is known of the elements and returns true; returns false where they may be anything.
    bool getCollectionItemInfo(ContextValueInfo& info) const override {
        return detail::describe_type(T::script.elements, info);
    }

  protected:
    ~ScriptObjectOver() = default;
};

/// The base of a class of script objects: a value presented by its type, equal to itself alone, with the
/// tables of properties and methods of `T`. `Is` are the further interfaces that the class implements. With
/// IValueCollection among them scripts can walk the objects; of IPersistableObject the class id comes from
/// `T::script`. Where scripts can make objects, `T` has `static GenericValue
/// construct(std::span<GenericValue> arguments)`, or takes no arguments. Threads: an object is used by one
/// thread at a time.
template <class T, class... Is>
class ScriptObject : public ScriptObjectOver<T, IContextImpl<IContextDefImpl<T>>, Is...> {
  protected:
    ~ScriptObject() = default;
};

/// Declares the type of `T`, as a static object of a source file: for a class whose objects live in others
/// and are never made by class id.
template <class T>
class ScriptTypeEntry {
  public:
    /// Puts the declaration into the calling module's list.
    ScriptTypeEntry() noexcept : type_(detail::script_class_name<T>.data()) {}

  private:
    TypeEntry<detail::script_type_info<T>> type_;
};

/// Declares the class `T` and its type, as a static object of a source file: objects are made by New and by
/// class id, and read back when they are persistable.
template <class T>
class ScriptClassEntry {
  public:
    /// Puts the declarations into the calling module's list.
    ScriptClassEntry() noexcept {
        object_.record =
            detail::class_record<T>(T::script.object, detail::script_class_name<T>.data(), false, nullptr);
        declare_class(object_);
    }
    ScriptClassEntry(const ScriptClassEntry&) = delete;
    ScriptClassEntry& operator=(const ScriptClassEntry&) = delete;

  private:
    ScriptTypeEntry<T> type_;
    ClassEntry object_;
};

} // namespace core
