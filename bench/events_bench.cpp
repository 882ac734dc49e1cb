// SPDX-License-Identifier: Apache-2.0
// Raising events with 0, 1 and 10 sinks, from C++ and by name, and connecting a sink: beside libsigc++,
// Boost.Signals2 and GObject.
#include <core/context.h>
#include <core/context/events/event.h>
#include <core/context/events/event_service.h>
#include <core/runtime.h>
#include <core/values.h>
#include <host/host_process.h>

#include <benchmark/benchmark.h>
#include <boost/signals2.hpp>
#include <glib-object.h>
#include <sigc++/sigc++.h>

#include <array>

namespace {

using namespace core;

/// What sinks do: so little that the call is what counts.
std::int64_t heard = 0;

class Source : public ScriptObject<Source> {
  public:
    static constexpr ScriptClass script = {
        .names = {u"BenchSource"},
        .type = "f4983aaa-2cc4-4e81-843b-346930479ab4"_guid,
        .object = "b7bf17c0-4018-4ec9-b01e-108ae3f0a502"_guid,
    };
    static std::span<const EventEntry<Source>> events() noexcept {
        static constexpr EventEntry<Source> kTable[] = {event_entry<&Source::changed>()};
        return kTable;
    }
    Event<std::int64_t> changed{named<u"Changed", u"ПриИзменении">};
};

/// Handles events by a method that scripts could call.
class Listener : public ScriptObject<Listener> {
  public:
    static constexpr ScriptClass script = {
        .names = {u"BenchListener"},
        .type = "26cf1c61-20d2-4173-897a-9fefd2065daf"_guid,
        .object = "953836b2-5ebc-4f8d-b350-3e82f4e31a97"_guid,
    };
    static std::span<const Method<Listener>> methods() noexcept {
        static constexpr Method<Listener> kTable[] = {
            {{u"Hear", u"Услышать"}, required(1), kProcedure, &Listener::hear}};
        return kTable;
    }

  private:
    GenericValue hear(std::span<GenericValue> arguments) {
        heard += *arguments[0].asSmallWhole();
        return {};
    }
};

void emit_ours(benchmark::State& state) {
    Event<std::int64_t> event(named<u"Changed", u"ПриИзменении">);
    Connections kept;
    for (std::int64_t i = 0; i < state.range(0); ++i)
        kept.add(event.connect([](std::int64_t value) { heard += value; }));
    for (auto _ : state) {
        event.raise(1);
        benchmark::ClobberMemory();
    }
}
void emit_sigc(benchmark::State& state) {
    sigc::signal<void(std::int64_t)> event;
    for (std::int64_t i = 0; i < state.range(0); ++i)
        event.connect([](std::int64_t value) { heard += value; });
    for (auto _ : state) {
        event.emit(1);
        benchmark::ClobberMemory();
    }
}
void emit_signals2(benchmark::State& state) {
    boost::signals2::signal<void(std::int64_t)> event;
    for (std::int64_t i = 0; i < state.range(0); ++i)
        event.connect([](std::int64_t value) { heard += value; });
    for (auto _ : state) {
        event(1);
        benchmark::ClobberMemory();
    }
}

/// An object of GLib with one signal, which has one argument.
GObject* new_g_source(guint& signal) {
    static const GType type =
        g_type_register_static_simple(G_TYPE_OBJECT, "BenchSource", sizeof(GObjectClass), nullptr,
                                      sizeof(GObject), nullptr, G_TYPE_FLAG_NONE);
    static const guint id = g_signal_new("changed", type, G_SIGNAL_RUN_LAST, 0, nullptr, nullptr, nullptr,
                                         G_TYPE_NONE, 1, G_TYPE_INT64);
    signal = id;
    return static_cast<GObject*>(g_object_new(type, nullptr));
}
void hear_g(GObject*, gint64 value, gpointer) {
    heard += value;
}
void emit_gobject(benchmark::State& state) {
    guint signal = 0;
    GObject* const source = new_g_source(signal);
    for (std::int64_t i = 0; i < state.range(0); ++i)
        g_signal_connect(source, "changed", G_CALLBACK(hear_g), nullptr);
    for (auto _ : state) {
        g_signal_emit(source, signal, 0, gint64{1});
        benchmark::ClobberMemory();
    }
    g_object_unref(source);
}

/// Raised by name with a value, heard by methods that were found by name.
void emit_by_name_ours(benchmark::State& state) {
    const host::HostProcess process;
    auto& service = *get_service<IEventService>();
    const auto source = make_object<Source>();
    const auto listener = make_object<Listener>();
    IUnknown* const object = static_cast<IValue*>(source.get());
    for (std::int64_t i = 0; i < state.range(0); ++i)
        service.connectMethod(object, u"Changed", static_cast<IValue*>(listener.get()), u"Hear");
    const GenericValue arguments[] = {Value(1)};
    for (auto _ : state)
        service.raise(object, u"changed", arguments);
}
void emit_by_name_gobject(benchmark::State& state) {
    guint signal = 0;
    GObject* const source = new_g_source(signal);
    for (std::int64_t i = 0; i < state.range(0); ++i)
        g_signal_connect(source, "changed", G_CALLBACK(hear_g), nullptr);
    for (auto _ : state)
        g_signal_emit_by_name(source, "changed", gint64{1});
    g_object_unref(source);
}

void connect_ours(benchmark::State& state) {
    Event<std::int64_t> event(named<u"Changed", u"ПриИзменении">);
    for (auto _ : state) {
        auto connection = event.connect([](std::int64_t value) { heard += value; });
        benchmark::DoNotOptimize(connection);
    }
}
/// A callable that does not fit into the event's own slot.
void connect_large_ours(benchmark::State& state) {
    Event<std::int64_t> event(named<u"Changed", u"ПриИзменении">);
    for (auto _ : state) {
        auto connection = event.connect(
            [large = std::array<std::int64_t, 4>{}](std::int64_t value) { heard += value + large[3]; });
        benchmark::DoNotOptimize(connection);
    }
}
void connect_sigc(benchmark::State& state) {
    sigc::signal<void(std::int64_t)> event;
    for (auto _ : state) {
        auto connection = event.connect([](std::int64_t value) { heard += value; });
        connection.disconnect();
    }
}
void connect_signals2(benchmark::State& state) {
    boost::signals2::signal<void(std::int64_t)> event;
    for (auto _ : state) {
        auto connection = event.connect([](std::int64_t value) { heard += value; });
        connection.disconnect();
    }
}
void connect_gobject(benchmark::State& state) {
    guint signal = 0;
    GObject* const source = new_g_source(signal);
    for (auto _ : state) {
        const gulong id = g_signal_connect(source, "changed", G_CALLBACK(hear_g), nullptr);
        g_signal_handler_disconnect(source, id);
    }
    g_object_unref(source);
}

BENCHMARK(emit_ours)->Arg(0)->Arg(1)->Arg(10);
BENCHMARK(emit_sigc)->Arg(0)->Arg(1)->Arg(10);
BENCHMARK(emit_signals2)->Arg(0)->Arg(1)->Arg(10);
BENCHMARK(emit_gobject)->Arg(0)->Arg(1)->Arg(10);
BENCHMARK(emit_by_name_ours)->Arg(0)->Arg(1)->Arg(10);
BENCHMARK(emit_by_name_gobject)->Arg(0)->Arg(1)->Arg(10);
BENCHMARK(connect_ours);
BENCHMARK(connect_large_ours);
BENCHMARK(connect_sigc);
BENCHMARK(connect_signals2);
BENCHMARK(connect_gobject);

} // namespace
