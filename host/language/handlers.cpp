// SPDX-License-Identifier: Apache-2.0
#include "host/language/handlers.h"

#include "host/language/failure.h"
#include "host/language/watch.h"

#include <core/context/errors.h>
#include <core/context/events/event_service.h>
#include <core/strings/integer_text.h>
#include <core/strings/nearest.h>
#include <core/values/errors.h>

#include <algorithm>

namespace core::script {
namespace {

struct SourceEvent {
    InterfacePtr<IEventSource> source;
    int event;
};

SourceEvent event_of(const GenericValue& value, const wstring& name) {
    SourceEvent found{value.query<IEventSource>(), -1};
    if (!found.source)
        throw_error<ContextException>(messages::kNoEvents);
    found.event = found.source->findEvent(name.c_str());
    if (found.event < 0) {
        NearestName near(name);
        for (int event = 0; event < found.source->getNEvents(); ++event) {
            for (const int alias : {kEnglish, kRussian})
                near.add(found.source->getEventName(event, alias));
        }
        throw_unknown(messages::kUnknownEvent, {name}, near);
    }
    return found;
}

/// Calls the procedure. Who raised the event must not notice that it fails, except that it is to stop.
void handle(Watch& watch, ICallable& procedure, std::span<const GenericValue> arguments) {
    try {
        procedure.call(
            arguments.first(std::min(arguments.size(), static_cast<std::size_t>(procedure.mostArguments()))));
    } catch (const ScriptExit& exit) {
        watch.exit(exit.code);
    } catch (const Exception& failure) {
        if (watch.running() && std::string_view(failure.messageId()) == messages::kScriptInterrupted)
            watch.interrupt(); // the script around it, too
        if (const auto* const error = dynamic_cast<const ScriptError*>(&failure))
            throw error->located(Source(wstring(), wstring()));
        throw;
    }
}

} // namespace

void Handlers::add(Watch& watch, const GenericValue& source, const wstring& event, ICallable& procedure) {
    const SourceEvent found = event_of(source, event);
    const int given = found.source->getNEventParams(found.event);
    if (procedure.leastArguments() > given)
        throw_error<ContextException>(
            messages::kEventMethod,
            {procedure.name(), string_intto(procedure.leastArguments()), event, string_intto(given)});
    std::erase_if(connected_, [](const Connected& one) { return !one.connection.isConnected(); });
    connected_.reserve(connected_.size() + 1);
    const auto sink =
        make_event_sink([&watch, held = InterfacePtr<ICallable>(&procedure)](
                            std::span<const GenericValue> arguments) { handle(watch, *held, arguments); });
    connected_.push_back({found.source.get(), found.event, procedure.target(),
                          found.source->connectSink(found.event, sink.get())});
}

void Handlers::remove(const GenericValue& source, const wstring& event, const ICallable& procedure) {
    const SourceEvent found = event_of(source, event);
    const auto last = std::find_if(connected_.rbegin(), connected_.rend(), [&](const Connected& one) {
        return one.source == found.source.get() && one.event == found.event &&
               one.target == procedure.target() && one.connection.isConnected();
    });
    if (last == connected_.rend())
        throw_error<ContextException>("IDS_SCRIPT_NO_HANDLER", {procedure.name(), event});
    connected_.erase(std::next(last).base());
}

} // namespace core::script
