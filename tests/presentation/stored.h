// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/lists.h>
#include <core/streams/memory_stream.h>

/// Presentation values as the lists that they are stored as, and back.
namespace core::test {

template <class C>
wstring stored(const C& content) {
    MemoryOutStream text;
    ListOutStream out(text);
    to_stream(out, content);
    return text.take();
}

template <class C>
C restored(wstring_view text) {
    MemoryInStream stream(text);
    ListInStream in(stream);
    C content;
    from_stream(in, content);
    return content;
}

} // namespace core::test
