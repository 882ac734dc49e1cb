// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/strings/text.h>

namespace core::script {

/// Texts of scripts, names of variables and functions, in UTF-16 or UTF-8.
using core::Text;

} // namespace core::script
