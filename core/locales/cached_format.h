// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <tuple>

namespace core {

/// The format made from `keys`, the parts of the settings that decide it, kept for the calling thread until
/// it asks with others. Keys are compared, not addresses: another process's settings may come to stand at the
/// same place. A default-made format must be the one of empty keys.
template <class Format, class... Keys>
const Format& cached_format(const Keys&... keys) {
    struct Entry {
        std::tuple<Keys...> keys;
        Format format;
    };
    thread_local Entry last;
    if (last.keys != std::tie(keys...))
        last = Entry{std::tuple<Keys...>(keys...), Format(keys...)};
    return last.format;
}

} // namespace core
