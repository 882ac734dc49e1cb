// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/exception.h>

/// The failures of objects that are written and read.
namespace core {

namespace messages {

/// Data of a version of the compact form that is not known; {0} is the version, {1} the latest known one.
inline constexpr const char* kCompactVersion = "IDS_COMPACT_VERSION";

} // namespace messages

/// Data of a version that is not supported.
class CORE_API VersionException : public BasicException<VersionException> {
  public:
    /// The class id of VersionExceptionObject.
    static constexpr GUID kClassId = "9f06d311-1431-4a54-bd6f-fa93c4d4c471"_guid;
    using BasicException::BasicException;
};

/// The error object of VersionException.
using VersionExceptionObject = IExceptionObjectImpl<VersionException>;

} // namespace core
