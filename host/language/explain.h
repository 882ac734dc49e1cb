// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/context/context_def.h>
#include <core/values/errors.h>

#include <span>

namespace core::script {

/// Throws a failure about an argument of a call again with the names of function and parameter and with the
/// value; its id stays, and these stand behind its parameters. Returns for every other failure. `name` is
/// what the script calls the method.
void explain_argument(const ContextException& failure, IContextDef& definition, int method,
                      const wstring& name, std::span<const GenericValue> arguments);

/// The same for an argument of New; `type` is what the script calls the type; its texts name the
/// parameters.
void explain_construction(const ContextException& failure, const wstring& type,
                          std::span<const GenericValue> arguments);

/// Throws a failure about an index again with the index and the number of elements in its text. Returns for
/// every other failure.
void explain_index(const ContextException& failure);

/// Throws ContextException: a call lacks the argument for a parameter, which counts from 0.
[[noreturn]] void missing_argument(IContextDef& definition, int method, const wstring& name, int param);

} // namespace core::script
