// SPDX-License-Identifier: Apache-2.0
// Compiled LIKE patterns against the model. The input is UTF-16: the escape character, then the pattern and
// the text, with a line feed between them. What is too long for the model is matched all the same.
#include "tests/strings/like_model.h"

#include <core/strings/like.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    core::wstring input(size / sizeof(core::wchar), u'\0');
    std::memcpy(input.data(), data, input.size() * sizeof(core::wchar));
    if (input.empty())
        return 0;
    const core::wchar escape = input[0] == u'-' ? u'\0' : input[0];
    const std::size_t lineFeed = std::min(input.find(u'\n', 1), input.size() - 1);
    const core::wstring_view pattern(input.data() + 1, lineFeed - (lineFeed > 0 ? 1 : 0));
    const core::wstring_view text(input.data() + lineFeed + 1, input.size() - lineFeed - 1);
    for (const bool nocase : {false, true}) {
        const core::LikePattern ready(pattern, escape,
                                      nocase ? core::LikeCase::ignore : core::LikeCase::exact);
        const bool matches = ready.matches(text);
        const bool called = nocase ? core::compare_nocase_like(text, pattern, escape)
                                   : core::compare_like(text, pattern, escape);
        const bool modelled = pattern.size() <= 12 && text.size() <= 20;
        if (called != matches || (modelled && matches != LikeModel{pattern, escape, nocase}.matches(text)))
            std::abort();
    }
    return 0;
}
