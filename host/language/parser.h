// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/language/ast.h"
#include "host/language/script_error.h"

#include <functional>

namespace core::script {

/// Expressions and statements may be nested this deeply together.
inline constexpr int kMaxNesting = 200;

enum class Mode {
    file,
    console, ///< an expression is a statement, too; "=" behind what cannot be assigned to compares
};

/// Reads a script. Throws ScriptError for the first thing that is wrong.
///
/// The grammar stands in docs/language.md. After "." and New every word is a name, keywords
/// included.
[[nodiscard]] Program parse(std::shared_ptr<const Source> source, Mode mode = Mode::file);

/// Adds a line to a source, or nothing if no more come.
using GrowSource = std::function<void(Source& source)>;
/// Reads an entry of a console, whose first line `source` holds. `more` is asked wherever the text ends and
/// something must follow, and not before, so that an entry is carried out as soon as it is complete, and each
/// of its lines is read once. What `more` throws passes through.
[[nodiscard]] Program parse_entry(const std::shared_ptr<Source>& source, const GrowSource& more);

} // namespace core::script
