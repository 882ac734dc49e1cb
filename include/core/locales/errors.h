// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/errors.h>

/// The failures of locales. A format string that is not valid is a CtorException.
namespace core {

namespace messages {

/// A format string cannot be taken apart, or has an item twice; {0} is what stands there, {1} the position of
/// the unit, counted from 1.
inline constexpr const char* kFormatItem = "IDS_FORMAT_STRING_ERROR";
/// A format string has an item that its kind of value does not have; {0} is the name, {1} its position,
/// counted from 1, {2} the names that there are.
inline constexpr const char* kFormatItemName = "IDS_FORMAT_ITEM_UNKNOWN";
/// An item of a format string has a value that makes no sense; {0} is the name, {1} its position, counted
/// from 1, {2} the value.
inline constexpr const char* kFormatItemValue = "IDS_FORMAT_ITEM_VALUE";
/// A format string is given with a value that has no formats; {0} is the type of the value.
inline constexpr const char* kNoFormatOfType = "IDS_FORMAT_NO_TYPE";
/// A pattern of dates has letters without a meaning there; {0} is the pattern, {1} the letters, {2} their
/// position in the pattern, counted from 1.
inline constexpr const char* kPatternPart = "IDS_FORMAT_PATTERN_ERROR";
/// The system has no collation rules for a locale; {0} is its key.
inline constexpr const char* kNoCollation = "IDS_LOCALE_NO_COLLATION";
/// The system cannot write numbers or dates for a locale; {0} is its key.
inline constexpr const char* kNoFormats = "IDS_LOCALE_NO_FORMATS";

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
