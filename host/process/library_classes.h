// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/process/id_table.h"

#include <core/runtime/class_entry.h>

#include <cstddef>
#include <vector>

namespace host::detail {

/// The classes of the library, which are the same in each process: found by their ids in one table that all
/// processes share, so that the start of a process does not depend on how many there are.
class LibraryClasses {
  public:
    /// A class of the library.
    struct Class {
        explicit Class(const core::GUID& clsid) noexcept : id(clsid) {}

        const core::GUID id;
        const core::ClassEntry* declaration = nullptr;
        std::size_t index = 0; // less than size()
    };

    /// Returns the table, valid until the program ends. The first call makes it and throws std::bad_alloc.
    [[nodiscard]] static const LibraryClasses& get();

    /// Returns a class, null for an id that the library does not declare. Takes no lock.
    [[nodiscard]] const Class* find(const core::GUID& clsid) const noexcept { return classes_.find(clsid); }
    /// Returns how many classes there are.
    [[nodiscard]] std::size_t size() const noexcept { return classes_.entries().size(); }
    /// Returns the declarations of those classes that are services.
    [[nodiscard]] const std::vector<const core::ClassEntry*>& services() const noexcept { return services_; }

  private:
    LibraryClasses();

    IdTable<Class> classes_;
    std::vector<const core::ClassEntry*> services_;
};

} // namespace host::detail
