// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/context/context_def.h>

namespace core {

/// Returns the functions by which scripts listen, as a context: Connect(Source, Event, Object, Method,
/// [Weak]), which returns the number of the connection, and Disconnect(Source, Number), which returns whether
/// it was there. They need a process with the service IEventService.
[[nodiscard]] CORE_API InterfacePtr<IContext_> create_event_functions();

} // namespace core
