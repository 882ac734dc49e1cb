// SPDX-License-Identifier: Apache-2.0
#include "core/profiles/record.h"

#define XXH_INLINE_ALL
#include <core/lists/token.h>
#include <core/runtime/utf8.h>

#include <xxhash.h>

#include <algorithm>
#include <array>
#include <cstddef>

namespace core {
namespace {

constexpr std::size_t kSumDigits = 10;
constexpr std::size_t kNumberDigits = 20;
constexpr std::string_view kRecordStart = ",{";

// What a line begins with before its changes.
constexpr std::size_t kBody = kRecordStart.size() + kSumDigits + 1;

std::uint32_t checksum_of(std::string_view text) noexcept {
    return XXH32(text.data(), text.size(), 0);
}

/// Appends a number with leading zeros, so that it takes the same room whatever it is.
void append_number(std::string& out, std::uint64_t number, std::size_t digits) {
    const std::size_t begin = out.size();
    out.append(digits, '0');
    for (std::size_t i = digits; i-- != 0; number /= 10)
        out[begin + i] = static_cast<char>('0' + number % 10);
}

std::optional<std::uint64_t> number_of(std::string_view digits) noexcept {
    std::uint64_t number = 0;
    for (const char digit : digits) {
        if (digit < '0' || digit > '9')
            return std::nullopt;
        number = number * 10 + static_cast<std::uint64_t>(digit - '0');
    }
    return number;
}

constexpr bool needs_escape(wchar unit) noexcept {
    return !is_allowed_char(unit) || unit == 0xFFFF;
}

void append_escape(wstring& out, wchar unit) {
    std::array<wchar, 4> digits{};
    escape_char(unit, digits.data());
    out += u"\"\\";
    out.append(digits.data(), digits.size());
}

void append_key(std::string& out, wstring_view key) {
    wstring text = u"\"";
    for (const wchar unit : key)
        needs_escape(unit) ? append_escape(text, unit) : text.push_back(unit);
    text += u'"';
    out += to_utf8(text);
}

/// Returns a list without line feeds: those between its elements are left out, and those in its strings are
/// escaped.
wstring in_one_line(wstring_view list) {
    wstring line;
    line.reserve(list.size());
    bool inString = false;
    for (std::size_t i = 0; i < list.size(); ++i) {
        const wchar unit = list[i];
        const wchar next = i + 1 < list.size() ? list[i + 1] : wchar{};
        if (unit == u'\n') {
            if (inString)
                append_escape(line, unit);
        } else if (inString && unit == u'"' && (next == u'"' || next == u'\\')) {
            line.append({unit, next});
            ++i;
        } else {
            inString = inString != (unit == u'"');
            line.push_back(unit);
        }
    }
    return line;
}

/// Reads a line from left to right; whatever does not fit returns false.
class LineReader {
  public:
    explicit LineReader(std::string_view text) noexcept : rest_(text) {}

    [[nodiscard]] bool take(char expected) noexcept {
        if (!rest_.starts_with(expected))
            return false;
        rest_.remove_prefix(1);
        return true;
    }
    [[nodiscard]] bool isAtEnd() const noexcept { return rest_.empty(); }

    [[nodiscard]] bool key(wstring& key) {
        if (!take('"'))
            return false;
        for (;;) {
            const std::size_t quote = rest_.find('"');
            if (quote == std::string_view::npos)
                return false;
            key += from_utf8(rest_.substr(0, quote));
            rest_.remove_prefix(quote + 1);
            if (take('"'))
                key += u'"';
            else if (!take('\\'))
                return true;
            else if (!escape(key))
                return false;
        }
    }

    /// Reads a list, whatever it holds, and returns its text.
    [[nodiscard]] bool list(std::string_view& text) noexcept {
        std::size_t depth = 0;
        bool inString = false;
        for (std::size_t i = 0; i < rest_.size(); ++i) {
            const char unit = rest_[i];
            if (inString) {
                // A quote that is doubled ends the string and begins it again. One before an escape does not
                // end it.
                if (unit == '"')
                    inString = i + 1 < rest_.size() && rest_[i + 1] == '\\';
                continue;
            }
            inString = unit == '"';
            if (unit == '{')
                ++depth;
            else if (unit == '}')
                --depth;
            if (depth == 0) { // begins with another unit, or ends here
                text = rest_.substr(0, unit == '}' && i != 0 ? i + 1 : 0);
                rest_.remove_prefix(text.size());
                return !text.empty();
            }
        }
        return false;
    }

