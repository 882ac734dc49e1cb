// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/commands/describe_report.h"
#include "host/terminal/console.h"

/// Writes what is known of types, as text or as JSON.
namespace host::describe {

/// One line for each type: its names and what it is.
void write_list(Console& console, const std::vector<core::IType*>& types);
/// `function` has the name of the type, too; null for none.
void write_type(Console& console, const TypeReport& report, const Method* function);
/// A member of a type; a function or a property of its own where the owner has no names.
void write_member(Console& console, const Names& owner, const Member& member);
/// A line for each module, and the classes of those that are not the library.
void write_modules(Console& console, const std::vector<ModuleReport>& modules);
/// A line for each locale: its key, its name in the user's language and in its own.
void write_locales(Console& console);
/// What can be called without an object.
void write_functions(Console& console, const std::vector<Method>& functions);

} // namespace host::describe
