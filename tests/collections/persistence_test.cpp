// SPDX-License-Identifier: Apache-2.0
// Concerns: the exact text of every collection; reading back what was written, in order; malformed bodies
// that leave the object as it was; nesting at the limit and beyond it.
#include "tests/collections/script.h"

#include <core/lists/errors.h>
#include <core/lists/list_in_stream.h>
#include <core/persistence/persistence.h>
#include <core/streams/memory_stream.h>
#include <core/values/errors.h>

namespace {

using namespace script;

class Persistence : public script::Test {};

TEST_F(Persistence, BodiesAreCountsAndElements) {
    const GenericValue array = make(u"Array");
    call(array, u"Add", {1.5});
    call(array, u"Add", {u"x"});
    const GenericValue structure = make(u"Structure", {u"b,A", true});
    const GenericValue map = make(u"Map");
    call(map, u"Insert", {GenericValue(), array});
    const struct {
        GenericValue value;
        wstring text;
    } cases[] = {
        {array, u"{\"#\",1bb40b60-bbfa-11d5-a3c1-0050bae0a776,\n{2,\n{\"N\",1.5},\n{\"S\",\"x\"}\n}\n}"},
        {make(u"FixedArray", {make(u"Array")}), u"{\"#\",96153e21-444d-4b23-91a9-25a2483f7e45,\n{0}\n}"},
        {structure, u"{\"#\",c6bdae87-2280-4624-af03-2c1b4371b2e4,\n{2,\n{\n{\"S\",\"b\"},\n{\"B\",1}\n},\n"
                    u"{\n{\"S\",\"A\"},\n{\"U\"}\n}\n}\n}"},
        {map,
         u"{\"#\",ca8cb955-479c-4fae-819c-d7cd6b78d678,\n{1,\n{\n{\"U\"},\n"
         u"{\"#\",1bb40b60-bbfa-11d5-a3c1-0050bae0a776,\n{2,\n{\"N\",1.5},\n{\"S\",\"x\"}\n}\n}\n}\n}\n}"},
        {walk(structure)[0],
         u"{\"#\",556b08ab-8ef5-4635-9698-c19f7e52aaf3,\n{\n{\"S\",\"b\"},\n{\"B\",1}\n}\n}"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(text(c.value), c.text);
        const GenericValue back = GenericValue::fromString(c.text);
        EXPECT_EQ(back.type(), c.value.type());
        EXPECT_EQ(text(back), c.text);
    }
}

TEST_F(Persistence, OrderAndSpellingComeBack) {
    for (const wchar* type : {u"Structure", u"Map"}) {
        const GenericValue pairs = make(type);
        for (int i = 0; i < 1000; ++i)
            call(pairs, u"Insert", {u"Key" + string_intto(i * 7919 % 1000), i});
        for (int i = 0; i < 400; ++i)
            call(pairs, u"Delete", {u"Key" + string_intto(i * 2)});
        const GenericValue back = GenericValue::fromString(text(pairs));
        const auto before = walk(pairs);
        const auto after = walk(back);
        ASSERT_EQ(after.size(), 600U);
        for (std::size_t i = 0; i < before.size(); ++i) {
            ASSERT_EQ(property(after[i], u"Key"), property(before[i], u"Key"));
            ASSERT_EQ(property(after[i], u"Value"), property(before[i], u"Value"));
        }
        EXPECT_TRUE(call(back, u"Count").equals(600));
    }
}

/// Keys that differ only below what is written are one key when they come back.
TEST_F(Persistence, KeysWrittenAlikeAreOneKey) {
    const GenericValue map = make(u"Map");
    call(map, u"Insert", {Date(kTicksPerSecond), 1});
    call(map, u"Insert", {Date(kTicksPerSecond + 1), 2});
    const GenericValue back = GenericValue::fromString(text(map));
    EXPECT_TRUE(call(back, u"Get", {Date(kTicksPerSecond)}).equals(2));
}

TEST_F(Persistence, AMalformedBodyChangesNothing) {
    const struct {
        const wchar* type;
        std::vector<wstring> bodies;
    } cases[] = {
        {u"Array",
         {u"{}", u"{-1}", u"{1}", u"{0,{\"U\"}}", u"{2,{\"U\"}}", u"{1000000000000,{\"U\"}}", u"{1,2}",
          u"{1,{\"X\"}}"}},
        {u"Structure",
         {u"{-1}", u"{1,{{\"N\",1},{\"U\"}}}", u"{1,{{\"S\",\"a b\"},{\"U\"}}}", u"{1,{{\"S\",\"a\"}}}",
          u"{2,{{\"S\",\"a\"},{\"U\"}},{{\"S\",\"A\"},{\"U\"}}}", u"{1,{{\"S\",\"a\"},{\"U\"},{\"U\"}}}"}},
        {u"Map", {u"{}", u"{1,{\"U\"}}", u"{1,{{\"U\"},{\"U\"}}", u"{9223372036854775807}"}},
    };
    for (const auto& c : cases) {
        for (const wstring& body : c.bodies) {
            const GenericValue object = make(c.type);
            const bool isArray = object.query<IValueArray>().get() != nullptr;
            call(object, isArray ? u"Add" : u"Insert", isArray ? Arguments{1} : Arguments{u"a", 1});
            const wstring before = text(object);
            MemoryInStream memory(body);
            ListInStream in(memory);
            ListInStorage storage(in);
            EXPECT_NE(failure<ListStreamException>(
                          [&] { object.query<IPersistableObject>()->deserialize(&storage); }),
                      u"")
                << to_utf8(body);
            EXPECT_EQ(text(object), before);
        }
    }
    EXPECT_NE(failure<TypeException>([] {
                  (void)GenericValue::fromString(u"{\"#\",d01bff24-01c3-4ed3-b0d7-63042f854d4b,{0}}");
              }),
              u"");
}

GenericValue nested(int depth) {
    GenericValue value;
    for (int i = 1; i < depth; ++i) {
        const wchar* const type = i % 3 == 0 ? u"Array" : i % 3 == 1 ? u"Map" : u"Structure";
        const GenericValue outer = make(type);
        call(outer, i % 3 == 0 ? u"Add" : u"Insert", i % 3 == 0 ? Arguments{value} : Arguments{u"k", value});
        value = outer;
    }
    return value;
}

TEST_F(Persistence, ValuesNestUpToTheLimit) {
    const wstring deepest = text(nested(Nesting::kMaxDepth));
    EXPECT_EQ(text(GenericValue::fromString(deepest)), deepest);
    EXPECT_NE(failure<ListStreamException>([] { text(nested(Nesting::kMaxDepth + 1)); }), u"");
    const wstring open = u"{\"#\",1bb40b60-bbfa-11d5-a3c1-0050bae0a776,{1,";
    wstring deeper;
    for (int i = 0; i < 100'000; ++i)
        deeper += open;
    EXPECT_NE(failure<ListStreamException>([&] { (void)GenericValue::fromString(deeper); }), u"");

    const GenericValue loop = make(u"Array");
    call(loop, u"Add", {loop});
    EXPECT_NE(failure<ListStreamException>([&] { text(loop); }), u"") << "an array that holds itself";
    call(loop, u"Clear");
}

} // namespace
