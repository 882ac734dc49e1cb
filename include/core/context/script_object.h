// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/context/context_def_ext.h>
#include <core/context/event_source.h>
#include <core/context/iteration.h>
#include <core/context/members.h>
#include <core/persistence/persistence.h>
#include <core/runtime/name_guid.h>
#include <core/values/type_object.h>

#include <algorithm>
#include <array>
#include <concepts>
#include <type_traits>

/// How a class of script objects is written: its names, its functions, what scripts reach of them, one
/// declaration.
///
///     class Counter : public ScriptObject<Counter> {
///       public:
///         static constexpr ClassNames names{u"Counter", u"Счетчик"};
///         static auto members() { return core::members(property(...), method(...)); }
///         ...
///     };
///     const ScriptClassEntry<Counter> kEntry;
///
/// docs/contributing.md has the whole of such a class. A class that needs ids of its own, or whose tables
/// must not be made at run time, has a ScriptClass and tables instead of names and members.
namespace core {

/// What a class of script objects is called. Each class has it as its static constant `names`, or a
/// ScriptClass as its static constant `script`.
///
/// The ids of the class follow from the English name, see script_class_id(): a class that is given another
/// name, and whose objects were stored, keeps the old ids in a ScriptClass. New takes the parameters of
/// `T::construct`, which is static, returns the object, and takes and returns what converts (see
/// NativeValue); parameters at its end that are an std::optional may be left out. Without that function New
/// takes no arguments; a class that cannot be made without has no New.
struct ClassNames {
    const wchar* english;               ///< the name by which scripts know the type
    const wchar* russian = nullptr;     ///< the Russian name; null where it is missing
    const char* presentation = nullptr; ///< message id of what the user reads; null for the script's name
};

/// What a class of script objects is known by, where the ids are minted: the static constant `script` of the
/// class.
struct ScriptClass {
    NamePair names;                        ///< the name by which scripts know the type
    GUID type;                             ///< the id of the type, minted once, never changed
    GUID object;                           ///< the class id of the objects, minted once, never changed
    const char* presentation = nullptr;    ///< message id of what the user reads; null for the script's name
    IType::Arguments arguments = {-1, -1}; ///< how many arguments New takes; -1 when there is no New
    const GUID* elements = nullptr; ///< the type of a collection's elements; null where they may be anything
};

/// Returns the id of the type of the class with that English name, which has ClassNames.
[[nodiscard]] constexpr GUID script_type_id(wstring_view english) {
    return name_guid("ab1e87a8-bc7d-424f-a9a9-5210bd690510"_guid, english);
}
/// Returns the class id of the objects of the class with that English name, which has ClassNames.
[[nodiscard]] constexpr GUID script_class_id(wstring_view english) {
    return name_guid("b0582e11-0701-464b-9221-893b2317ed37"_guid, english);
}

/// The interfaces of a script object: the common ones, then its own.
template <class... Is>
using ScriptInterfaces =
    InterfaceList<IValue, IContext_, IContextDef, IContextDefExt, IContextDefParams, Is...>;

namespace detail {

/// The concrete form of `T`, as far as it takes to ask whether there is one without arguments. It is never
/// made.
template <class T>
struct MadeWithoutArguments final : T {
    HRESULT QueryInterface(const GUID&, void**) noexcept override { return kNoInterface; }
    std::uint32_t AddRef() noexcept override { return 1; }
    std::uint32_t Release() noexcept override { return 1; }
};

using ReadsArguments = GenericValue (*)(std::span<GenericValue>);

/// Of a function with converted parameters: how many arguments it takes.
template <class... As>
constexpr IType::Arguments argument_counts(TypeList<As...>) noexcept {
    std::int32_t count = 0;
    std::int32_t least = 0;
    ((++count, least = kMayBeMissing<As> ? least : count), ...);
    return {least, count};
}

template <class T>
constexpr IType::Arguments construct_arguments() noexcept {
    if constexpr (requires { &T::construct; }) {
        using Construct = decltype(&T::construct);
        static_assert(!std::same_as<Construct, ReadsArguments>,
                      "how many arguments this function reads is for a constant `script` to say");
        return argument_counts(typename SignatureOf<Construct>::Parameters{});
    } else {
        return std::is_default_constructible_v<MadeWithoutArguments<T>> ? IType::Arguments{0, 0}
                                                                        : IType::Arguments{-1, -1};
    }
}

template <class T>
inline constexpr ScriptClass script_class = [] {
    if constexpr (requires { T::script; }) {
        return ScriptClass(T::script);
    } else {
        constexpr ClassNames names = T::names;
        return ScriptClass{.names = {names.english, names.russian},
                           .type = script_type_id(names.english),
                           .object = script_class_id(names.english),
                           .presentation = names.presentation,
                           .arguments = construct_arguments<T>()};
    }
}();

/// The class that implements `I` for `T`, as far as that can be done for all classes alike.
template <class T, class I>
struct ScriptPart {
    using Type = I;
};
template <class T>
class PersistablePart : public IPersistableObject {
  public:
    const GUID& getCLSID() const noexcept override { return script_class<T>.object; }

