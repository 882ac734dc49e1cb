// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/context/errors.h>

/// The failures of presentation values.
namespace core {

/// A picture that cannot be made or found, or output that is not allowed.
class CORE_API PresentationException : public BasicException<PresentationException> {
  public:
    /// The class id of PresentationExceptionObject.
    static constexpr GUID kClassId = "3195dc73-82f1-4ddd-aead-354d8a700082"_guid;
    using BasicException::BasicException;
};

/// The error object of PresentationException.
using PresentationExceptionObject = IExceptionObjectImpl<PresentationException>;

namespace messages {

/// The process does not allow a kind of output; {0} is its name.
inline constexpr const char* kOutputNotAllowed = "IDS_OUTPUT_NOT_ALLOWED";
/// Bytes are not a picture of a known format; {0} is the file that they come from, or empty.
inline constexpr const char* kNotAPicture = "IDS_PICTURE_FORMAT";
/// No picture is registered under a name; {0} is the name.
inline constexpr const char* kUnknownPicture = "IDS_PICTURE_UNKNOWN";

} // namespace messages
} // namespace core
