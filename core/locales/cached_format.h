// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/runtime/memory/thread_kept.h"

#include <core/runtime/types.h>

#include <algorithm>
#include <concepts>
#include <memory>
#include <tuple>
#include <type_traits>
#include <vector>

namespace core {

/// The format made from `keys`, kept for the calling thread until it has asked with eight others. Keys are
/// compared, not addresses: another process's settings may come to stand at the same place.
template <class Format, class... Keys>
const Format& cached_format(const Keys&... keys) {
    constexpr std::size_t kKept = 8;
    using Stored = std::tuple<std::conditional_t<std::same_as<Keys, wstring_view>, wstring, Keys>...>;
    struct Entry {
        Stored keys;
        Format format;
    };
    auto& kept =
        thread_kept<std::vector<std::unique_ptr<const Entry>>>(); // what was asked for last comes first
    const auto found = std::find_if(kept.begin(), kept.end(),
                                    [&](const auto& entry) { return entry->keys == std::tie(keys...); });
    if (found != kept.end()) {
        std::rotate(kept.begin(), found, found + 1);
    } else {
        auto made = std::make_unique<const Entry>(Entry{Stored(keys...), Format(keys...)});
        if (kept.size() == kKept)
            kept.pop_back();
        kept.insert(kept.begin(), std::move(made));
    }
    return kept.front()->format;
}

} // namespace core
