// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/lists/list_scanner.h>

#include <cstddef>
#include <cstdint>
#include <string>

/// Brace lists as text, of any size: what "corehost list" does with them. Memory grows with nesting and with
/// the longest token, not with the text.
namespace host {

/// What a list consists of.
struct ListCounts {
    std::uint64_t lists = 0;
    std::uint64_t strings = 0;
    std::uint64_t tokens = 0;
    std::uint32_t depth = 0; ///< lists in lists
    std::uint64_t units = 0; ///< the length of the text
};

/// ListStreamException when the text, which messages call `name`, is malformed, as
/// "name:line:column: what was expected".
[[noreturn]] void throw_malformed(const core::ListScanner& scanner, const std::string& name);

/// Reads a text to its end; false when it is malformed, and the scanner says where.
bool count_list(core::ListScanner& scanner, ListCounts& counts);

/// Writes the list, laid out. Doing so again changes nothing, and what is read is the same.
void format_list(core::ListScanner& scanner, const std::string& name, core::wostream& out,
                 std::size_t indent);

/// Writes the list as JSON: lists are arrays, strings are strings, tokens that JSON takes for numbers are
/// numbers as they stand, and other tokens objects such as {"token": "+5"}. ConverterException for a string
/// with half a surrogate pair, which JSON cannot hold.
void list_to_json(core::ListScanner& scanner, const std::string& name, core::wostream& out,
                  std::size_t indent);

} // namespace host
