// SPDX-License-Identifier: Apache-2.0
#include "core/storage/name_keys.h"

#include "core/strings/folding.h"

#include <core/storage/files_type.h>

#include <algorithm>

namespace core {
namespace {

constexpr std::size_t kUnits = 4; // of a number
constexpr unsigned kSearches = 4;

wstring folding_of(wstring_view name) {
    wstring folding;
    FoldedReader reader(name);
    for (int unit = reader.next(); unit >= 0; unit = reader.next())
        folding.push_back(static_cast<wchar>(unit));
    return folding;
}

/// Appends a unit to a number. A folding that has ended goes on with zeros: it may then be taken for one that
/// goes on with such, never for one behind it.
std::uint64_t append_unit(std::uint64_t number, int unit) noexcept {
    return number << 16 | static_cast<std::uint64_t>(std::max(unit, 0));
}

} // namespace

SoughtName::SoughtName(wstring_view name) : name_(name) {
    FoldedReader reader(name);
    std::size_t size = 0;
    for (int unit = reader.next(); unit >= 0; unit = reader.next()) {
        if (size == short_.size()) {
            long_ = folding_of(name);
            folding_ = long_;
            return;
        }
        short_[size++] = static_cast<wchar>(unit);
    }
    folding_ = wstring_view(short_.data(), size);
}

void NameHeads::add(wstring_view name) {
    if (isEmpty_) {
        prefix_ = folding_of(name);
        isEmpty_ = false;
        return;
    }
    FoldedReader reader(name);
    std::size_t same = 0;
    while (same < prefix_.size() && reader.next() == prefix_[same])
        ++same;
    prefix_.resize(same);
}

std::uint64_t NameHeads::of(wstring_view name) const noexcept {
    FoldedReader reader(name);
    for (std::size_t i = 0; i < prefix_.size(); ++i)
        (void)reader.next();
    std::uint64_t number = 0;
    for (std::size_t i = 0; i < kUnits; ++i)
        number = append_unit(number, reader.next());
    return number;
}

std::uint64_t NameHeads::ofFolding(wstring_view folding) const noexcept {
    std::uint64_t number = 0;
    for (std::size_t i = prefix_.size(); i < prefix_.size() + kUnits; ++i)
        number = append_unit(number, i < folding.size() ? folding[i] : 0);
    return number;
}

bool NameKeys::hasNumbers() const {
    if (numbers_.size() == size())
        return true;
    if (++searches_ <= kSearches)
        return false;
    heads_ = NameHeads();
    heads_.add(at(0)); // the others begin with what the first and the last one do
    heads_.add(at(size() - 1));
    numbers_.clear();
    for (std::size_t row = 0; row < size(); ++row)
        numbers_.push_back(heads_.of(at(row)));
    return true;
}

std::size_t NameKeys::rowFor(const SoughtName& name) const {
    std::size_t low = 0;       // the rows before it are not greater
    std::size_t high = size(); // those from it on are
    if (hasNumbers()) {
        const wstring& prefix = heads_.prefix();
        if (const int order = name.folding().substr(0, prefix.size()).compare(prefix); order != 0)
            return order < 0 ? 0 : size() - 1;
        const auto [begin, end] =
            std::equal_range(numbers_.begin(), numbers_.end(), heads_.ofFolding(name.folding()));
        low = static_cast<std::size_t>(begin - numbers_.begin());
        high = static_cast<std::size_t>(end - numbers_.begin());
    }
    while (low < high) {
        const std::size_t middle = low + (high - low) / 2;
        if (compare_file_names(at(middle), name.name()) <= 0)
            low = middle + 1;
        else
            high = middle;
    }
    return low == 0 ? 0 : low - 1;
}

} // namespace core
