// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/context/context_def.h>
#include <core/strings/names.h>

#include <cstdint>
#include <vector>

namespace core {

/// A table from names in any case to numbers. Of two equal names the one added first stays, so that a lower
/// number wins, and English wins over Russian. The foldings of names are copied.
class CORE_API NameTable {
  public:
    /// Adds the names of numbers 0 ... `count` - 1: for each the aliases 0, 1, ... while `name(number,
    /// alias)` is not null.
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
    /// Takes memory for the names of `count` numbers. Throws std::bad_alloc.
    void reserve(int count);
    /// Adds a name that leads to a number; a name that is here keeps its number. Throws std::bad_alloc.
    void add(wstring_view name, int number);
    /// Removes all names.
    void clear() noexcept;

    /// Returns the number of a name, or -1.
    [[nodiscard]] int find(wstring_view name) const noexcept;
    /// Returns the number of a name, or -1; null is not a name.
    [[nodiscard]] int find(const wchar* name) const noexcept {
        return name != nullptr ? find(wstring_view(name)) : -1;
    }
    /// Returns how many different names there are.
    [[nodiscard]] std::size_t size() const noexcept { return size_; }

  private:
    struct Entry {
        NameFingerprint fingerprint;
        std::int32_t number = 0;
        std::uint32_t folding = kFree; // where the words of that of the name begin
    };
    static constexpr std::uint32_t kFree = ~std::uint32_t{0};

    template <class Same>
    [[nodiscard]] std::size_t slotOf(const NameFingerprint& fingerprint, Same same) const noexcept;
    [[nodiscard]] std::size_t slotOf(const class FoldedName& name) const noexcept;
    void resize(std::size_t slots);

    std::vector<Entry> slots_; // a power of two of them, half full at the most
    std::size_t size_ = 0;
    std::vector<std::uint64_t> foldings_;
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
