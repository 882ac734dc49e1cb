// SPDX-License-Identifier: Apache-2.0
#include "core/lists/malformed.h"

#include <core/lists/nesting.h>
#include <core/runtime/error.h>
#include <core/strings/integer_text.h>

namespace core {

void throw_malformed() {
    throw_error<ListStreamException>("IDS_LISTSTREAMERROR");
}

void Nesting::Level::fail() {
    throw_error<ListStreamException>("IDS_NESTING_TOO_DEEP", {string_intto(kMaxDepth)});
}

} // namespace core
