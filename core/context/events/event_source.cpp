// SPDX-License-Identifier: Apache-2.0
#include <core/context/errors.h>
#include <core/context/events/connection_point.h>
#include <core/context/events/event.h>
#include <core/strings/integer_text.h>
#include <core/values/errors.h>

namespace core::detail {

const EventNames& event_names(const EventBase& event) noexcept {
    return event.names();
}

/// Which of an object's events a connection is with.
struct EventNumber {
    static void set(Connection& connection, int number) noexcept {
        connection.number_ |= static_cast<ConnectionNumber>(number) << kEventShift;
    }
};

Connection event_connect(EventBase& event, IEventSink* sink, int number) {
    Connection made = event.connectSink(sink);
    EventNumber::set(made, number);
    return made;
}

bool event_disconnect(EventBase& event, ConnectionNumber connection) noexcept {
    return event.disconnectSink(connection);
}

void bad_event(int event) {
    throw_error<ContextException>(messages::kUnknownEvent, {string_intto(event)});
}

void bad_event_arguments(const EventNames& event, std::size_t expected) {
    throw_error<ContextException>(messages::kEventArguments,
                                  {term_string(event.names, kEnglish), string_intto(expected)});
}

void bad_sink(const GUID& sinkInterface) {
    throw_error<TypeException>(messages::kEventSinkInterface, {to_string(sinkInterface)});
}

} // namespace core::detail
