// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/values/errors.h>

/// The failures of calls; all travel in a ContextException, which <core/context/arguments.h> throws.
/// Parameters are numbered from 1 in the messages that users read.
namespace core::messages {

/// A move would take an element out of its collection. No parameters.
inline constexpr const char* kBadOffset = "IDS_COLLECTION_BADOFFSET";
/// A collection has no element of that index; {0} is the index and {1} the count, where they are known.
inline constexpr const char* kBadIndex = "IDS_INDEX_OFFBOUND";
/// A call lacks an argument; {0} is the method, {1} the number of the parameter, from 1.
inline constexpr const char* kMissingArgument = "IDS_CONTEXT_MISSING_ARGUMENT";
/// An object has no method of that number; {0} is the number.
inline constexpr const char* kNoMethod = "IDS_CONTEXT_NO_METHOD";
/// An object has no property of that number; {0} is the number.
inline constexpr const char* kNoProperty = "IDS_CONTEXT_NO_PROPERTY";
/// An object that stands behind an interface is not a value, so that scripts cannot hold it. No parameters.
inline constexpr const char* kNoValue = "IDS_CONTEXT_NO_VALUE";
/// A property cannot be read; {0} is its name.
inline constexpr const char* kPropertyNotReadable = "IDS_CONTEXT_PROPERTY_NOT_READABLE";
/// A property cannot be written; {0} is its name.
inline constexpr const char* kPropertyNotWritable = "IDS_CONTEXT_PROPERTY_NOT_WRITABLE";
/// A property was given a value of a type that it does not take; {0} is its name.
inline constexpr const char* kPropertyType = "IDS_CONTEXT_PROPERTY_TYPE_MISMATCH";
/// A property was given a value that it does not take; {0} is its name.
inline constexpr const char* kPropertyValue = "IDS_CONTEXT_PROPERTY_VALUE_MISMATCH";
/// A call has too many arguments; {0} is the method, {1} how many it takes.
inline constexpr const char* kTooManyArguments = "IDS_CONTEXT_TOO_MANY_ARGUMENTS";
/// A call has no argument for a parameter; {0} is the parameter's number, from 1.
inline constexpr const char* kParameterMissing = "IDS_PARAMETER_N_MISSING";
/// An event was raised with a wrong number of arguments; {0} is the event, {1} how many it has.
inline constexpr const char* kEventArguments = "IDS_EVENT_ARGUMENTS";
/// A method that is to handle an event needs more arguments than the event has; {0} is the method, {1} how
/// many it needs, {2} the event, {3} how many it has.
inline constexpr const char* kEventMethod = "IDS_EVENT_METHOD";
/// An object has no method of that name, which is to handle an event; {0} is the name.
inline constexpr const char* kEventNoMethod = "IDS_EVENT_NO_METHOD";
/// An object has no events. No parameters.
inline constexpr const char* kNoEvents = "IDS_EVENT_NO_EVENTS";
/// Where a failure comes from that a sink of an event has thrown; {0} is the event.
inline constexpr const char* kEventSink = "IDS_EVENT_SINK";
/// A sink has not the interface that a connection point calls; {0} is the id of the interface.
inline constexpr const char* kEventSinkInterface = "IDS_EVENT_SINK_INTERFACE";
/// An object cannot be connected weakly: it does not tell when it ends. No parameters.
inline constexpr const char* kEventNotWeak = "IDS_EVENT_NOT_WEAK";
/// An object has no such event; {0} is the name or the number that was asked for.
inline constexpr const char* kUnknownEvent = "IDS_EVENT_UNKNOWN";
/// An argument has a type that its parameter does not take; {0} is the parameter's number, from 1.
inline constexpr const char* kParameterType = "IDS_PARAMETER_N_TYPE_MISMATCH";
/// An argument has a value that its parameter does not take; {0} is the parameter's number, from 1.
inline constexpr const char* kParameterValue = "IDS_PARAMETER_N_VALUE_MISMATCH";

} // namespace core::messages
