// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/values/generic_value.h>

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// The lines of a settings file. Each is a record: changes that belong together, with a checksum over them:
///
///     ,{1234567890,{"report/period",{"N",7}},{"report/old/"}}
///
/// A key with a value sets it; a key alone removes it, and with "/" at its end everything below. Line feeds
/// stand between records only, so that lines can be found from any offset.
namespace core {

/// A change of one key.
struct KeyChange {
    wstring key;
    std::string value{}; // a list in one line of UTF-8; empty where the key is removed
};

/// Returns a value as a record holds it. Throws as serialize_value().
[[nodiscard]] std::string text_of_value(const Value& value);
/// Returns the value of such a text. Throws as GenericValue::fromBytes().
[[nodiscard]] GenericValue value_of_text(std::string_view text);

/// Appends the line of a record, with its line feed.
void append_record(std::string& out, std::span<const KeyChange> changes);
/// Returns the changes of a line without its line feed; nothing for a damaged line.
[[nodiscard]] std::optional<std::vector<KeyChange>> read_record(std::string_view line);

/// What a settings file begins with.
struct ProfileHeader {
    std::uint64_t generation = 0; // of the sorted part, one more each time that it is written
    std::uint64_t journal = 0;    // the offset behind the sorted part

    static constexpr std::size_t kSize = 67;                     // the line, with its line feed
    static constexpr std::string_view kStart = "{\"settings\","; // of every version
    static constexpr std::string_view kVersion = "1,";
};
/// What a settings file ends with.
inline constexpr std::string_view kProfileEnd = "}\n";

/// Returns the line of a header, with its line feed.
[[nodiscard]] std::string header_line(const ProfileHeader& header);
/// Returns the header that `text` begins with; nothing for a damaged one.
[[nodiscard]] std::optional<ProfileHeader> read_header(std::string_view text) noexcept;
/// Returns whether `text` begins as a file of a later version does.
[[nodiscard]] bool is_later_version(std::string_view text) noexcept;

} // namespace core
