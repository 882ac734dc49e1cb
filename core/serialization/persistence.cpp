// SPDX-License-Identifier: Apache-2.0
#include <core/runtime/error.h>
#include <core/serialization/persistence.h>

namespace core {

Nesting::Level::Level(Nesting& nesting) : nesting_(nesting) {
    if (nesting.depth_ >= kMaxDepth)
        throw_error<ListStreamException>("IDS_LISTSTREAMERROR");
    ++nesting.depth_;
}

} // namespace core
