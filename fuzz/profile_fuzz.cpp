// SPDX-License-Identifier: Apache-2.0
// Any bytes, opened as a settings file: reading ends, what was read stays what it was after a change and for
// the next program, and an import takes all of a file or nothing.
#include <core/files.h>
#include <core/profiles.h>
#include <host/host_process.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <span>
#include <utility>

namespace {

using namespace core;

void require(bool condition) {
    if (!condition)
        std::abort();
}

std::map<wstring, GenericValue> contents(IProfile& profile) {
    std::map<wstring, GenericValue> all;
    for (ProfileEntry& entry : profile.entries({}))
        all.emplace(std::move(entry.path), std::move(entry.found.value));
    return all;
}

/// Whether both hold values at the same paths; objects are equal to themselves alone.
bool have_same_paths(const std::map<wstring, GenericValue>& a, const std::map<wstring, GenericValue>& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](const auto& one, const auto& other) { return one.first == other.first; });
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const host::HostProcess process;
    const auto files = create_file_system();
    for (const char16_t* const name : {u"mem://user.list", u"mem://import.list"})
        write_all_at(*files->openURL(name, OpenMode::create), 0, std::as_bytes(std::span(data, size)));
    ProfileSettings places;
    places.user = u"mem://user.list";
    places.system = u"mem://system.list";
    std::map<wstring, GenericValue> kept;
    try {
        const auto profile = create_profile(places, files);
        profile->set(u"fuzz/set", 1);
        kept = contents(*profile);
        require(profile->get(u"fuzz/set", 0) == 1);
    } catch (const ProfileException&) { // a later version
        return 0;
    }
    const auto again = create_profile(places, files);
    require(have_same_paths(kept, contents(*again)));
    try {
        again->importFrom(u"mem://import.list", u"fuzz/import");
    } catch (const ProfileException&) {
        require(have_same_paths(kept, contents(*again)));
    }
    return 0;
}
