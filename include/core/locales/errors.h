// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/errors.h>

/// The failures of locales. A format string that is not valid is a CtorException.
namespace core {

namespace messages {

/// A format string has an item that is not valid; {0} is the item.
inline constexpr const char* kFormatItem = "IDS_FORMAT_STRING_ERROR";
/// A pattern of dates has letters without a meaning there; {0} is the pattern, {1} the letters.
inline constexpr const char* kPatternPart = "IDS_FORMAT_PATTERN_ERROR";
/// The system has no collation rules for a locale; {0} is its key.
inline constexpr const char* kNoCollation = "IDS_LOCALE_NO_COLLATION";

} // namespace messages

/// A locale that the system does not know, or has no rules for.
class CORE_API LocaleException : public BasicException<LocaleException> {
  public:
    /// The class id of LocaleExceptionObject.
    static constexpr GUID kClassId = "a5ac9977-cc6b-4878-95b5-4969293f7ed5"_guid;
    using BasicException::BasicException;
};

/// The error object of LocaleException.
using LocaleExceptionObject = IExceptionObjectImpl<LocaleException>;

} // namespace core
