// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/language/interpreter.h"

#include <core/script/console.h>

namespace core::script {

/// What complete() answers for the engine of an interpreter.
[[nodiscard]] Completion complete_names(const Interpreter& interpreter, wstring_view before, int alias);

} // namespace core::script
