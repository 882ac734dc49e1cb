// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <atomic>

namespace core {

class SCOM_ResourceBundle;

/// What the code of one shared library or program is known by. Each has its own, so that what is compiled
/// into it says whose it is.
struct ModuleAnchor {
    /// The message texts of the module, borrowed while it is loaded; null for what has none of its own.
    std::atomic<SCOM_ResourceBundle*> bundle{nullptr};
    /// Whether the module can be unloaded: then the library counts who holds its types and enumerations.
    std::atomic<bool> leaves{false};
};

/// The anchor of the calling library or program. It is never exported, not even by a module whose other names
/// are, so that no module takes another one's.
[[gnu::visibility("hidden")]] inline constinit ModuleAnchor module_anchor;

} // namespace core
