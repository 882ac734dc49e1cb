// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/files/url.h>
#include <core/storage/errors.h>

namespace core {

/// Throws StorageException with the text stored under `id`, whose {0} is the URL of the container or inner
/// file concerned. The failure has Kind::none.
[[noreturn]] inline void throw_storage_error(const char* id, const wstring& url) {
    const wstring shown = shown_url(url);
    throw_with_message(StorageException(StorageException::Kind::none, url, message_text(id, {shown})), id,
                       {shown});
}

} // namespace core
