// SPDX-License-Identifier: Apache-2.0
#include "core/lists/malformed.h"

#include <core/lists/errors.h>
#include <core/lists/nesting.h>
#include <core/strings/integer_text.h>

namespace core {

void throw_malformed() {
    throw_error<ListStreamException>(messages::kMalformedList);
}

void Nesting::Level::fail() {
    throw_error<ListStreamException>(messages::kNestingTooDeep, {string_intto(kMaxDepth)});
}

} // namespace core
