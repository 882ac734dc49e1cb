// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/errors.h>

/// The failures of streams. A text with a fault of encoding is a ConverterException.
namespace core {

namespace messages {

/// An encoding has a name that nobody knows; {0} is the name.
inline constexpr const char* kEncodingUnknown = "IDS_ENCODING_UNKNOWN";
/// Bytes are not text in the encoding; {0} is the text, {1} the encoding, {2} the bytes in hexadecimal
/// digits, {3} their offset.
inline constexpr const char* kTextNotDecodable = "IDS_TEXT_NOT_DECODABLE";
/// A text has a character that the encoding does not have; {0} is the text, {1} the encoding, {2} the
/// character as "U+20AC", {3} the offset in bytes at which it would stand.
inline constexpr const char* kTextNotEncodable = "IDS_TEXT_NOT_ENCODABLE";
/// A text that is written has half of a surrogate pair; {0} is the file, {1} the offset in bytes.
inline constexpr const char* kTextNotUtf16 = "IDS_TEXT_NOT_UTF16";
/// A line that is typed is not UTF-8; {0} is its name, {1} the offset in bytes.
inline constexpr const char* kTextNotUtf8 = "IDS_TEXT_NOT_UTF8";
/// A text was not written, because a writer had failed on it; {0} is the file.
inline constexpr const char* kTextNotWhole = "IDS_TEXT_NOT_WHOLE";

} // namespace messages

/// A stream over a file that could not be read or written.
class CORE_API FileStreamException : public BasicException<FileStreamException> {
  public:
    /// The class id of FileStreamExceptionObject.
    static constexpr GUID kClassId = "c7c8aa40-694c-49db-9ce1-b26120992919"_guid;
    using BasicException::BasicException;
};

/// The error object of FileStreamException.
using FileStreamExceptionObject = IExceptionObjectImpl<FileStreamException>;

} // namespace core
