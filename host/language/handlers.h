// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/context/callable.h>
#include <core/context/event_source.h>

#include <vector>

namespace core::script {

class Watch;

/// The procedures of scripts that handle events. An event holds its handlers, and they hold the script; they
/// do not hold the engine, whose end disconnects them.
class Handlers {
  public:
    /// Connects a procedure with an event of an object, by the event's name. Throws ContextException for an
    /// object without that event and for a procedure that needs more arguments than the event has.
    void add(Watch& watch, const GenericValue& source, const wstring& event, ICallable& procedure);
    /// Disconnects the latest connection of the two. Throws ContextException for an object without that
    /// event, and where the procedure does not handle it.
    void remove(const GenericValue& source, const wstring& event, const ICallable& procedure);
    /// Disconnects all.
    void clear() noexcept { connected_.clear(); }

  private:
    struct Connected {
        const IEventSource* source; // only compared
        int event;
        const void* target;
        Connection connection;
    };

    std::vector<Connected> connected_;
};

} // namespace core::script
