// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/context/errors.h>
#include <core/files/errors.h>
#include <core/runtime/exception.h>

#include <tuple>

/// The failures of settings. What a file refuses travels in a FileException.
namespace core {

namespace messages {

/// Another process holds the lock of a settings file for too long; {0} is the file.
inline constexpr const char* kProfileBusy = "IDS_PROFILE_BUSY";
/// A settings file was damaged; {0} is the file, {1} where the damaged one was put.
inline constexpr const char* kProfileDamaged = "IDS_PROFILE_DAMAGED";
/// A settings file is damaged and cannot be replaced; {0} is the file, {1} says why.
inline constexpr const char* kProfileDamagedStays = "IDS_PROFILE_DAMAGED_STAYS";
/// A file is not one of settings, or is damaged; {0} is the file.
inline constexpr const char* kProfileImport = "IDS_PROFILE_IMPORT";
/// A layer keeps others from changing a value; {0} is the path.
inline constexpr const char* kProfileLocked = "IDS_PROFILE_LOCKED";
/// Only the built-in and the system's layer can lock. No parameters.
inline constexpr const char* kProfileLockLayer = "IDS_PROFILE_LOCK_LAYER";
/// There is no folder in which a layer could be kept. No parameters.
inline constexpr const char* kProfileNoFile = "IDS_PROFILE_NO_FILE";
/// A text is not a path of settings; {0} is the text.
inline constexpr const char* kProfilePath = "IDS_PROFILE_PATH";
/// A settings file cannot be read, and its layer counts as empty; {0} is the file, {1} says why.
inline constexpr const char* kProfileUnreadable = "IDS_PROFILE_UNREADABLE";
/// A value cannot be read, and the default is given; {0} is the path, {1} says why.
inline constexpr const char* kProfileValue = "IDS_PROFILE_VALUE";
/// A settings file has a later version of the format; {0} is the file.
inline constexpr const char* kProfileVersion = "IDS_PROFILE_VERSION";
/// A value has another type than was asked for, and the default is given; {0} is the path, {1} the type that
/// it has.
inline constexpr const char* kProfileWrongType = "IDS_PROFILE_WRONG_TYPE";

} // namespace messages

/// A change of settings that is refused, or settings that cannot be had. The message id says why.
class CORE_API ProfileException : public BasicException<ProfileException> {
  public:
    /// The class id of ProfileExceptionObject.
    static constexpr GUID kClassId = "da91ab15-fdea-4bff-8944-c98096979312"_guid;
    using BasicException::BasicException;
};

/// The error object of ProfileException.
using ProfileExceptionObject = IExceptionObjectImpl<ProfileException>;

} // namespace core
