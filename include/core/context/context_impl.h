// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/context/context_def.h>
#include <core/context/context_table.h>

/// The templates that make a class a context. A class of values is written with script_object.h, which stands
/// on them; a context that is not a value, as the global functions are, is written as
///
///     class Functions : public IContextImpl<IContextDefImpl<Functions>> {
///       public:
///         using Interfaces = InterfaceList<IContext_, IContextDef>;
///         static std::span<const Property<Functions>> properties() noexcept;
///         static std::span<const Method<Functions>> methods() noexcept;
namespace core {

namespace detail {

template <class Entry>
[[nodiscard]] const Entry* entry_at(std::span<const Entry> table, int index) noexcept {
    return index >= 0 && static_cast<std::size_t>(index) < table.size()
               ? &table[static_cast<std::size_t>(index)]
               : nullptr;
}

template <class Entry>
[[nodiscard]] const wchar* name_at(std::span<const Entry> table, int index, int alias) noexcept {
    const Entry* const entry = entry_at(table, index);
    return entry != nullptr ? term_string(entry->names, alias) : nullptr;
}

/// The names of a table, gathered once for all objects of the class.
template <class Entry>
[[nodiscard]] NameTable name_table(std::span<const Entry> table) {
    NameTable names;
    names.build(static_cast<int>(table.size()),
                [&](int index, int alias) { return name_at(table, index, alias); });
    return names;
}

} // namespace detail

/// The base of definitions: no properties, no methods, no names; what a property or parameter usually is. `I`
/// is IContextDef or an interface derived from it.
template <class I = IContextDef>
class ContextDefCore : public I {
  public:
    /// Returns 0.
    int getNProps() const override { return 0; }
    /// Returns null.
    const wchar* getPropName(int, int) const override { return nullptr; }
    /// Returns true.
    bool isPropReadable(int) const override { return true; }
    /// Returns false.
    bool isPropWritable(int) const override { return false; }
    /// Returns -1.
    int findProp(const wchar*) const override { return -1; }
    /// Returns 0.
    int getNMethods() const override { return 0; }
    /// Returns null.
    const wchar* getMethodName(int, int) const override { return nullptr; }
    /// Returns 0.
    int getNParams(int) const override { return 0; }
    /// Returns true.
    bool isParamIn(int, int) const override { return true; }
    /// Returns false.
    bool isParamOut(int, int) const override { return false; }
    /// Returns false and leaves the default as it is.
    bool getParamDefValue(int, int, GenericValue*) const override { return false; }
    /// Returns false.
    bool hasRetVal(int) const override { return false; }
    /// Returns -1.
    int findMethod(const wchar*) const override { return -1; }

  protected:
    ~ContextDefCore() = default;
};

/// Implements the definition of `T` from its static tables `T::properties()` and `T::methods()`. One table of
/// names serves all objects of the class. For a number out of range names are null, a property can be neither
/// read nor written, and a method has no parameters.
template <class T, class I = IContext_>
class IContextDefImpl : public I {
  public:
    using ContextClass = T; ///< the class whose tables these are

    /// Returns how many entries the table of properties has.
    int getNProps() const override { return static_cast<int>(T::properties().size()); }
    /// Returns a name from the table, borrowed; valid for ever.
    const wchar* getPropName(int prop, int alias) const override {
        return detail::name_at(T::properties(), prop, alias);
    }
    /// Returns whether the property has a function that reads it.
    bool isPropReadable(int prop) const override {
        const auto* const entry = detail::entry_at(T::properties(), prop);
        return entry != nullptr && entry->get != nullptr;
    }
    /// Returns whether the property has a function that writes it.
    bool isPropWritable(int prop) const override {
        const auto* const entry = detail::entry_at(T::properties(), prop);
        return entry != nullptr && entry->set != nullptr;
    }
    /// Returns the number of the property with that name, or -1. Builds the table of names on the first call.
    int findProp(const wchar* name) const override {
        static const NameTable names = detail::name_table(T::properties());
        return names.find(name);
    }

