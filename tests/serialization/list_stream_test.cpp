// SPDX-License-Identifier: Apache-2.0
// The writer's commas and line breaks, the reader's demands, and every kind of token through both.
#include <core/runtime/exceptions.h>
#include <core/serialization/list_in_stream.h>
#include <core/serialization/list_out_stream.h>
#include <core/serialization/memory_stream.h>

#include <gtest/gtest.h>

#include <functional>

namespace core {
namespace {

wstring written(const std::function<void(ListOutStream&)>& write) {
    MemoryOutStream stream;
    ListOutStream out(stream);
    write(out);
    return stream.take();
}

TEST(ListOutStream, PlacesCommasAndLineBreaks) {
    EXPECT_EQ(written([](ListOutStream& out) {
                  out.putBeginOfList();
                  out.put(1);
                  out.putBeginOfList();
                  out.put(2);
                  out.put(3);
                  out.putEndOfList();
                  out.putBeginOfList();
                  out.put(4);
                  out.putEndOfList();
                  out.putEndOfList();
              }),
              u"{1,\n{2,3},\n{4}\n}");
}

TEST(ListInStream, DemandsCommas) {
    const auto read_two = [](wstring_view text) {
        MemoryInStream stream(text);
        ListInStream in(stream);
        int a = 0;
        int b = 0;
        in.getBeginOfList();
        in.get(a);
        in.get(b);
        in.getEndOfList();
        return a * 10 + b;
    };
    EXPECT_EQ(read_two(u" { 1\t,\n2 } "), 12);
    for (const wchar* const text : {u"{1 2}", u"{1,2,}", u"{,1,2}", u"{1,2", u"1,2}", u"{1,}", u""})
        EXPECT_THROW(read_two(text), ListStreamException);
}

} // namespace
} // namespace core
