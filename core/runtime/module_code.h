// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/live_counter.h>

namespace core::detail {

/// Lets a CodeHold find a loaded module by an address in it, as long as one lives, and counts the holds.
class ModuleCode {
  public:
    /// `anchor` lies in the module. Throws std::bad_alloc.
    explicit ModuleCode(const ModuleAnchor& anchor);
    ModuleCode(const ModuleCode&) = delete;
    ModuleCode& operator=(const ModuleCode&) = delete;
    ~ModuleCode();

    /// Where the system has put the file that an address lies in; null for an address in none.
    static const void* fileAt(const void* address) noexcept;
    /// The counter of a file; null for one that cannot be unloaded.
    static LiveCounter* counterOf(const void* file) noexcept;
    /// Whether a module is there that can be unloaded: without one nothing needs to be looked up.
    static bool any() noexcept;

  private:
    const void* file_;
    LiveCounter holds_;
};

} // namespace core::detail