  private:
    bool escape(wstring& out) {
        if (rest_.size() < 4)
            return false;
        std::array<wchar, 4> digits{};
        std::ranges::copy(rest_.substr(0, 4), digits.begin());
        out += unescape_char(digits.data());
        rest_.remove_prefix(4);
        return true;
    }

    std::string_view rest_;
};

bool read_change(LineReader& reader, KeyChange& change) {
    if (!reader.take('{') || !reader.key(change.key))
        return false;
    std::string_view value;
    if (reader.take(',')) {
        if (!reader.list(value))
            return false;
        change.value = value;
    }
    return reader.take('}') && !change.key.empty();
}

} // namespace

std::string text_of_value(const Value& value) {
    wstring text;
    GenericValue(value).toString(text);
    return to_utf8(in_one_line(text));
}

GenericValue value_of_text(std::string_view text) {
    return GenericValue::fromBytes(std::as_bytes(std::span(text)));
}

void append_record(std::string& out, std::span<const KeyChange> changes) {
    std::string body;
    for (const KeyChange& change : changes) {
        if (!body.empty())
            body += ',';
        body += '{';
        append_key(body, change.key);
        if (!change.value.empty())
            (body += ',') += change.value;
        body += '}';
    }
    body += '}';
    out += kRecordStart;
    append_number(out, checksum_of(body), kSumDigits);
    out += ',';
    out += body;
    out += '\n';
}

std::optional<std::vector<KeyChange>> read_record(std::string_view line) {
    if (line.size() <= kBody || !line.starts_with(kRecordStart) || line[kBody - 1] != ',')
        return std::nullopt;
    const std::string_view body = line.substr(kBody);
    if (number_of(line.substr(kRecordStart.size(), kSumDigits)) != checksum_of(body))
        return std::nullopt;
    std::vector<KeyChange> changes;
    LineReader reader(body);
    do {
        if (!read_change(reader, changes.emplace_back()))
            return std::nullopt;
    } while (reader.take(','));
    if (!reader.take('}') || !reader.isAtEnd())
        return std::nullopt;
    return changes;
}

std::string header_line(const ProfileHeader& header) {
    std::string line(ProfileHeader::kStart);
    line += ProfileHeader::kVersion;
    append_number(line, header.generation, kNumberDigits);
    line += ',';
    append_number(line, header.journal, kNumberDigits);
    const std::uint32_t sum = checksum_of(line);
    line += ',';
    append_number(line, sum, kSumDigits);
    line += '\n';
    return line;
}

std::optional<ProfileHeader> read_header(std::string_view text) noexcept {
    if (text.size() < ProfileHeader::kSize)
        return std::nullopt;
    text = text.substr(0, ProfileHeader::kSize);
    constexpr std::size_t kNumbers = ProfileHeader::kStart.size() + ProfileHeader::kVersion.size();
    constexpr std::size_t kSecond = kNumbers + kNumberDigits + 1;
    constexpr std::size_t kSum = kSecond + kNumberDigits + 1;
    static_assert(kSum + kSumDigits + 1 == ProfileHeader::kSize);
    const auto generation = number_of(text.substr(kNumbers, kNumberDigits));
    const auto journal = number_of(text.substr(kSecond, kNumberDigits));
    const auto sum = number_of(text.substr(kSum, kSumDigits));
    const bool isWhole = text.starts_with(ProfileHeader::kStart) && text[kSum - 1] == ',' &&
                         text.back() == '\n' && sum == checksum_of(text.substr(0, kSum - 1));
    if (!isWhole || !generation || !journal || *journal < ProfileHeader::kSize)
        return std::nullopt;
    return ProfileHeader{*generation, *journal};
}

bool is_later_version(std::string_view text) noexcept {
    if (!text.starts_with(ProfileHeader::kStart))
        return false;
    text.remove_prefix(ProfileHeader::kStart.size());
    return text.size() >= 2 && text[0] >= '1' && text[0] <= '9' &&
           !text.starts_with(ProfileHeader::kVersion) &&
           text.substr(0, text.find_first_not_of("0123456789")).size() < 4 &&
           text.find(',') == text.find_first_not_of("0123456789");
}

} // namespace core
