// SPDX-License-Identifier: Apache-2.0
#include <core/runtime/error.h>
#include <core/serialization/persistence.h>

namespace core {

void Nesting::Level::fail() {
    throw_error<ListStreamException>("IDS_LISTSTREAMERROR");
}

} // namespace core
