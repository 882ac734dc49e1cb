// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace support {

/// Whether the loader attaches the library under test before the program begins, and keeps it attached.
extern const bool kLoaderAttaches;

/// A shared library that is loaded by the system, without the library under test.
class Library {
  public:
    /// Throws std::runtime_error when it cannot be loaded.
    explicit Library(const std::string& file);
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;
    ~Library();

    [[nodiscard]] static bool isLoaded(const std::string& file);
    /// A function that it exports; null for none.
    template <class Function>
    [[nodiscard]] Function* function(const char* name) const {
        return reinterpret_cast<Function*>(find(name));
    }

  private:
    [[nodiscard]] void (*find(const char* name) const)();

    void* handle_;
};

} // namespace support
