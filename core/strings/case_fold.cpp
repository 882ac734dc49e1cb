// SPDX-License-Identifier: Apache-2.0
#include "core/strings/folded_reader.h"

#include <core/runtime/utf8.h>
#include <core/strings/case_fold.h>

namespace core {

wchar fold_case(wchar c) noexcept {
    return FoldTable::instance().simple(c);
}

wstring fold_case(wstring_view text) {
    wstring folded;
    folded.reserve(text.size());
    FoldedReader reader(text);
    for (int c = reader.next(); c >= 0; c = reader.next())
        folded.push_back(static_cast<wchar>(c));
    return folded;
}

std::string fold_case(std::string_view text) {
    return to_utf8(fold_case(from_utf8(text)));
}

} // namespace core
