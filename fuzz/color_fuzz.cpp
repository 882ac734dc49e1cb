// SPDX-License-Identifier: Apache-2.0
// Any text as a colour and as a shortcut: what is read is written in one form, which reads back to the same.
#include <core/presentation.h>
#include <core/runtime/utf8.h>

#include <cstdint>
#include <cstdlib>
#include <string_view>

namespace {

void require(bool condition) {
    if (!condition)
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const core::wstring text = core::from_utf8({reinterpret_cast<const char*>(data), size});
    if (const auto color = core::Color::fromText(text)) {
        require(core::Color::fromText(color->toText()) == color);
        if (const auto rgba = color->rgba())
            require(core::from_hsl(core::to_hsl(*rgba), rgba->alpha) == *rgba);
    }
    if (const auto shortCut = core::ShortCut::fromText(text))
        require(core::ShortCut::fromText(shortCut->toText()) == shortCut);
    return 0;
}
