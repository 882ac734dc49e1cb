// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bridges/com/ole.h"

#include <core/runtime/errors.h>

/// Failures on their way from one side to the other.
namespace core::com {

/// The ids of the bridge's messages.
namespace messages {

/// A class cannot be made; {0} is what was asked for, {1} what the system says.
inline constexpr const char* kNoClass = "COM_NO_CLASS";
/// A call failed; {0} is the member, {1} what the object or the system says.
inline constexpr const char* kCallFailed = "COM_CALL_FAILED";
/// Where a failure comes from; {0} is the source that the object names, {1} the number of the failure.
inline constexpr const char* kSource = "COM_SOURCE";
/// An object has no such member; {0} is the name.
inline constexpr const char* kNoMember = "COM_NO_MEMBER";
/// A value cannot be handed over exactly; {0} is the value, {1} the type that it should have had.
inline constexpr const char* kNotExact = "COM_NOT_EXACT";
/// A value of a type that the bridge does not take; {0} is the type.
inline constexpr const char* kBadType = "COM_BAD_TYPE";
/// A record of a type library, which the bridge does not take; {0} is the name of the record.
inline constexpr const char* kRecord = "COM_RECORD";
/// An array that is malformed or nested too deeply. No parameters.
inline constexpr const char* kBadArray = "COM_BAD_ARRAY";
/// An object is called on a thread that it does not belong to. No parameters.
inline constexpr const char* kWrongThread = "COM_WRONG_THREAD";
/// The program is not one of the system that automation belongs to. No parameters.
inline constexpr const char* kNoSystem = "COM_NO_SYSTEM";
/// An object has a connection point, and nothing says which events it raises there; {0} is the id of the
/// interface that listeners have, {1} what the object or the system says.
inline constexpr const char* kNoEventNames = "COM_NO_EVENTS";
/// A type library cannot be read or written; {0} is its name, {1} what the system says.
inline constexpr const char* kTypeLibrary = "COM_TYPE_LIBRARY";

} // namespace messages

/// Returns what the system says of a result, with its number.
[[nodiscard]] wstring result_text(::HRESULT result);
/// Returns "0x" and eight digits.
[[nodiscard]] wstring result_number(::HRESULT result);

/// Throws COMException for the result of a call of a member. `info`, which may be null, is what the object
/// said, and is let go of. What one of our objects threw on the way is the cause.
[[noreturn]] void throw_failed_call(wstring_view member, ::HRESULT result, EXCEPINFO* info);
/// Throws COMException (`id`, with `what`) for a failed result; returns for a good one.
void check(::HRESULT result, const char* id, wstring_view what);
/// Does the same, and refuses a good result that came with a null pointer. The pointer is looked at behind
/// the call that stored it.
template <class Pointer>
void check_given(::HRESULT result, const Pointer& given, const char* id, wstring_view what) {
    check(SUCCEEDED(result) && !given ? E_POINTER : result, id, what);
}

/// Stores what is being thrown in `info`, which may be null, and in the thread's IErrorInfo; returns what the
/// failed call returns. To be called while an exception is handled.
[[nodiscard]] ::HRESULT report_failure(EXCEPINFO* info) noexcept;

} // namespace core::com
