// SPDX-License-Identifier: Apache-2.0
// Concerns: events beside properties and methods; connecting by name with methods of objects and with C++
// callables; weak connections; connection points; what is refused.
#include <core/context.h>
#include <core/context/events/connection_point.h>
#include <core/context/events/event.h>
#include <core/context/events/event_service.h>
#include <core/runtime.h>
#include <core/values.h>
#include <host/host_process.h>

#include <gtest/gtest.h>

#include <optional>

namespace {

using namespace core;

class IWatcher : public IUnknown {
  public:
    static constexpr GUID IID = "8dd52687-99d9-44b4-86b0-3793abc0e41b"_guid;
    virtual void moved(int from, int to) = 0;

  protected:
    ~IWatcher() = default;
};

/// Counts, and says so.
class SourceCounter : public ScriptObject<SourceCounter, IConnectionPointContainer> {
  public:
    static constexpr ScriptClass script = {
        .names = {u"TestEventCounter", u"ТестСчетчик"},
        .type = "658ee319-81eb-415a-8150-34aeb0fb2bf5"_guid,
        .object = "57d97a55-c4de-4ada-8ce7-3d51287948fb"_guid,
        .arguments = {0, 0},
    };
    static std::span<const EventEntry<SourceCounter>> events() noexcept {
        static constexpr NamePair kChanged[] = {{u"Total", u"Всего"}, {u"Reason"}};
        static constexpr EventEntry<SourceCounter> kTable[] = {event_entry<&SourceCounter::changed>(kChanged),
                                                               event_entry<&SourceCounter::done>()};
        return kTable;
    }
    auto points() { return std::array<IConnectionPoint*, 1>{&watchers}; }

    Event<Numeric, std::optional<wstring>> changed{named<u"Changed", u"ПриИзменении">};
    Event<> done{named<u"Done", u"ПриЗавершении">};
    ConnectionPoint<IWatcher> watchers{*this, named<u"Watchers", u"Наблюдатели">};
};
const ScriptClassEntry<SourceCounter> kSourceCounterEntry;

/// Handles events by its methods.
class Listener : public ScriptObject<Listener, IWeakListener> {
  public:
    static constexpr ScriptClass script = {
        .names = {u"TestListener", u"ТестСлушатель"},
        .type = "f29c64cf-f300-4d97-b298-11b079aecbb4"_guid,
        .object = "a3c89ca3-0dcc-4cc0-8f71-95fab77f2130"_guid,
        .arguments = {0, 0},
    };
    static std::span<const Method<Listener>> methods() noexcept {
        static constexpr Method<Listener> kTable[] = {
            {{u"Hear", u"Услышать"}, required(1), kProcedure, &Listener::hear},
            {{u"HearAll"}, required(3), kProcedure, &Listener::hear},
        };
        return kTable;
    }
    GenericValue hear(std::span<GenericValue> arguments) {
        heard.push_back(arguments[0].presentation());
        return {};
    }

    std::vector<wstring> heard;
};
const ScriptClassEntry<Listener> kListenerEntry;

class Watcher : public IWatcher {
  public:
    using Interfaces = InterfaceList<IWatcher>;
    void moved(int from, int to) override { seen.emplace_back(from, to); }
    std::vector<std::pair<int, int>> seen;
};

wstring failure(const auto& action) {
    try {
        action();
    } catch (const Exception& e) {
        return e.description();
    }
    return {};
}

class EventSource : public testing::Test {
  protected:
    struct Module {
        SCOM_ResourceBundle bundle{"nothing"};
        SCOM_Module module{module_class_entries, bundle};
        Module() { module.init(this); }
    };

