// SPDX-License-Identifier: Apache-2.0
#include "core/dates/zone_file.h"

#include "core/dates/unix_time.h"
#include "core/dates/zone_rule.h"

#include <algorithm>

namespace core {
namespace {

/// Far outside of all dates, and far enough from the ends of 64 bits for sums with offsets.
constexpr std::int64_t kMostMoment = std::int64_t{1} << 60;
constexpr std::int32_t kMostOffset = 26 * 3600;

/// Takes big-endian numbers and runs of bytes off the front of a file. What is missing reads as nothing.
class Bytes {
  public:
    explicit Bytes(std::string_view bytes) noexcept : rest_(bytes) {}

    [[nodiscard]] bool failed() const noexcept { return failed_; }
    [[nodiscard]] std::string_view rest() const noexcept { return rest_; }

    std::string_view take(std::uint64_t size) noexcept {
        if (size > rest_.size()) {
            failed_ = true;
            rest_ = {};
            return {};
        }
        const auto taken = rest_.substr(0, static_cast<std::size_t>(size));
        rest_.remove_prefix(taken.size());
        return taken;
    }

    /// A signed number of 4 or 8 bytes.
    std::int64_t number(std::size_t size) noexcept {
        std::uint64_t value = 0;
        for (const char c : take(size))
            value = value << 8 | static_cast<unsigned char>(c);
        return size == 4 ? static_cast<std::int32_t>(static_cast<std::uint32_t>(value))
                         : static_cast<std::int64_t>(value);
    }

    std::uint64_t count() noexcept { return static_cast<std::uint32_t>(number(4)); }

  private:
    std::string_view rest_;
    bool failed_ = false;
};

struct Header {
    char version;
    std::uint64_t universalMarks;
    std::uint64_t standardMarks;
    std::uint64_t leapSeconds;
    std::uint64_t moments;
    std::uint64_t types;
    std::uint64_t letters;

    /// The bytes of what follows, with moments of `width` bytes.
    [[nodiscard]] std::uint64_t bodySize(std::size_t width) const noexcept {
        return moments * (width + 1) + types * 6 + letters + leapSeconds * (width + 4) + standardMarks +
               universalMarks;
    }
};

std::optional<Header> read_header(Bytes& file) noexcept {
    if (file.take(4) != "TZif")
        return std::nullopt;
    const std::string_view version = file.take(16); // and what is reserved
    Header header{};
    for (std::uint64_t* count : {&header.universalMarks, &header.standardMarks, &header.leapSeconds,
                                 &header.moments, &header.types, &header.letters})
        *count = file.count();
    if (file.failed())
        return std::nullopt;
    header.version = version.front();
    return header;
}

/// Moves the moments from clocks that count leap seconds to those that do not.
bool remove_leap_seconds(Bytes& records, std::uint64_t count, std::size_t width,
                         std::vector<TimeZone::Change>& changes) noexcept {
    auto change = changes.begin();
    std::int64_t correction = 0;
    std::int64_t before = -kMostMoment;
    for (std::uint64_t i = 0; i < count; ++i) {
        const std::int64_t moment = records.number(width);
        for (; change != changes.end() && change->moment < moment; ++change)
            change->moment -= correction;
        correction = records.number(4);
        if (moment <= before)
            return false;
        before = moment;
    }
    for (; change != changes.end(); ++change)
        change->moment -= correction;
    return true;
}

/// The zone of the body behind a header, and of the rule that follows it.
std::optional<TimeZone> read_zone(Bytes& file, const Header& header, std::size_t width,
                                  const std::optional<ZoneRule>& rule) {
    Bytes moments(file.take(header.moments * width));
    const std::string_view kinds = file.take(header.moments);
    Bytes types(file.take(header.types * 6));
    file.take(header.letters);
    Bytes leapSeconds(file.take(header.leapSeconds * (width + 4)));
    if (file.failed() || header.types == 0)
        return std::nullopt;

    std::vector<std::int32_t> offsets;
    for (std::uint64_t i = 0; i < header.types; ++i) {
        offsets.push_back(static_cast<std::int32_t>(types.number(4)));
        types.take(2); // summer time or not, and the place of the name
        if (offsets.back() <= -kMostOffset || offsets.back() >= kMostOffset)
            return std::nullopt;
    }
    std::vector<TimeZone::Change> changes;
    for (const char kind : kinds) {
        const std::size_t type = static_cast<unsigned char>(kind);
        if (type >= offsets.size())
            return std::nullopt;
        changes.push_back({std::clamp(moments.number(width), -kMostMoment, kMostMoment), offsets[type]});
    }
    const bool leaps = remove_leap_seconds(leapSeconds, header.leapSeconds, width, changes);
    const auto before = [](const auto& a, const auto& b) { return a.moment < b.moment; };
    if (!leaps || !std::is_sorted(changes.begin(), changes.end(), before))
        return std::nullopt;
    if (!rule)
        return TimeZone(offsets.front(), changes);
    return changes.empty() ? rule->zone() : rule->zoneAfter(offsets.front(), std::move(changes));
}

/// The rule on the line behind the body; no rule where the line is empty. False when it is damaged.
bool read_rule(std::string_view line, std::optional<ZoneRule>& rule) noexcept {
    const std::size_t end = line.find('\n', 1);
    if (line.empty() || line.front() != '\n' || end == std::string_view::npos)
        return false;
    const std::string_view text = line.substr(1, end - 1);
    rule = ZoneRule::parse(text);
    return rule || text.empty();
}

} // namespace

std::optional<TimeZone> read_zone_file(std::string_view bytes) {
    constexpr std::size_t kNarrow = 4;
    constexpr std::size_t kWide = 8;
    Bytes file(bytes);
    auto header = read_header(file);
    if (!header)
        return std::nullopt;
    std::optional<ZoneRule> rule;
    if (header->version == '\0')
        return read_zone(file, *header, kNarrow, rule);
    // Later versions say everything a second time, with wide moments and the rule of what follows.
    file.take(header->bodySize(kNarrow));
    header = read_header(file);
    if (!header)
        return std::nullopt;
    Bytes behind = file;
    behind.take(header->bodySize(kWide));
    if (!read_rule(behind.rest(), rule))
        return std::nullopt;
    return read_zone(file, *header, kWide, rule);
}

} // namespace core
