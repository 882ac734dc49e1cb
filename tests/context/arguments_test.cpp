// SPDX-License-Identifier: Apache-2.0
// Concerns: the bounds of indexes, offsets and counts against plain arithmetic; which kinds of values each
// reader takes; the items of lists.
#include <core/context/arguments.h>
#include <core/context/errors.h>
#include <core/runtime/errors.h>
#include <host/host_process.h>

#include <gtest/gtest.h>

namespace {

using namespace core;

class Arguments : public testing::Test {
  protected:
    /// What `read` returns, or the message that it throws.
    template <class Read>
    static Value outcome(Read read) {
        try {
            return Value(read());
        } catch (const ContextException& e) {
            return Value(e.description());
        }
    }

    host::HostProcess process_;
    const Value badIndex_ = message_text("IDS_INDEX_OFFBOUND");
    const Value badOffset_ = message_text("IDS_COLLECTION_BADOFFSET");
    const Value badType_ = message_text("IDS_PARAMETER_N_TYPE_MISMATCH", {u"3"});
    const Value badValue_ = message_text("IDS_PARAMETER_N_VALUE_MISMATCH", {u"3"});
};

TEST_F(Arguments, IndexesAndOffsetsStayWithinTheirCollection) {
    const Numeric huge = Numeric(10).pow(Numeric(30));
    for (std::int64_t count = 0; count < 4; ++count) {
        const auto size = static_cast<std::size_t>(count);
        for (std::int64_t index = -2; index < 6; ++index) {
            const bool within = index >= 0 && index < count;
            const Value half = Numeric(index) + (index < 0 ? Numeric(-0.5) : Numeric(0.5));
            for (const Value& argument : {Value(index), half}) {
                EXPECT_EQ(outcome([&] { return position_argument(argument, 2, size); }),
                          within ? Value(index) : badIndex_);
                EXPECT_EQ(
                    outcome([&] { return position_argument(argument, 2, size, IndexBound::insertion); }),
                    within || index == count ? Value(index) : badIndex_);
            }
            for (std::int64_t from = 0; from < count; ++from) {
                const std::int64_t target = from + index;
                EXPECT_EQ(
                    outcome([&] { return target_argument(index, 2, static_cast<std::size_t>(from), size); }),
                    target >= 0 && target < count ? Value(target) : badOffset_);
            }
        }
        for (const Numeric& far : {huge, -huge}) {
            EXPECT_EQ(outcome([&] { return position_argument(far, 2, size); }), badIndex_);
            EXPECT_EQ(outcome([&] { return target_argument(far, 2, 0, size); }), badOffset_);
        }
    }
}

TEST_F(Arguments, CountsHave32Bits) {
    const std::int64_t end = std::int64_t{1} << 32;
    for (const Value& good : {Value(0), Value(-0.9), Value(2.9), Value(end - 1), Value(Numeric(end) - 0.1)}) {
        const auto expected = static_cast<std::int64_t>(*good.asNumeric());
        EXPECT_EQ(outcome([&] { return count_argument(good, 2); }), Value(expected));
    }
    for (const Value& bad : {Value(-1), Value(end), Value(1e30)})
        EXPECT_EQ(outcome([&] { return count_argument(bad, 2); }), badValue_);
    EXPECT_EQ(count_argument(Value(), 2), 0U);
    EXPECT_EQ(count_argument(Value(), 2, 7), 7U);
}

TEST_F(Arguments, EachReaderTakesItsOwnKind) {
    const Value values[] = {Value(), Value::null(), true, 5, u"5", Date(2024, 1, 1), Type(Type::number)};
    for (const Value& value : values) {
        const auto only = [&](ValueKind kind, const Value& result) {
            EXPECT_EQ(result == badType_, value.kind() != kind) << static_cast<int>(value.kind());
        };
        only(ValueKind::boolean, outcome([&] { return flag_argument(value, 2); }));
        only(ValueKind::number, outcome([&] { return number_argument(value, 2); }));
        only(ValueKind::number, outcome([&] { return index_argument(value, 2); }));
        only(ValueKind::string, outcome([&] { return text_argument(value, 2); }));
        only(ValueKind::string, outcome([&] { return list_argument(value, 2).size(); }));
        only(ValueKind::object, outcome([&] { return object_argument<IType>(value, 2)->name(0); }));
    }
    EXPECT_EQ(outcome([] { return flag_argument(Value(false), 0); }), Value(false));
}

TEST_F(Arguments, ListsAreTakenApart) {
    using Items = std::vector<wstring_view>;
    EXPECT_EQ(list_argument(u" a,b c , ,d,", 0), (Items{u"a", u"b c", u"", u"d", u""}));
    EXPECT_EQ(list_argument(u"a,,b", 0, EmptyTokens::skip), (Items{u"a", u"b"}));
    EXPECT_EQ(list_argument(u" ", 0), Items{u""});
    const std::vector<GenericValue> few = {1};
    EXPECT_EQ(&optional_argument(few, 0), &few[0]);
    EXPECT_TRUE(optional_argument(few, 1).isUndefined());
}

} // namespace
