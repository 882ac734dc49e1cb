// SPDX-License-Identifier: Apache-2.0
#include "core/strings/unit_search.h"

#include "core/strings/pair_search.h"

#include <algorithm>

namespace core {
namespace {

std::size_t cases_of(const UnitClass& units) noexcept {
    return units[2] != units[0] ? 4 : units[1] != units[0] ? 2 : 1;
}

} // namespace

const wchar* find_pair(const UnitPair& pair, const wchar* at, std::size_t count) noexcept {
    const std::size_t cases = std::max(cases_of(pair.near), cases_of(pair.far));
    return cases == 1   ? search_pair<1>(pair, at, count)
           : cases == 2 ? search_pair<2>(pair, at, count)
                        : search_pair<4>(pair, at, count);
}

} // namespace core
