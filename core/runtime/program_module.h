// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/module_contract.h>

#include <filesystem>

namespace core::detail {

/// Throws ModuleException unless this library understands the declaration.
void check_declaration(const ModuleDeclaration& declaration, const std::filesystem::path& file);

/// Makes one list of all that a module declares, and returns its head.
[[nodiscard]] ClassEntry* joined_entries(const ModuleDeclaration& declaration) noexcept;

/// Begins the module that the program itself declares; there may be none. Throws ModuleException.
void begin_program_module();
/// Ends it; does nothing in a program without one.
void end_program_module() noexcept;

} // namespace core::detail
