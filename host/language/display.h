// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/values/generic_value.h>

namespace host::script {

/// A value as a console shows it, on one line of bounded length: primitive ones as a script writes them, an
/// object by its type's name and what it holds, as in `Structure {Name: "apple", Price: 1.2}`. `alias` is the
/// language of names: kEnglish or kRussian.
[[nodiscard]] core::wstring display(const core::Value& value, int alias);

} // namespace host::script