  protected:
    ~PersistablePart() = default;
};
template <class T>
struct ScriptPart<T, IPersistableObject> {
    using Type = PersistablePart<T>;
};

template <class... Is>
inline constexpr bool kHasWalk = (std::same_as<Is, IValueCollection> || ...);

/// What New does: `T::construct`, or an object without arguments where `T` has no such function.
template <class T>
GenericValue construct_object(std::span<GenericValue> arguments) {
    if constexpr (!requires { &T::construct; }) {
        static_assert(script_class<T>.arguments.most == 0,
                      "arguments need a function construct() that reads them");
        return make_object<T>();
    } else if constexpr (std::same_as<decltype(&T::construct), ReadsArguments>) {
        return T::construct(arguments);
    } else {
        // What is left out is Undefined.
        std::array<GenericValue, SignatureOf<decltype(&T::construct)>::Parameters::kCount> all;
        std::ranges::copy(arguments, all.begin());
        constexpr auto construct = &T::construct;
        return call_native(construct, all);
    }
}

template <class T>
inline constexpr TypeInfo script_type_info = {
    .id = script_class<T>.type,
    .valueClass = script_class<T>.object,
    .names = script_class<T>.names,
    .presentation = script_class<T>.presentation,
    .construct =
        [] {
            GenericValue (*construct)(std::span<GenericValue>) = nullptr;
            if constexpr (script_class<T>.arguments.least >= 0)
                construct = &construct_object<T>;
            return construct;
        }(),
    .arguments = script_class<T>.arguments,
};

/// The English name for reports.
template <class T>
inline constexpr auto script_class_name = [] {
    constexpr wstring_view name = script_class<T>.names[kEnglish];
    std::array<char, name.size() + 1> text{};
    for (std::size_t i = 0; i < name.size(); ++i)
        text[i] = name[i] < 0x80 ? static_cast<char>(name[i]) : '?';
    return text;
}();

} // namespace detail

/// ScriptObject with a context of the class's own, which derives from IContextImpl.
template <class T, class Context, class... Is>
class ScriptObjectOver
    : public IValueImpl,
      public Context,
      public EventSourceImpl<T, ContextDefExtImpl<T, detail::kHasWalk<Is...>, nullptr, IEventSource>>,
      public detail::ScriptPart<T, Is>::Type... {
  public:
    /// What objects answer queries for. A class of which an interface extends another one names both again.
    using Interfaces = ScriptInterfaces<Is...>;

    /// Returns the table of properties that `T::members()` says, borrowed for ever; none without that
    /// function. A class may define a table of its own instead.
    [[nodiscard]] static auto properties() noexcept {
        return detail::declared<T, Property<T>>([](const auto& tables) { return tables.properties(); });
    }
    /// Returns the table of methods, as properties() does that of properties.
    [[nodiscard]] static auto methods() noexcept {
        return detail::declared<T, Method<T>>([](const auto& tables) { return tables.methods(); });
    }
    /// Returns the table of events, as properties() does that of properties. Objects of a class that has some
    /// are an IEventSource.
    [[nodiscard]] static auto events() noexcept {
        return detail::declared<T, EventEntry<T>>([](const auto& tables) { return tables.events(); });
    }
    /// Returns the declarations of the class and its type, for a list of the classes of a module; the type
    /// alone of a class without New.
    [[nodiscard]] static constexpr auto classEntries() noexcept {
        constexpr const char* name = detail::script_class_name<T>.data();
        constexpr ClassEntry type{.record = detail::class_record<TypeEntry<detail::script_type_info<T>>>(
                                      detail::script_class<T>.type, name, true, nullptr)};
        if constexpr (std::is_default_constructible_v<detail::MadeWithoutArguments<T>>)
            return std::array{type, ClassEntry{.record = detail::class_record<T>(
                                                   detail::script_class<T>.object, name, false, nullptr)}};
        else
            return std::array{type};
    }

    /// Returns the type of the objects, borrowed; it lives as long as their module is loaded.
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
        return detail::describe_type(detail::script_class<T>.elements, info);
    }

  protected:
    ~ScriptObjectOver() = default;
};

/// The base of a class of script objects: a value presented by its type, equal to itself alone, with the
/// properties and methods of `T::members()`. `T` has a constant `names`, which says how scripts make objects,
/// too, or a constant `script`. With a `script` that lets New take arguments, `T` reads them itself: `static
/// GenericValue construct(std::span<GenericValue> arguments)`. `Is` are the further interfaces that the class
/// implements. With IValueCollection among them scripts can walk the objects; IPersistableObject gets its
/// class id from the names. Threads: an object is used by one thread at a time.
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

/// Declares the class `T` and its type, as a static object of a source file: objects are made by New, and,
/// where they can be made without arguments, by class id; they are read back when they are persistable.
template <class T>
class ScriptClassEntry {
  public:
    /// Puts the declarations into the calling module's list.
    ScriptClassEntry() noexcept {
        for (ClassEntry& entry : entries_)
            declare_class(entry);
    }
    ScriptClassEntry(const ScriptClassEntry&) = delete;
    ScriptClassEntry& operator=(const ScriptClassEntry&) = delete;

  private:
    decltype(T::classEntries()) entries_ = T::classEntries();
};

} // namespace core
