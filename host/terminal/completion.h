// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/language/interpreter.h"

#include <string>
#include <vector>

namespace host {

/// What may stand in place of the word before the cursor.
struct Completion {
    std::size_t typed = 0;            ///< how many units of the word are there
    std::vector<core::wstring> names; ///< in order; methods with their opening parenthesis

    /// What all the names begin with, in the spelling of the first.
    [[nodiscard]] core::wstring common() const;
};

/// Completes the end of a script in a console: behind `New` the types that can be made, behind a variable and
/// a dot the object's members, elsewhere variables, keywords, functions and global properties. Names are
/// found by the beginning of either of their names, whatever the case; without a beginning there are those in
/// the language of `alias`. Nothing in a string, a comment or a number.
[[nodiscard]] Completion complete(core::wstring_view before, const script::Interpreter& interpreter,
                                  const script::Variables& variables, int alias);

} // namespace host
