// SPDX-License-Identifier: Apache-2.0
#include "bridges/com/names.h"

#include <core/strings/compare.h>
#include <core/strings/names.h>

#include <mutex>
#include <shared_mutex>
#include <unordered_map>

namespace core::com {
namespace {

constexpr DISPID kFirst = 0x10000;
constexpr std::uint32_t kMask = 0x3FFF'FFFF;

/// The names that have a number. They are kept for ever: callers keep the numbers.
struct Names {
    std::shared_mutex mutex;
    std::unordered_map<DISPID, wstring> names;

    static Names& all() noexcept {
        static Names names;
        return names;
    }
};

} // namespace

DISPID id_of_name(wstring_view name) {
    Names& all = Names::all();
    const std::unique_lock lock(all.mutex);
    constexpr std::uint32_t kSpread = 2'654'435'761U;
    std::uint32_t hash = static_cast<std::uint32_t>(hash_nocase(name)) * kSpread;
    for (;; ++hash) {
        const DISPID id = kFirst + static_cast<DISPID>(hash & kMask);
        const auto [place, added] = all.names.try_emplace(id, name);
        if (added || compare_nocase(place->second, name) == 0)
            return id;
    }
}

const wstring* name_of_id(DISPID id) noexcept {
    Names& all = Names::all();
    const std::shared_lock lock(all.mutex);
    const auto found = all.names.find(id);
    return found != all.names.end() ? &found->second : nullptr;
}

} // namespace core::com
