// SPDX-License-Identifier: Apache-2.0
// Values in parts: each part is one inner file, read when it is first touched; what was shared is shared
// again; what is replaced leaves nothing behind; a failure changes nothing.
#include "tests/support/file_helpers.h"
#include "tests/support/value_samples.h"

#include <set>

namespace core {
namespace {

using script::call;
using script::make;
using script::property;

GenericValue stored(const Value& value) {
    return create_stored_value(value).query<IValue>();
}
const IStoredValue& as_stored(const Value& value) {
    return *value.query<IStoredValue>();
}

class Parts : public script::Test {
  protected:
    [[nodiscard]] Container open() const { return Container(folder_ / "data.st", Container::create); }

    const test::TempFolder folder_;
};

TEST_F(Parts, ComeBackAsTheyWere) {
    Container files = open();
    for (unsigned seed = 0; seed < 60; ++seed) {
        const GenericValue value = test::ValueSamples(seed).any(4);
        for (const ValueForm form : {ValueForm::parts, ValueForm::compact, ValueForm::text}) {
            files.put(u"v", value, form);
            ASSERT_EQ(script::text(files.get(u"v")), script::text(value)) << seed;
        }
        ASSERT_EQ(files.names(), std::vector<wstring>{u"v"}) << "no part is left";
    }
}

TEST_F(Parts, AreReadWhenTheyAreTouchedAndSharedAsBefore) {
    Container files = open();
    const GenericValue array = make(u"Array");
    const GenericValue inner = stored(u"inner");
    const GenericValue shared = stored(inner);
    for (const GenericValue& element : {shared, stored(5), shared, inner})
        call(array, u"Add", {element});
    files.put(u"v", array, ValueForm::parts);
    EXPECT_EQ(files.names().size(), 4U);

    const GenericValue read = files.get(u"v");
    const GenericValue first = call(read, u"Get", {0});
    EXPECT_FALSE(as_stored(first).isLoaded());
    EXPECT_TRUE(first.equals(call(read, u"Get", {2}))) << "one object";
    EXPECT_TRUE(as_stored(first).value().equals(call(read, u"Get", {3}))) << "through another part, too";
    EXPECT_FALSE(as_stored(call(read, u"Get", {3})).isLoaded());
    EXPECT_EQ(as_stored(call(read, u"Get", {3})).value(), Value(u"inner"));
    EXPECT_FALSE(as_stored(call(read, u"Get", {1})).isLoaded());
}

TEST_F(Parts, ThatHoldThemselvesCanBeKept) {
    Container files = open();
    const GenericValue ring = stored({});
    const GenericValue array = make(u"Array", {});
    call(array, u"Add", {ring});
    ring.query<IStoredValue>()->setValue(array);
    files.put(u"ring", ring, ValueForm::parts);
    ring.query<IStoredValue>()->setValue({}); // or neither would ever go
    const Value read = files.get(u"ring");
    EXPECT_TRUE(call(as_stored(read).value(), u"Get", {0}).equals(read));
    read.query<IStoredValue>()->setValue({});

    Value chain = stored(0);
    for (int i = 1; i < 20'000; ++i)
        chain = stored(chain);
    Container memory;
    memory.transaction([&] { memory.put(u"chain", chain, ValueForm::parts); });
    EXPECT_EQ(memory.names().size(), 20'001U) << "no chain is too long for the stack";
    chain = Value();
    Value walk = memory.get(u"chain");
    int length = 0;
    for (; walk.isObject(); ++length)
        walk = Value(as_stored(walk).value());
    EXPECT_EQ(length, 20'000);
}

TEST_F(Parts, ThatNobodyTouchedStayWhereTheyAre) {
    Container files = open();
    const GenericValue structure = make(u"Structure", {u"A, B", stored(stored(1)), stored(2)});
    files.put(u"v", structure, ValueForm::parts);
    const auto parts_of = [&] {
        std::map<wstring, Date> parts;
        for (const StorageFound& file : files.files(u"v.part-*"))
            parts[file.name] = file.modified;
        return parts;
    };
    for (const auto& [name, time] : parts_of())
        files.storage().setTimes(name, Date(2000, 1, 1), Date(2000, 1, 1));
    const GenericValue read = files.get(u"v");
    property(read, u"B").query<IStoredValue>()->setValue(3);
    files.put(u"v", read, ValueForm::parts);
    int untouched = 0;
    for (const auto& [name, time] : parts_of())
        untouched += time == Date(2000, 1, 1) ? 1 : 0;
    EXPECT_EQ(parts_of().size(), 3U);
    EXPECT_EQ(untouched, 2) << "A, and what is in it";
    EXPECT_FALSE(as_stored(property(read, u"A")).isLoaded());
    const GenericValue again = files.get(u"v");
    EXPECT_EQ(as_stored(property(again, u"B")).value(), Value(3));
    EXPECT_EQ(as_stored(as_stored(property(again, u"A")).value()).value(), Value(1));
    // Under another name nothing is shared.
    files.put(u"w", read, ValueForm::parts);
    files.remove(u"v");
    EXPECT_EQ(files.names().size(), 4U);
    EXPECT_EQ(as_stored(as_stored(property(files.get(u"w"), u"A")).value()).value(), Value(1));
}

TEST_F(Parts, GoWithTheirValue) {
    Container files = open();
    const auto put = [&](wstring_view name) { files.put(name, stored(stored(name)), ValueForm::parts); };
    put(u"a");
    put(u"b");
    EXPECT_EQ(files.names().size(), 6U);
    files.rename(u"a", u"c");
    EXPECT_EQ(as_stored(as_stored(files.get(u"c")).value()).value(), Value(u"a"));
    files.rename(u"c", u"C");
    EXPECT_EQ(as_stored(as_stored(files.get(u"C")).value()).value(), Value(u"a"));
    files.rename(u"b", u"C"); // replaces the one that was called a
    EXPECT_EQ(files.names().size(), 3U);
    const GenericValue late = files.get(u"C");
    files.putText(u"C", u"text");
    EXPECT_EQ(files.names().size(), 1U);
    EXPECT_THROW(static_cast<void>(as_stored(late).value()), StorageException) << "its file is gone";
    EXPECT_FALSE(as_stored(late).isLoaded());
    put(u"d");
    files.transaction([&] { files.remove(u"d"); });
    EXPECT_EQ(files.names().size(), 1U);
}

TEST_F(Parts, FailuresChangeNothing) {
    Container files = open();
    files.put(u"v", stored(1), ValueForm::parts);
    const std::vector<wstring> before = files.names();
    const GenericValue bad = make(u"Array");
    call(bad, u"Add", {stored(property(make(u"ValueTable"), u"Columns"))}); // which cannot be written
    EXPECT_THROW(files.put(u"v", bad, ValueForm::parts), ContextException);
    EXPECT_EQ(files.names(), before);
    EXPECT_EQ(as_stored(files.get(u"v")).value(), Value(1));
    // Without its container a value in parts is nothing.
    const std::vector<std::byte> bytes = files.getBytes(u"v");
    EXPECT_THROW(static_cast<void>(GenericValue::fromBytes(bytes)), Exception);
    const GenericValue late = files.get(u"v");
    files.putText(before.back() == u"v" ? before.front() : before.back(), u"damaged");
    EXPECT_THROW(static_cast<void>(as_stored(late).value()), ContextException);
}

} // namespace
} // namespace core
