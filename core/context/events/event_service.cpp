// SPDX-License-Identifier: Apache-2.0
#include <core/context/errors.h>
#include <core/context/events/event_service.h>
#include <core/runtime/class_entry.h>
#include <core/strings/integer_text.h>
#include <core/values/errors.h>

#include <algorithm>

namespace core {
namespace {

constexpr GUID kEventServiceClassId = "8e7c2ad7-f5ae-11d3-9851-008048da1252"_guid;

/// Calls a method of an object, by number. `Pointer` is a pointer that holds the object or one that borrows
/// it.
template <class Pointer>
class MethodSink : public IEventSink {
  public:
    using Interfaces = InterfaceList<IEventSink>;

    MethodSink(IContext_* object, int method, std::size_t params) noexcept
        : object_(object), method_(method), params_(params) {}

    void handle(std::span<const GenericValue> arguments) override {
        const auto taken = arguments.first(std::min(params_, arguments.size()));
        std::vector<GenericValue> params(taken.begin(), taken.end());
        // The handler may disconnect itself and let go of the object.
        const InterfacePtr<IContext_> object(&*object_);
        object->call(method_, nullptr, &params);
    }

  private:
    Pointer object_;
    int method_;
    std::size_t params_;
};

/// A source and the number of one of its events.
struct SourceEvent {
    InterfacePtr<IEventSource> source;
    int number;
};

InterfacePtr<IEventSource> source_of(IUnknown* object) {
    InterfacePtr<IEventSource> source(object);
    if (!source)
        throw_error<ContextException>(messages::kNoEvents);
    return source;
}

SourceEvent event_of(IUnknown* object, const wchar* name) {
    SourceEvent event{source_of(object), -1};
    event.number = event.source->findEvent(name);
    if (event.number < 0)
        throw_error<ContextException>(messages::kUnknownEvent, {name != nullptr ? name : u""});
    return event;
}

/// How many arguments a method cannot do without.
int needed_arguments(const IContext_& object, int method) {
    int needed = 0;
    for (int param = 0; param < object.getNParams(method); ++param) {
        if (!object.getParamDefValue(method, param, nullptr))
            needed = param + 1;
    }
    return needed;
}

/// The number of a method that can handle an event.
int method_for(const SourceEvent& event, const IContext_* object, const wchar* name) {
    const int method = object != nullptr ? object->findMethod(name) : -1;
    if (method < 0)
        throw_error<ContextException>(messages::kEventNoMethod, {name != nullptr ? name : u""});
    const int needed = needed_arguments(*object, method);
    const int given = event.source->getNEventParams(event.number);
    if (needed > given) {
        throw_error<ContextException>(messages::kEventMethod,
                                      {name, string_intto(needed),
                                       event.source->getEventName(event.number, kEnglish),
                                       string_intto(given)});
    }
    return method;
}

class EventService : public IEventService {
  public:
    using Interfaces = InterfaceList<IEventService>;

    ConnectionNumber connect(IUnknown* source, const wchar* event, IEventSink* sink) override {
        const SourceEvent found = event_of(source, event);
        return found.source->connectSink(found.number, sink).release();
    }
    ConnectionNumber connectMethod(IUnknown* source, const wchar* event, IUnknown* object,
                                   const wchar* method, SinkHold hold) override {
        const SourceEvent found = event_of(source, event);
        const InterfacePtr<IContext_> context(object);
        const int number = method_for(found, context.get(), method);
        const auto params = static_cast<std::size_t>(context->getNParams(number));
        if (hold == SinkHold::strong) {
            const auto sink = make_object<MethodSink<InterfacePtr<IContext_>>>(context.get(), number, params);
            return found.source->connectSink(found.number, sink.get()).release();
        }
        const InterfacePtr<IWeakListener> listener(object);
        if (!listener)
            throw_error<ContextException>(messages::kEventNotWeak);
        const auto sink = make_object<MethodSink<IContext_*>>(context.get(), number, params);
        Connection connection = found.source->connectSink(found.number, sink.get());
        const ConnectionNumber result = connection.number();
        listener->connections().add(std::move(connection));
        return result;
    }
    bool disconnect(IUnknown* source, ConnectionNumber connection) override {
        return source_of(source)->disconnectSink(connection);
    }
    void raise(IUnknown* source, const wchar* event, std::span<const GenericValue> arguments) override {
        const SourceEvent found = event_of(source, event);
        found.source->raiseEvent(found.number, arguments);
    }
};

const SCOM_ServiceEntryInit<EventService, &kEventServiceClassId, &IEventService::IID>
    kEventServiceEntry("EventService");

} // namespace
} // namespace core