    Module module_;
    host::HostProcess process_;
    InterfacePtr<SCOM_InternalClass<SourceCounter>> counter_ = make_object<SourceCounter>();
    InterfacePtr<SCOM_InternalClass<Listener>> listener_ = make_object<Listener>();
    IUnknown* const source_ = static_cast<IValue*>(counter_.get());
    IUnknown* const object_ = static_cast<IValue*>(listener_.get());
    IEventService& service_ = *get_service<IEventService>();
};

TEST_F(EventSource, EventsStandBesidePropertiesAndMethods) {
    const InterfacePtr<IEventSource> source(source_);
    ASSERT_TRUE(source);
    EXPECT_EQ(source.query<IUnknown>(), InterfacePtr<IUnknown>(source_).query<IUnknown>());
    EXPECT_EQ(source->getNEvents(), 2);
    EXPECT_EQ(wstring_view(source->getEventName(1, kEnglish)), u"Done");
    EXPECT_EQ(wstring_view(source->getEventName(0, kRussian)), u"ПриИзменении");
    EXPECT_EQ(source->getEventName(0, 2), nullptr);
    EXPECT_EQ(source->getEventName(2, kEnglish), nullptr);
    EXPECT_EQ(source->findEvent(u"приИЗМЕНЕНИИ"), 0);
    EXPECT_EQ(source->findEvent(u"DONE"), 1);
    EXPECT_EQ(source->findEvent(u"Hear"), -1);
    EXPECT_EQ(source->getNEventParams(0), 2);
    EXPECT_EQ(source->getNEventParams(-1), 0);
    EXPECT_EQ(wstring_view(source->getEventParamName(0, 0, kRussian)), u"Всего");
    EXPECT_EQ(wstring_view(source->getEventParamName(0, 1, kRussian)), u"Reason");
    EXPECT_EQ(source->getEventParamName(1, 0, kEnglish), nullptr);
    ContextValueInfo info;
    EXPECT_TRUE(source->getEventParamInfo(0, 0, info));
    EXPECT_EQ(info.types.types().front(), kNumberType);
    EXPECT_FALSE(source->getEventParamInfo(0, 1, info)) << "a String or Undefined";
    EXPECT_FALSE(source->getEventParamInfo(0, 2, info));
    EXPECT_FALSE(InterfacePtr<IEventSource>(object_)) << "an object without events is no source";
}

TEST_F(EventSource, AMethodHandlesAnEventOfAnObjectByName) {
    const ConnectionNumber number = service_.connectMethod(source_, u"приизменении", object_, u"hear");
    counter_->changed.raise(3, std::nullopt);
    const GenericValue arguments[] = {Value(Numeric(4)), Value(u"by name")};
    service_.raise(source_, u"Changed", arguments);
    EXPECT_EQ(listener_->heard, (std::vector<wstring>{u"3", u"4"}));
    EXPECT_TRUE(service_.disconnect(source_, number));
    EXPECT_FALSE(service_.disconnect(source_, number));
    counter_->changed.raise(5, std::nullopt);
    EXPECT_EQ(listener_->heard.size(), 2U);
}

TEST_F(EventSource, ACallableGetsTheArgumentsAsValuesAndATypedOneAsTypes) {
    std::vector<wstring> heard;
    const auto sink = make_event_sink([&](std::span<const GenericValue> arguments) {
        heard.push_back(arguments[0].presentation() + u'/' + arguments[1].presentation());
    });
    const ConnectionNumber number = service_.connect(source_, u"Changed", sink.get());
    const auto typed =
        counter_->changed.connect([&](const Numeric& total, const std::optional<wstring>& why) {
            heard.push_back(Value(total).presentation() + why.value_or(u"-"));
        });
    counter_->changed.raise(1, u"x");
    const GenericValue arguments[] = {Value(2), Value()};
    service_.raise(source_, u"Changed", arguments);
    EXPECT_EQ(heard, (std::vector<wstring>{u"1/x", u"1x", u"2/", u"2-"}));
    EXPECT_EQ(typed.isConnected(), true);
    EXPECT_TRUE(InterfacePtr<IEventSource>(source_)->disconnectSink(number));
}

TEST_F(EventSource, AWeakConnectionEndsWithItsListenerAndKeepsNothingAlive) {
    const std::int32_t listeners = SCOM_InternalClass<Listener>::liveCount();
    auto listener = make_object<Listener>();
    IUnknown* const object = static_cast<IValue*>(listener.get());
    service_.connectMethod(source_, u"Changed", object, u"Hear", SinkHold::weak);
    const ConnectionNumber number =
        service_.connectMethod(source_, u"Changed", object, u"Hear", SinkHold::weak);
    counter_->changed.raise(1, std::nullopt);
    EXPECT_EQ(listener->heard.size(), 2U);
    EXPECT_TRUE(service_.disconnect(source_, number));
    EXPECT_EQ(counter_->changed.connectionCount(), 1U);

    // The listener ends in the middle of an emission, in front of its own turn.
    const auto ending = counter_->changed.connect([&] { listener.reset(); });
    service_.connectMethod(source_, u"Changed", object, u"Hear", SinkHold::weak);
    counter_->changed.raise(2, std::nullopt);
    EXPECT_FALSE(listener);
    EXPECT_EQ(SCOM_InternalClass<Listener>::liveCount(), listeners);
    EXPECT_EQ(counter_->changed.connectionCount(), 1U);
}

TEST_F(EventSource, AListenerForgetsTheConnectionsThatEndedElsewhere) {
    Connections& kept = listener_->connections();
    for (int i = 0; i < 1000; ++i) {
        const ConnectionNumber number =
            service_.connectMethod(source_, u"Changed", object_, u"Hear", SinkHold::weak);
        service_.disconnect(source_, number);
    }
    EXPECT_LT(kept.size(), 10U);
}

TEST_F(EventSource, WhatCannotBeIsRefusedAndNobodyIsCalled) {
    const auto refusal = [&](const auto& action, const char* id, std::initializer_list<wstring> params) {
        EXPECT_EQ(failure(action), message_text(id, params));
    };
    const auto connect = [&](IUnknown* source, const wchar* event, const wchar* method, SinkHold hold) {
        return [=, this] { service_.connectMethod(source, event, object_, method, hold); };
    };
    refusal(connect(object_, u"Changed", u"Hear", SinkHold::strong), "IDS_EVENT_NO_EVENTS", {});
    refusal(connect(nullptr, u"Changed", u"Hear", SinkHold::strong), "IDS_EVENT_NO_EVENTS", {});
    refusal(connect(source_, u"Chang", u"Hear", SinkHold::strong), "IDS_EVENT_UNKNOWN", {u"Chang"});
    refusal(connect(source_, u"Changed", u"Listen", SinkHold::strong), "IDS_EVENT_NO_METHOD", {u"Listen"});
    refusal(connect(source_, u"Changed", u"HearAll", SinkHold::strong), "IDS_EVENT_METHOD",
            {u"HearAll", u"3", u"Changed", u"2"});
    refusal([&] { service_.connectMethod(source_, u"Done", nullptr, u"Hear"); }, "IDS_EVENT_NO_METHOD",
            {u"Hear"});
    refusal([&] { service_.disconnect(object_, 1); }, "IDS_EVENT_NO_EVENTS", {});
    EXPECT_FALSE(service_.disconnect(source_, ConnectionNumber{7} << 48 | 1));
    EXPECT_FALSE(service_.disconnect(source_, ~ConnectionNumber{0}));

    int calls = 0;
    const auto counted = counter_->changed.connect([&] { ++calls; });
    const GenericValue arguments[] = {Value(u"three"), Value()};
    refusal([&] { service_.raise(source_, u"Changed", arguments); }, "IDS_PARAMETER_N_TYPE_MISMATCH", {u"1"});
    refusal([&] { service_.raise(source_, u"Changed", std::span(arguments, 1)); }, "IDS_EVENT_ARGUMENTS",
            {u"Changed", u"2"});
    const InterfacePtr<IEventSource> source(source_);
    refusal([&] { source->raiseEvent(2, {}); }, "IDS_EVENT_UNKNOWN", {u"2"});
    refusal([&] { static_cast<void>(source->connectSink(-1, nullptr)); }, "IDS_EVENT_UNKNOWN", {u"-1"});
    EXPECT_EQ(calls, 0);
}

TEST_F(EventSource, AConnectionPointCallsTheInterfaceOfItsSinks) {
    const auto container = InterfacePtr<IConnectionPointContainer>(source_);
    ASSERT_TRUE(container);
    EXPECT_EQ(container->connectionPoints().size(), 1U);
    EXPECT_FALSE(container->findConnectionPoint(IUnknown::IID));
    const auto point = container->findConnectionPoint(IWatcher::IID);
    ASSERT_TRUE(point);
    EXPECT_EQ(point->sinkInterface(), IWatcher::IID);
    EXPECT_EQ(point->container(), container);
    EXPECT_EQ(InterfacePtr<IConnectionPoint>(point.query<IUnknown>()), point);

    const auto watcher = make_object<Watcher>();
    const ConnectionNumber number = point->advise(watcher.get());
    {
        const auto second = counter_->watchers.connect(watcher.get());
        counter_->watchers.raise([](IWatcher& sink) { sink.moved(1, 2); });
        EXPECT_EQ(point->connectionCount(), 2U);
    }
    counter_->watchers.raise([](IWatcher& sink) { sink.moved(3, 4); });
    EXPECT_EQ(watcher->seen, (std::vector<std::pair<int, int>>{{1, 2}, {1, 2}, {3, 4}}));
    EXPECT_TRUE(point->unadvise(number));
    EXPECT_FALSE(point->unadvise(number));
    EXPECT_EQ(failure([&] { point->advise(object_); }),
              message_text("IDS_EVENT_SINK_INTERFACE", {to_string(IWatcher::IID)}));
    EXPECT_EQ(failure([&] { point->advise(nullptr); }),
              message_text("IDS_EVENT_SINK_INTERFACE", {to_string(IWatcher::IID)}));

    // A reference to the point alone keeps the object alive.
    Watcher* const kept = watcher.get();
    point->advise(kept);
    counter_.reset();
    EXPECT_EQ(point->connectionCount(), 1U);
}

} // namespace
