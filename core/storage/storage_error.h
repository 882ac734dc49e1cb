// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/storage/errors.h>

namespace core {

/// Throws StorageException with the text stored under `id`, whose {0} is the URL of the container or inner
/// file concerned. The failure has Kind::none.
[[noreturn]] inline void throw_storage_error(const char* id, const wstring& url) {
    throw StorageException(StorageException::Kind::none, url, message_text(id, {url}));
}

} // namespace core