    /// Returns how many entries the table of methods has.
    int getNMethods() const override { return static_cast<int>(T::methods().size()); }
    /// Returns a name from the table, borrowed; valid for ever.
    const wchar* getMethodName(int method, int alias) const override {
        return detail::name_at(T::methods(), method, alias);
    }
    /// Returns how many parameters the entry of the method has.
    int getNParams(int method) const override {
        const auto* const entry = detail::entry_at(T::methods(), method);
        return entry != nullptr ? static_cast<int>(entry->params.size()) : 0;
    }
    /// Returns what the parameter's entry says.
    bool isParamIn(int method, int param) const override {
        const Param* const entry = paramAt(method, param);
        return entry == nullptr || entry->in;
    }
    /// Returns what the parameter's entry says.
    bool isParamOut(int method, int param) const override {
        const Param* const entry = paramAt(method, param);
        return entry != nullptr && entry->out;
    }
    /// Returns whether the parameter's entry has a default, and stores it in `*out` when that is not null.
    bool getParamDefValue(int method, int param, GenericValue* out) const override {
        const Param* const entry = paramAt(method, param);
        return entry != nullptr && entry->getDefault(out);
    }
    /// Returns whether the entry is that of a function.
    bool hasRetVal(int method) const override {
        const auto* const entry = detail::entry_at(T::methods(), method);
        return entry != nullptr && entry->returns;
    }
    /// Returns the number of the method with that name, or -1. Builds the table of names on the first call.
    int findMethod(const wchar* name) const override {
        static const NameTable names = detail::name_table(T::methods());
        return names.find(name);
    }

  protected:
    ~IContextDefImpl() = default;

  private:
    static const Param* paramAt(int method, int param) noexcept {
        const auto* const entry = detail::entry_at(T::methods(), method);
        return entry != nullptr ? detail::entry_at(entry->params, param) : nullptr;
    }
};

/// Implements values and calls on top of a definition, whose tables lead to the functions of the class.
template <class Def>
class IContextImpl : public Def {
    using T = typename Def::ContextClass;

  public:
    /// Returns the object itself as its definition.
    InterfacePtr<IContextDef> getIContextDef() override {
        return InterfacePtr<IContextDef>(static_cast<IContextDef*>(this));
    }
    /// Stores in `out` what the property's function returns. Throws ContextException if it has none.
    void getPropVal(int prop, GenericValue& out) override {
        const auto* const entry = detail::entry_at(T::properties(), prop);
        if (entry == nullptr)
            detail::bad_property(prop);
        if (entry->get == nullptr)
            detail::unreadable_property(entry->names[kEnglish]);
        out = entry->read(self());
    }
    /// Calls the function that writes the property. Throws ContextException if it has none.
    void setPropVal(int prop, const GenericValue& value) override {
        const auto* const entry = detail::entry_at(T::properties(), prop);
        if (entry == nullptr)
            detail::bad_property(prop);
        if (entry->set == nullptr)
            detail::unwritable_property(entry->names[kEnglish]);
        entry->write(self(), value);
    }
    /// Completes the arguments with defaults and calls the method's function, see IContext_::call(). Throws
    /// ContextException for a number out of range and a wrong count of arguments, before anything is called.
    void call(int method, GenericValue* result, std::vector<GenericValue>* params) override {
        const auto* const entry = detail::entry_at(T::methods(), method);
        if (entry == nullptr)
            detail::bad_method(method);
        std::vector<GenericValue> none;
        std::vector<GenericValue>& arguments = params != nullptr ? *params : none;
        if (arguments.size() != entry->params.size())
            detail::complete_arguments(entry->params, arguments, entry->names[kEnglish]);
        GenericValue returned = entry->invoke(self(), arguments);
        if (result != nullptr)
            *result = entry->returns ? std::move(returned) : GenericValue();
    }

  protected:
    ~IContextImpl() = default;

  private:
    T& self() noexcept { return static_cast<T&>(*this); }
};

/// A definition held by the object itself, whose names may change: `T` implements the names, and look-ups go
/// through a `Cache` of the object's own (ContextDefCached or ContextDefNoncached). With `early`, `T` builds
/// the tables when it is made, by initContextDefCache().
template <class T, class Cache = ContextDefCached, bool early = false, class I = IContext_>
class ContextDefIntern : public ContextDefCore<I> {
  public:
    /// Returns the number of the property with that name, or -1, as the cache finds it.
    int findProp(const wchar* name) const override { return cache_.findProp(*this, name); }
    /// Returns the number of the method with that name, or -1, as the cache finds it.
    int findMethod(const wchar* name) const override { return cache_.findMethod(*this, name); }

  protected:
    ~ContextDefIntern() = default;

    /// Builds both tables of the cache at once.
    void initContextDefCache() const {
        cache_.initPropsCache(*this);
        cache_.initMethodsCache(*this);
    }
    /// Forgets the names of the properties. `T` calls it when their set has changed; with `early` it builds
    /// the table again and may throw std::bad_alloc.
    void resetPropsCache() noexcept(!early) {
        cache_.resetPropsCache();
        if constexpr (early)
            cache_.initPropsCache(*this);
    }
    /// Forgets the names of the methods, as resetPropsCache() does those of the properties.
    void resetMethodsCache() noexcept(!early) {
        cache_.resetMethodsCache();
        if constexpr (early)
            cache_.initMethodsCache(*this);
    }

  private:
    Cache cache_;
};

} // namespace core
