// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/language/ast.h"
#include "host/language/script_error.h"
#include "host/language/variables.h"

namespace host::script {

/// Expressions and statements may be nested this deeply together.
inline constexpr int kMaxNesting = 200;

enum class Mode {
    file,
    console, ///< an expression is a statement, too; "=" behind what cannot be assigned to compares
};

/// Reads a script. New variables are added to `variables`, also when it fails. Throws ScriptError for the
/// first thing that is wrong.
///
/// The grammar stands in docs/corehost.md, "The language". After "." and New every word is a name, keywords
/// included.
[[nodiscard]] Program parse(std::shared_ptr<const Source> source, Variables& variables,
                            Mode mode = Mode::file);

} // namespace host::script
