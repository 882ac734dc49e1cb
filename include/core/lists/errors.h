// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/exception.h>

/// The failures of brace lists and of the compact form.
namespace core {

namespace messages {

/// A text is not a brace list, or holds something else than was expected. No parameters.
inline constexpr const char* kMalformedList = "IDS_LISTSTREAMERROR";
/// Bytes are not the compact form, or hold something else than was expected; {0} is the offset.
inline constexpr const char* kMalformedCompact = "IDS_COMPACT_MALFORMED";
/// Values stand inside each other too deeply; {0} is the number of levels that may.
inline constexpr const char* kNestingTooDeep = "IDS_NESTING_TOO_DEEP";

} // namespace messages

/// Malformed brace-list text, or malformed bytes of the compact form.
class CORE_API ListStreamException : public BasicException<ListStreamException> {
  public:
    /// The class id of ListStreamExceptionObject.
    static constexpr GUID kClassId = "e88a796d-7758-48a7-9ba7-781e269e9aa4"_guid;
    using BasicException::BasicException;
};

/// The error object of ListStreamException.
using ListStreamExceptionObject = IExceptionObjectImpl<ListStreamException>;

} // namespace core
