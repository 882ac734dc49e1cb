// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <tuple>
#include <utility>

namespace core {

/// The format made from `keys`, the parts of the settings that decide it, kept for the calling thread until
/// it asks with others. Keys are compared, not addresses: another process's settings may come to stand at the
/// same place. A default-made format must be the one of empty keys.
template <class Format, class... Keys>
const Format& cached_format(const Keys&... keys) {
    thread_local std::tuple<Keys...> lastKeys;
    thread_local Format last;
    if (lastKeys != std::tie(keys...)) {
        std::tuple<Keys...> newKeys(keys...);
        last = Format(keys...);
        lastKeys = std::move(newKeys);
    }
    return last;
}

} // namespace core
