// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/exception.h>

/// The failures of threads and locks.
namespace core {

namespace messages {

/// Threads take locks in a circle: the steps of the circle, a line each.
inline constexpr const char* kLockCycle = "IDS_LOCK_CYCLE";
/// One step of such a circle: the thread, the lock that it took, the place, the lock that it held, the place
/// where it had taken that.
inline constexpr const char* kLockCycleStep = "IDS_LOCK_CYCLE_STEP";
/// The thread waits for a lock that it holds: the name of the lock.
inline constexpr const char* kLockHeld = "IDS_LOCK_HELD";
/// A lock between processes cannot have that name: the name.
inline constexpr const char* kLockName = "IDS_LOCK_NAME";
/// A thread unlocks what it does not hold. No parameters.
inline constexpr const char* kLockNotHeld = "IDS_LOCK_NOT_HELD";
/// A lock between processes cannot be opened: its name, what the system says.
inline constexpr const char* kLockOpen = "IDS_LOCK_OPEN";
/// A thread waits for its own end: its name.
inline constexpr const char* kThreadJoinsItself = "IDS_THREAD_JOINS_ITSELF";
/// The system starts no thread: its name, what the system says.
inline constexpr const char* kThreadStart = "IDS_THREAD_START";
/// A thread object is started once more: the name of its thread.
inline constexpr const char* kThreadStarted = "IDS_THREAD_STARTED";
/// One object is named twice in a wait for all of several. No parameters.
inline constexpr const char* kWaitTwice = "IDS_WAIT_TWICE";

} // namespace messages

/// What a thread or a lock refuses.
class CORE_API ThreadException : public BasicException<ThreadException> {
  public:
    /// The class id of ThreadExceptionObject.
    static constexpr GUID kClassId = "a2ba1796-ce09-4b9a-ab11-6dd737cc667a"_guid;
    using BasicException::BasicException;
};

/// The error object of ThreadException.
using ThreadExceptionObject = IExceptionObjectImpl<ThreadException>;

/// Ends a thread that was asked to stop: its next wait or check throws this, and nothing is reported when it
/// reaches the end of the thread. It does not derive from std::exception, so that code which handles
/// failures lets it pass; code that catches everything throws it on.
class CORE_API ThreadDeath {};

} // namespace core
