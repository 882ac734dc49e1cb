// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/errors.h>

/// The failures of text documents.
namespace core {

namespace messages {

/// An offset lies behind the end of a text; {0} is the offset, {1} the number of units of the text.
inline constexpr const char* kTextOffset = "IDS_DOCUMENT_OFFSET";
/// A line lies behind the last one; {0} is its number from 1, {1} the number of lines.
inline constexpr const char* kTextLine = "IDS_DOCUMENT_LINE";
/// A range ends in front of its beginning; {0} is the beginning, {1} the end.
inline constexpr const char* kTextRange = "IDS_DOCUMENT_RANGE";
/// Ranges that are replaced together overlap; {0} is the offset at which the second one begins.
inline constexpr const char* kTextRangesOverlap = "IDS_DOCUMENT_RANGES_OVERLAP";
/// A mark is used that has been removed, or that is of another document.
inline constexpr const char* kTextMark = "IDS_DOCUMENT_MARK";
/// Something is asked that cannot be while a group of edits is open.
inline constexpr const char* kTextGroupOpen = "IDS_DOCUMENT_GROUP_OPEN";
/// A group of edits is ended that was not begun.
inline constexpr const char* kTextNoGroup = "IDS_DOCUMENT_NO_GROUP";
/// An empty text is looked for.
inline constexpr const char* kTextQueryEmpty = "IDS_DOCUMENT_QUERY_EMPTY";
/// A regular expression is malformed; {0} is the pattern, {1} the place in it, from 1.
inline constexpr const char* kTextQueryMalformed = "IDS_DOCUMENT_QUERY_MALFORMED";
/// A regular expression takes too long, or too much memory, on a text.
inline constexpr const char* kTextQueryTooLong = "IDS_DOCUMENT_QUERY_TOO_LONG";
/// A replacement names a group that the regular expression does not have; {0} is the replacement.
inline constexpr const char* kTextReplacement = "IDS_DOCUMENT_REPLACEMENT";
/// Lines are to be ended by LineEnd::none.
inline constexpr const char* kTextNoLineEnd = "IDS_DOCUMENT_NO_LINE_END";

} // namespace messages

/// A text document was asked for what it does not have.
class CORE_API DocumentException : public BasicException<DocumentException> {
  public:
    /// The class id of DocumentExceptionObject.
    static constexpr GUID kClassId = "27e5af08-ab97-41d5-9fde-246752109453"_guid;
    using BasicException::BasicException;
};

/// The error object of DocumentException.
using DocumentExceptionObject = IExceptionObjectImpl<DocumentException>;

} // namespace core
