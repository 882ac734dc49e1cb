// SPDX-License-Identifier: Apache-2.0
#include <core/collections/errors.h>
#include <core/context/errors.h>

namespace core {

wstring collect_error_bad_index() {
    return message_text(messages::kBadIndex);
}

wstring collect_error_bad_offset() {
    return message_text(messages::kBadOffset);
}

} // namespace core
