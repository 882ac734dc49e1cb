// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/files/errors.h>
#include <core/storage/errors.h>

#include <cerrno>
#include <cstdint>
#include <string_view>

namespace core {

/// Runs `call`, which reads what lies at `address`. A place that the disk cannot read is damage of what lies
/// there, like any other, and is thrown as ChainInFileExc: it must not end the reading of all else.
template <class Call>
auto at_place(std::uint64_t address, Call call) -> decltype(call()) {
    try {
        return call();
    } catch (const FileException& e) {
        if (e.systemError() != EIO || std::string_view(e.messageId()) != messages::kFileRead)
            throw;
        throw ChainInFileExc(address);
    }
}

} // namespace core
