// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/errors.h>

/// The messages of formats and sorting. A format string that is not valid is a CtorException, a locale
/// without rules a LocaleException.
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
/// A text in several languages is malformed; {0} is the position of the unit, counted from 1.
inline constexpr const char* kLocalText = "IDS_LOCAL_TEXT_ERROR";
/// A pattern of dates has letters without a meaning there; {0} is the pattern, {1} the letters, {2} their
/// position in the pattern, counted from 1.
inline constexpr const char* kPatternPart = "IDS_FORMAT_PATTERN_ERROR";
/// A currency has no nouns in a language; {0} is its code, {1} the key of the language.
inline constexpr const char* kNoCurrency = "IDS_WORDS_NO_CURRENCY";
/// A noun has not as many forms as the language; {0} are the forms, {1} how many are wanted.
inline constexpr const char* kNounForms = "IDS_WORDS_NOUN_FORMS";
/// A number has a fraction that the format has no words for; {0} is the number.
inline constexpr const char* kNumberNotWhole = "IDS_WORDS_NOT_WHOLE";
/// The rules of a language have no words for a number; {0} is the number, {1} the key of the language.
inline constexpr const char* kNumberWithoutWords = "IDS_WORDS_NUMBER";
/// There are no rules for the words of numbers in a language; {0} is its key.
inline constexpr const char* kNoWords = "IDS_WORDS_NO_RULES";
/// The system has no collation rules for a locale; {0} is its key.
inline constexpr const char* kNoCollation = "IDS_LOCALE_NO_COLLATION";
/// The system cannot write numbers or dates for a locale; {0} is its key.
inline constexpr const char* kNoFormats = "IDS_LOCALE_NO_FORMATS";

} // namespace messages

} // namespace core
