// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/documents/text_snapshot.h>

#include <cstdint>

namespace core {

/// One replacement in a document: at `offset`, `inserted` stands where `removed` stood.
struct TextChange {
    std::uint64_t offset = 0; ///< of the first unit that was replaced
    TextSnapshot removed{};   ///< what stood there
    TextSnapshot inserted{};  ///< what stands there now
};

/// A replacement that is to be made.
struct TextReplacement {
    TextRange range{};   ///< what is replaced
    wstring_view text{}; ///< what takes its place; borrowed until the call returns
};

} // namespace core
