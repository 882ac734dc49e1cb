// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Contexts: what scripts reach of an object, its properties and methods by number and by two names,
/// walks over collections, and events.
#include <core/context/any_value.h>
#include <core/context/arguments.h>
#include <core/context/callable.h>
#include <core/context/connection.h>
#include <core/context/context_def.h>
#include <core/context/context_def_ext.h>
#include <core/context/context_extern.h>
#include <core/context/context_impl.h>
#include <core/context/context_table.h>
#include <core/context/errors.h>
#include <core/context/event_source.h>
#include <core/context/events/connection_point.h>
#include <core/context/events/event.h>
#include <core/context/events/event_base.h>
#include <core/context/events/event_functions.h>
#include <core/context/events/event_service.h>
#include <core/context/group_context.h>
#include <core/context/iteration.h>
#include <core/context/name_cache.h>
#include <core/context/native_call.h>
#include <core/context/native_function.h>
#include <core/context/native_object.h>
#include <core/context/native_value.h>
#include <core/context/script_object.h>
#include <core/context/summary.h>
