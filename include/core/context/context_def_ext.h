// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/context/context_impl.h>
#include <core/types/type_domain.h>

/// What is known of values before they exist: for editors that complete names, and for tools that check a
/// script without running it.
namespace core {

/// What a property, a method's result or an element of a collection may be.
struct ContextValueInfo {
    TypeDomain types; ///< admits everything where nothing is known
    /// The class whose definition (see ContextDefExtern) the value's properties and methods have; null where
    /// that is not known or there are none.
    GUID definition = kNullGuid;
};

/// The extended description of a context: of which types its values are. An operation that fills in an answer
/// returns true where something is known. It returns false where nothing is known, also for a number out of
/// range, and the answer then admits everything. Threads: as the context.
class IContextDefExt : public IUnknown {
  public:
    static constexpr GUID IID = "26fffb9b-1e12-47b7-b950-b69c28b0ef36"_guid;

    /// Returns whether the object can be walked, see IValueCollection.
    [[nodiscard]] virtual bool isCollection() const = 0;
    /// Stores what is known of the elements of the collection.
    virtual bool getCollectionItemInfo(ContextValueInfo& info) const = 0;
    /// Stores what is known of the value of a property.
    virtual bool getPropInfo(int prop, ContextValueInfo& info) const = 0;
    /// Stores what is known of what a method returns.
    virtual bool getMethodReturnInfo(int method, ContextValueInfo& info) const = 0;

    // links to type descriptions, on which the answers above stand
    /// Returns the class whose definition the property's value has, or the null id.
    [[nodiscard]] virtual GUID IContextDefExt_mapPropContextDefBase(int prop) const = 0;
    /// Returns the type of what the method returns, borrowed; null where it is not known.
    [[nodiscard]] virtual IType* IContextDefExt_mapMethodTypeProvider(int method) const = 0;
    /// Returns whether it is known what the method returns.
    [[nodiscard]] virtual bool IContextDefExt_haveMethodReturnTypeInfo(int method) const = 0;
    /// Stores the types of what the method returns.
    virtual bool IContextDefExt_mapMethodReturnTypeInfo(int method, TypeDomain& types) const = 0;

  protected:
    ~IContextDefExt() = default;
};

/// The names of parameters, beside the extended description. Threads: as the context.
class IContextDefParams : public IContextDefExt {
  public:
    static constexpr GUID IID = "5bc5428c-9a6e-4ca5-b62c-995f82051a6d"_guid; ///< the interface's id

    /// Returns the name of a parameter in the language of `alias`, borrowed; valid as long as the definition.
    /// Null where the parameter has none, and for a number out of range.
    [[nodiscard]] virtual const wchar* getParamName(int method, int param, int alias) const = 0;

  protected:
    ~IContextDefParams() = default;
};

namespace detail {

/// The type object of a registered type, borrowed; null for a null pointer and for a
/// type that is not registered.
[[nodiscard]] CORE_API IType* find_type(const GUID* type);
/// What is known of values of a type; false for a null pointer.
CORE_API bool describe_type(const GUID* type, ContextValueInfo& info);

} // namespace detail

/// Implements the extended description of `T` from the types and names that stand in its tables of properties
/// and methods, if it has tables. `collection` says that it can be walked, `itemType` what its elements are:
/// the id of a static type, null where they may be anything. `I` is IContextDefParams or an interface derived
/// from it.
template <class T, bool collection = false, const GUID* itemType = nullptr, class I = IContextDefParams>
class ContextDefExtImpl : public I {
  public:
    bool isCollection() const override { return collection; }
    bool getCollectionItemInfo(ContextValueInfo& info) const override {
        return detail::describe_type(itemType, info);
    }
    bool getPropInfo(int prop, ContextValueInfo& info) const override {
        return detail::describe_type(typeOfProp(prop), info);
    }
    bool getMethodReturnInfo(int method, ContextValueInfo& info) const override {
        return detail::describe_type(typeOfMethod(method), info);
    }

    GUID IContextDefExt_mapPropContextDefBase(int prop) const override {
        ContextValueInfo info;
        detail::describe_type(typeOfProp(prop), info);
        return info.definition;
    }
    IType* IContextDefExt_mapMethodTypeProvider(int method) const override {
        return detail::find_type(typeOfMethod(method));
    }
    bool IContextDefExt_haveMethodReturnTypeInfo(int method) const override {
        return typeOfMethod(method) != nullptr;
    }
    bool IContextDefExt_mapMethodReturnTypeInfo(int method, TypeDomain& types) const override {
        const GUID* const type = typeOfMethod(method);
        types = type != nullptr ? TypeDomain(*type) : TypeDomain();
        return type != nullptr;
    }

    const wchar* getParamName(int method, int param, int alias) const override {
        if constexpr (requires { T::methods(); }) {
            if (const auto* const entry = detail::entry_at(T::methods(), method); entry != nullptr)
                return detail::name_at(entry->params, param, alias);
        }
        return nullptr;
    }

  protected:
    ~ContextDefExtImpl() = default;

  private:
    static const GUID* typeOfProp(int prop) noexcept {
        if constexpr (requires { T::properties(); }) {
            const auto* const entry = detail::entry_at(T::properties(), prop);
            return entry != nullptr ? entry->type : nullptr;
        }
        return nullptr;
    }
    static const GUID* typeOfMethod(int method) noexcept {
        if constexpr (requires { T::methods(); }) {
            const auto* const entry = detail::entry_at(T::methods(), method);
            return entry != nullptr ? entry->type : nullptr;
        }
        return nullptr;
    }
};

} // namespace core
