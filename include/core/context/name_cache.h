// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/context/context_def.h>
#include <core/runtime/types.h>

#include <cstddef>
#include <memory>

namespace core {

/// A table from names to numbers, which finds a name in any case. It keeps foldings of the names, not the
/// names. Several threads may search at once; none may change the table meanwhile.
class CORE_API NameTable {
  public:
    /// An empty table, which owns no memory.
    NameTable() noexcept;
    /// Takes the names of the other table, which is empty afterwards.
    NameTable(NameTable&& other) noexcept;
    /// Takes the names of the other table, which is empty afterwards.
    NameTable& operator=(NameTable&& other) noexcept;
    ~NameTable();

    /// Replaces the content by the names of the numbers 0 to `count` - 1: for each the aliases 0, 1, ...
    /// until `name(number, alias)` returns null. Throws std::bad_alloc, and what `name` throws; the table
    /// then holds some of the names.
    template <class Name>
    void build(int count, Name name) {
        clear();
        reserve(count);
        for (int number = 0; number < count; ++number) {
            for (int alias = 0;; ++alias) {
                const wchar* const text = name(number, alias);
                if (text == nullptr)
                    break;
                add(text, number);
            }
        }
    }
    /// Makes room for two names of each of `count` numbers. Throws std::bad_alloc; nothing has changed then.
    void reserve(int count);
    /// Adds a name of a number. Where the table has an equal name, that one stays: a lower number wins, and
    /// an English name wins over a Russian one, when they are added first. Throws std::bad_alloc; nothing has
    /// changed then.
    void add(wstring_view name, int number);
    /// Removes all names and gives the memory back.
    void clear() noexcept;

    /// Returns the number of a name, or -1.
    [[nodiscard]] int find(wstring_view name) const noexcept;
    /// Returns the number of a name, or -1, also for null.
    [[nodiscard]] int find(const wchar* name) const noexcept {
        return name != nullptr ? find(wstring_view(name)) : -1;
    }
    /// Returns how many different names there are.
    [[nodiscard]] std::size_t size() const noexcept;

  private:
    struct Content;
    std::unique_ptr<Content> content_; ///< null while the table is empty
};

/// Finds properties and methods by tables that are built when first needed, one for each. Not for use by two
/// threads while it builds.
class CORE_API ContextDefCached {
  public:
    /// Returns the number of the property with that name in `def`, or -1. Builds the table on the first call.
    [[nodiscard]] int findProp(const IContextDef& def, const wchar* name) const {
        if (!props_.built)
            initPropsCache(def);
        return props_.table.find(name);
    }
    /// Returns the number of the method with that name in `def`, or -1. Builds the table on the first call.
    [[nodiscard]] int findMethod(const IContextDef& def, const wchar* name) const {
        if (!methods_.built)
            initMethodsCache(def);
        return methods_.table.find(name);
    }
    /// Builds the table of properties, also where it stands already.
    void initPropsCache(const IContextDef& def) const;
    /// Builds the table of methods, also where it stands already.
    void initMethodsCache(const IContextDef& def) const;
    /// Forgets the names of the properties; to be called when their set has changed.
    void resetPropsCache() noexcept { props_.reset(); }
    /// Forgets the names of the methods; to be called when their set has changed.
    void resetMethodsCache() noexcept { methods_.reset(); }

    /// Returns how many names the table of properties holds; 0 before it is built.
    [[nodiscard]] std::size_t propNames() const noexcept { return props_.table.size(); }

  private:
    struct Cache {
        bool built = false;
        NameTable table;
        void reset() noexcept {
            table.clear();
            built = false;
        }
    };
    mutable Cache props_;
    mutable Cache methods_;
};

/// Finds properties and methods by walking their names on every call: for definitions whose names change more
/// often than they are asked for.
class CORE_API ContextDefNoncached {
  public:
    /// Returns the number of the property with that name in `def`, or -1.
    [[nodiscard]] int findProp(const IContextDef& def, const wchar* name) const;
    /// Returns the number of the method with that name in `def`, or -1.
    [[nodiscard]] int findMethod(const IContextDef& def, const wchar* name) const;
    /// Does nothing.
    void initPropsCache(const IContextDef&) const noexcept {}
    /// Does nothing.
    void initMethodsCache(const IContextDef&) const noexcept {}
    /// Does nothing.
    void resetPropsCache() noexcept {}
    /// Does nothing.
    void resetMethodsCache() noexcept {}
};

} // namespace core
