// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <tuple>

namespace core {

/// The format made from `keys`, the parts of the settings that decide it, kept for the calling thread until
/// it asks with others. Keys are compared, not addresses: another process's settings may come to stand at the
/// same place.
template <class Format, class... Keys>
const Format& cached_format(const Keys&... keys) {
    struct Entry {
        std::tuple<Keys...> keys;
        Format format;
    };
    thread_local std::unique_ptr<const Entry> last;
    if (last == nullptr || last->keys != std::tie(keys...))
        last = std::make_unique<const Entry>(Entry{std::tuple<Keys...>(keys...), Format(keys...)});
    return last->format;
}

} // namespace core
