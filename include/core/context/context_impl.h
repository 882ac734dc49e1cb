// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/context/context_def_core.h>
#include <core/context/context_table.h>

/// The templates that make a class a context. A class of values with methods is written as
///
///     class Counter : public IValueImpl, public IContextImpl<IContextDefImpl<Counter>> {
///       public:
///         using Interfaces = InterfaceList<IValue, IContext_, IContextDef>;
///         static std::span<const Property<Counter>> properties() noexcept;
///         static std::span<const Method<Counter>> methods() noexcept;
///
/// with both tables at one place in its source file.
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

/// Implements the definition of `T` from its static tables. One table of names serves
/// all objects of the class.
template <class T, class I = IContext_>
class IContextDefImpl : public I {
  public:
    using ContextClass = T;

    int getNProps() const override { return static_cast<int>(T::properties().size()); }
    const wchar* getPropName(int prop, int alias) const override {
        return detail::name_at(T::properties(), prop, alias);
    }
    bool isPropReadable(int prop) const override {
        const auto* const entry = detail::entry_at(T::properties(), prop);
        return entry != nullptr && entry->get != nullptr;
    }
    bool isPropWritable(int prop) const override {
        const auto* const entry = detail::entry_at(T::properties(), prop);
        return entry != nullptr && entry->set != nullptr;
    }
    int findProp(const wchar* name) const override {
        static const NameTable names = detail::name_table(T::properties());
        return names.find(name);
    }

    int getNMethods() const override { return static_cast<int>(T::methods().size()); }
    const wchar* getMethodName(int method, int alias) const override {
        return detail::name_at(T::methods(), method, alias);
    }
    int getNParams(int method) const override {
        const auto* const entry = detail::entry_at(T::methods(), method);
        return entry != nullptr ? static_cast<int>(entry->params.size()) : 0;
    }
    bool isParamIn(int method, int param) const override {
        const Param* const entry = paramAt(method, param);
        return entry == nullptr || entry->in;
    }
    bool isParamOut(int method, int param) const override {
        const Param* const entry = paramAt(method, param);
        return entry != nullptr && entry->out;
    }
    bool getParamDefValue(int method, int param, GenericValue* out) const override {
        const Param* const entry = paramAt(method, param);
        return entry != nullptr && entry->getDefault(out);
    }
    bool hasRetVal(int method) const override {
        const auto* const entry = detail::entry_at(T::methods(), method);
        return entry != nullptr && entry->returns;
    }
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

/// Implements values and calls on top of a definition, which says by its tables how.
template <class Def>
class IContextImpl : public Def {
    using T = typename Def::ContextClass;

  public:
    InterfacePtr<IContextDef> getIContextDef() override {
        return InterfacePtr<IContextDef>(static_cast<IContextDef*>(this));
    }

    void getPropVal(int prop, GenericValue& out) override {
        const auto* const entry = detail::entry_at(T::properties(), prop);
        if (entry == nullptr)
            detail::bad_property(prop);
        if (entry->get == nullptr)
            detail::unreadable_property(entry->names[kEnglish]);
        out = (self().*entry->get)();
    }
    void setPropVal(int prop, const GenericValue& value) override {
        const auto* const entry = detail::entry_at(T::properties(), prop);
        if (entry == nullptr)
            detail::bad_property(prop);
        if (entry->set == nullptr)
            detail::unwritable_property(entry->names[kEnglish]);
        (self().*entry->set)(value);
    }
    void call(int method, GenericValue* result, std::vector<GenericValue>* params) override {
        const auto* const entry = detail::entry_at(T::methods(), method);
        if (entry == nullptr)
            detail::bad_method(method);
        std::vector<GenericValue> none;
        std::vector<GenericValue>& arguments = params != nullptr ? *params : none;
        if (arguments.size() != entry->params.size())
            detail::complete_arguments(entry->params, arguments, entry->names[kEnglish]);
        GenericValue returned = (self().*entry->call)(arguments);
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
    int findProp(const wchar* name) const override { return cache_.findProp(*this, name); }
    int findMethod(const wchar* name) const override { return cache_.findMethod(*this, name); }

  protected:
    ~ContextDefIntern() = default;

    /// Builds both tables at once.
    void initContextDefCache() const {
        cache_.initPropsCache(*this);
        cache_.initMethodsCache(*this);
    }
    /// To be called when the set of names has changed.
    void resetPropsCache() noexcept(!early) {
        cache_.resetPropsCache();
        if constexpr (early)
            cache_.initPropsCache(*this);
    }
    void resetMethodsCache() noexcept(!early) {
        cache_.resetMethodsCache();
        if constexpr (early)
            cache_.initMethodsCache(*this);
    }

  private:
    Cache cache_;
};

} // namespace core
