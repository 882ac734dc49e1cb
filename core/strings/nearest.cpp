// SPDX-License-Identifier: Apache-2.0
#include <core/strings/letter_case.h>
#include <core/strings/nearest.h>

#include <algorithm>
#include <array>
#include <numeric>
#include <vector>

namespace core {
namespace {

constexpr std::size_t kLongest = 100; // of what a person mistypes

using Row = std::array<std::size_t, kLongest + 1>;

/// How many letters must be inserted, removed, exchanged or swapped with their neighbour to make one text of
/// the other. Neither is longer than kLongest.
std::size_t distance(wstring_view a, wstring_view b) {
    Row before{};
    Row last{};
    Row row{};
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 0; i < a.size(); ++i) {
        before = last;
        last = row;
        row[0] = i + 1;
        for (std::size_t j = 0; j < b.size(); ++j) {
            row[j + 1] = std::min({last[j] + (a[i] == b[j] ? 0 : 1), last[j + 1] + 1, row[j] + 1});
            if (i > 0 && j > 0 && a[i] == b[j - 1] && a[i - 1] == b[j])
                row[j + 1] = std::min(row[j + 1], before[j - 1] + 1);
        }
    }
    return row[b.size()];
}

} // namespace

NearestName::NearestName(wstring_view name) {
    if (name.size() > kLongest)
        return;
    name_ = to_lower(name);
    if (name_.size() > 2) // one wrong letter of two leaves nothing to go by
        least_ = name_.size() / 3 + 1;
}

void NearestName::add(wstring_view candidate) {
    const std::size_t longer = std::max(candidate.size(), name_.size());
    if (longer > kLongest || longer - std::min(candidate.size(), name_.size()) >= least_)
        return;
    if (const std::size_t far = distance(to_lower(candidate), name_); far != 0 && far < least_) {
        least_ = far;
        best_ = candidate;
    }
}

} // namespace core
