// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/module_contract.h>

#include <filesystem>
#include <string>

/// Shared libraries, as the system loads them.
namespace core::detail {

/// Loads a file and returns the system's handle of it; null when the system refuses, with its reason.
[[nodiscard]] void* load_object(const std::filesystem::path& file, std::string& reason);
/// The same for a file of which some functions are missing here, where the system can do without them.
[[nodiscard]] void* load_incomplete_object(const std::filesystem::path& file) noexcept;
/// Gives a handle back; with the last one the file goes.
void unload_object(void* handle) noexcept;
/// Whether a file is loaded.
[[nodiscard]] bool is_object_loaded(const std::filesystem::path& file) noexcept;

/// The declaration in the file itself, not in one that it is linked with; null if none exists.
[[nodiscard]] const ModuleDeclaration* declaration_in(void* handle) noexcept;
/// The declaration of the program; null for a program that declares no module.
[[nodiscard]] const ModuleDeclaration* declaration_of_program() noexcept;

/// Where the system has put the file that an address lies in; null for an address in none.
[[nodiscard]] const void* object_at(const void* address) noexcept;
/// The path of the file that holds an address; empty when the system does not know it.
[[nodiscard]] std::filesystem::path file_of(const void* address);

} // namespace core::detail
