// SPDX-License-Identifier: Apache-2.0
#include <core/collections/errors.h>
#include <core/collections/pairs.h>
#include <core/context/errors.h>

namespace core {

wstring collect_error_bad_index() {
    return message_text(messages::kBadIndex);
}

wstring collect_error_bad_offset() {
    return message_text(messages::kBadOffset);
}

void detail::throw_no_key(const Value& key) {
    throw_error<ContextException>(messages::kNoKey, {key.presentation()});
}

} // namespace core
