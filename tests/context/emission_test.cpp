// SPDX-License-Identifier: Apache-2.0
// Concerns: the rules of emission against a model, and each of them by itself; connections that outlive their
// event; sinks of every size; sinks that fail; what stays in memory.
#include "tests/context/emission_model.h"
#include "tests/support/rounds.h"

#include <core/context.h>
#include <core/context/events/event_service.h>
#include <core/runtime.h>
#include <core/values.h>
#include <host/host_process.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <iostream>
#include <limits>
#include <thread>

namespace {

using namespace core;

class Emission : public testing::Test {
  protected:
    struct Module {
        SCOM_ResourceBundle bundle{"nothing"};
        SCOM_Module module{module_class_entries, bundle};
        Module() { module.init(this); }
    };

    Module module_;
    host::HostProcess process_;
    std::vector<int> calls_;
};

/// How many events are alive that had a sink once.
std::int32_t tables_alive() {
    std::int32_t count = 0;
    for (const LiveClass& line : live_report())
        count += line.name.find("SinkTable") != std::string::npos ? line.count : 0;
    return count;
}

constexpr const EventNames& kChanged = named<u"Changed", u"ПриИзменении">;

TEST_F(Emission, AgreesWithTheModel) {
    const int steps = support::rounds(100'000, 10'000'000);
    const std::int32_t tables = tables_alive();
    testing::internal::CaptureStderr(); // thousands of failures
    for (std::uint32_t seed = 1; seed <= 10; ++seed) {
        emission::World<emission::PlainEvent> plain(seed);
        emission::World<emission::RealEvent> real(seed);
        for (int step = 0; step < steps / 10; ++step) {
            ASSERT_EQ(real.step(), plain.step()) << "seed " << seed << ", step " << step;
        }
    }
    testing::internal::GetCapturedStderr();
    EXPECT_EQ(tables_alive(), tables);
}

TEST_F(Emission, CallsInOrderThoseThatWereConnectedBefore) {
    Event<int> event(kChanged);
    Connections kept;
    event.raise(1); // nobody hears it
    kept.add(event.connect([&](int value) { calls_.push_back(value); }));
    kept.add(event.connect([&] {
        calls_.push_back(-1);
        kept.add(event.connect([&](int value) { calls_.push_back(10 * value); }));
    }));
    event.raise(2);
    EXPECT_EQ(calls_, (std::vector{2, -1}));
    calls_.clear();
    event.raise(3);
    EXPECT_EQ(calls_, (std::vector{3, -1, 30}));
    EXPECT_EQ(event.connectionCount(), 4U);
    kept.clear();
    EXPECT_EQ(event.connectionCount(), 0U);
}

TEST_F(Emission, ASinkMayEndTheEventAndTheOthersAreNotCalled) {
    auto event = std::make_unique<Event<>>(kChanged);
    auto first = event->connect([&] { event.reset(); });
    auto second = event->connect([&] { calls_.push_back(2); });
    event->raise();
    EXPECT_EQ(event, nullptr);
    EXPECT_TRUE(calls_.empty());
    EXPECT_FALSE(second.isConnected());
    second.disconnect(); // the event is gone; this is still allowed
    EXPECT_NE(first.release(), kNoConnection);
    EXPECT_EQ(first.release(), kNoConnection);
}

TEST_F(Emission, ANumberIsNeverUsedAgain) {
    Event<> event(kChanged);
    const ConnectionNumber first = event.connect([] {}).release();
    ASSERT_TRUE(event.disconnectSink(first));
    const ConnectionNumber second = event.connect([] {}).release();
    EXPECT_NE(first, second);
    EXPECT_FALSE(event.disconnectSink(first));
    EXPECT_FALSE(event.disconnectSink(kNoConnection));
    EXPECT_FALSE(event.disconnectSink(~ConnectionNumber{0}));
    EXPECT_EQ(event.connectionCount(), 1U);
}

TEST_F(Emission, WhatACallableHoldsLivesAsLongAsItIsConnected) {
    Event<const wchar*> event(kChanged);
    const auto held = std::make_shared<int>(1);
    auto connection = event.connect(
        [held, this](const wchar* text) { calls_.push_back(static_cast<int>(wstring_view(text).size())); });
    auto moved = std::move(connection);
    EXPECT_EQ(held.use_count(), 2);
    connection.disconnect(); // holds nothing any more
    event.raise(u"four");
    moved = event.connect([held, count = 0](const wchar*) mutable { ++count; });
    EXPECT_EQ(held.use_count(), 2);
    moved = Connection();
    EXPECT_EQ(held.use_count(), 1);
    EXPECT_EQ(calls_, std::vector{4});

    std::weak_ptr<int> inside;
    Connection own;
    {
        auto other = std::make_shared<int>(2);
        inside = other;
        own = event.connect([other, &own, &inside](const wchar*) {
            own.disconnect(); // the callable that runs must not go
            EXPECT_FALSE(inside.expired());
        });
    }
    event.raise(u"");
    EXPECT_TRUE(inside.expired());
}

TEST_F(Emission, AFailureIsReportedWithTheNameAndTheOthersAreCalled) {
    Event<> event(kChanged);
    Connections kept;
    kept.add(event.connect([] { throw_error<ContextException>(messages::kBadIndex); }));
    kept.add(event.connect([&] { calls_.push_back(2); }));
    kept.add(event.connect([] { throw 3; }));
    kept.add(event.connect([&] { calls_.push_back(4); }));
    testing::internal::CaptureStderr();
    event.raise();
    EXPECT_EQ(calls_, (std::vector{2, 4}));
    const std::string reported = testing::internal::GetCapturedStderr();
    EXPECT_EQ(std::count(reported.begin(), reported.end(), '\n'), 2) << reported;
    EXPECT_NE(reported.find("Changed"), std::string::npos) << reported;
    EXPECT_NE(reported.find(to_utf8(message_text(messages::kBadIndex))), std::string::npos) << reported;
}

TEST_F(Emission, SinksThatWantValuesAreNotCalledWithoutThem) {
    Event<double> event(kChanged);
    Connections kept;
    const auto sink = make_event_sink([&](std::span<const GenericValue> arguments) {
        calls_.push_back(static_cast<int>(arguments.size()));
    });
    kept.add(event.connectSink(sink.get()));
    kept.add(event.connectSink(sink.get()));
    kept.add(event.connect([&](double) { calls_.push_back(3); }));
    testing::internal::CaptureStderr();
    event.raise(std::numeric_limits<double>::quiet_NaN()); // no value stands for it
    EXPECT_EQ(calls_, std::vector{3});
    const std::string reported = testing::internal::GetCapturedStderr();
    EXPECT_EQ(std::count(reported.begin(), reported.end(), '\n'), 2) << reported;
}

TEST_F(Emission, TheEndOfAThreadPassesAndEndsTheEmission) {
    Event<> event(kChanged);
    Connections kept;
    Connection own = event.connect([&] {
        own.disconnect();
        throw ThreadDeath();
    });
    kept.add(event.connect([&] { calls_.push_back(2); }));
    EXPECT_THROW(event.raise(), ThreadDeath);
    EXPECT_TRUE(calls_.empty());
    EXPECT_EQ(event.connectionCount(), 1U);
    event.raise();
    EXPECT_EQ(calls_, std::vector{2});
}

TEST_F(Emission, AnEventThatACircleKeepsAliveShowsInTheLeakReport) {
    const std::int32_t before = tables_alive();
    struct Source {
        Event<> event{kChanged};
    };
    auto source = std::make_shared<Source>();
    const ConnectionNumber circle = source->event.connect([source] {}).release();
    Source* const leaked = source.get();
    source.reset();
    EXPECT_EQ(tables_alive(), before + 1);
    leaked->event.disconnectSink(circle); // which ends the event as well
    EXPECT_EQ(tables_alive(), before);
}

TEST_F(Emission, AnEventWithoutSinksIsOneWord) {
    static_assert(sizeof(Event<Numeric, wstring>) == sizeof(void*));
    const Event<> event(kChanged);
    EXPECT_EQ(wstring_view(event.names().names[kRussian]), u"ПриИзменении");
}

} // namespace
