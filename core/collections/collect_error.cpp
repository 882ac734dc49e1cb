// SPDX-License-Identifier: Apache-2.0
#include <core/collections/collect_error.h>
#include <core/runtime/error.h>

namespace core {

wstring collect_error_bad_index() {
    return message_text("IDS_INDEX_OFFBOUND");
}

wstring collect_error_bad_offset() {
    return message_text("IDS_COLLECTION_BADOFFSET");
}

} // namespace core
