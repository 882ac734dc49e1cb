// SPDX-License-Identifier: Apache-2.0
#include "core/dates/find_zone.h"

#include "core/dates/icu_zone.h"
#include "core/dates/zone_file.h"
#include "core/dates/zone_rule.h"
#include "core/runtime/memory/thread_kept.h"

#include <core/dates/errors.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <mutex>
#include <unordered_map>

namespace core {
namespace {

namespace fs = std::filesystem;
using SharedZone = std::shared_ptr<const TimeZone>;

constexpr const char* kLocalTime = "/etc/localtime";
constexpr const char* kFolders[] = {"/usr/share/zoneinfo", "/usr/share/lib/zoneinfo", "/etc/zoneinfo"};

SharedZone shared(const std::optional<TimeZone>& zone) {
    return zone ? std::make_shared<const TimeZone>(*zone) : nullptr;
}

/// Null for a file that is not there or holds no zone. Pipes and devices, which might never end, are not
/// read.
SharedZone zone_of_file(const fs::path& path) {
    constexpr std::streamoff kMostBytes = 1 << 20; // real ones have 4 KiB
    std::error_code error;
    if (!fs::is_regular_file(path, error))
        return nullptr;
    std::ifstream file(path, std::ios::binary | std::ios::ate);
    const std::streamoff size = file.tellg();
    if (size < 0 || size > kMostBytes)
        return nullptr;
    std::string bytes(static_cast<std::size_t>(size), '\0');
    file.seekg(0);
    file.read(bytes.data(), std::ssize(bytes));
    bytes.resize(static_cast<std::size_t>(file.gcount()));
    return shared(read_zone_file(bytes));
}

/// In a folder only what lies below it is looked for.
SharedZone zone_below(const fs::path& folder, const fs::path& name) {
    for (const fs::path& part : name)
        if (part == "..")
            return nullptr;
    return zone_of_file(folder / name);
}

SharedZone zone_in_folders(const fs::path& name) {
    if (const char* const folder = std::getenv("TZDIR"); folder != nullptr && *folder != '\0')
        return zone_below(folder, name);
    for (const char* const folder : kFolders)
        if (SharedZone zone = zone_below(folder, name))
            return zone;
    return nullptr;
}

SharedZone universal_time() {
    return std::make_shared<const TimeZone>(0, std::vector<TimeZone::Change>());
}

/// Zones that were asked for by name, shared by all threads.
class KnownZones {
  public:
    SharedZone find(const std::string& name) {
        const std::lock_guard guard(lock_);
        if (const auto known = zones_.find(name); known != zones_.end())
            return known->second;
        SharedZone zone = find_zone(name);
        if (zone == nullptr)
            return nullptr;
        if (zones_.size() == kMost)
            zones_.clear(); // each user of a zone holds it
        return zones_.emplace(name, std::move(zone)).first->second;
    }

  private:
    static constexpr std::size_t kMost = 64;
    std::mutex lock_;
    std::unordered_map<std::string, SharedZone> zones_;
};

SharedZone known_zone(const std::string& name) {
    if (name.empty()) {
        static const SharedZone system = [] {
            const char* const tz = std::getenv("TZ");
            SharedZone zone = find_system_zone(tz);
            if (zone == nullptr)
                throw TimeZoneException(tz);
            return zone;
        }();
        return system;
    }
    static KnownZones known;
    SharedZone zone = known.find(name);
    if (zone == nullptr)
        throw TimeZoneException(name);
    return zone;
}

} // namespace

SharedZone find_zone(std::string_view name) {
    if (name.starts_with(':'))
        name.remove_prefix(1);
    if (name.empty())
        return universal_time();
    if (name.find('\0') != std::string_view::npos)
        return nullptr;
    if (name.front() == '/')
        return zone_of_file(name);
    if (SharedZone zone = zone_in_folders(name))
        return zone;
    if (const auto rule = ZoneRule::parse(name))
        return std::make_shared<const TimeZone>(rule->zone());
    return icu_zone(std::string(name));
}

SharedZone find_system_zone(const char* tz) {
    if (tz != nullptr)
        return find_zone(tz);
    if (SharedZone zone = zone_of_file(kLocalTime))
        return zone;
    // Where there are no zone files the link may still tell the name; where there is nothing, it is universal
    // time.
    SharedZone zone = icu_machine_zone();
    return zone != nullptr ? zone : universal_time();
}

const TimeZone& time_zone(const std::string& name) {
    struct Last {
        std::string name;
        SharedZone zone;
    };
    Last& last = thread_kept<Last>();
    if (last.zone == nullptr || last.name != name) {
        SharedZone zone = known_zone(name);
        last.name = name;
        last.zone = std::move(zone);
    }
    return *last.zone;
}

} // namespace core
