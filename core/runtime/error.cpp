// SPDX-License-Identifier: Apache-2.0
#include <core/runtime/error.h>
#include <core/runtime/utf8.h>

namespace core {

wstring message_text(const char* id, std::initializer_list<wstring>) {
    return id != nullptr ? from_utf8(id) : wstring();
}

} // namespace core
