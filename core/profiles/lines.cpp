// SPDX-License-Identifier: Apache-2.0
#include "core/profiles/lines.h"

#include <core/files/file_io.h>

#include <algorithm>
#include <optional>
#include <span>
#include <utility>

namespace core {
namespace {

constexpr std::size_t kRead = 4096;

} // namespace

/// Returns the bytes from `offset` on, at least `least` of them where the file has as many before `end`.
std::string_view Lines::piece(std::uint64_t offset, std::size_t least, std::uint64_t end) {
    const std::uint64_t room = end - offset;
    least = static_cast<std::size_t>(std::min<std::uint64_t>(least, room));
    const bool isThere = offset >= begin_ && offset - begin_ <= piece_.size() &&
                         piece_.size() - static_cast<std::size_t>(offset - begin_) >= least;
    if (!isThere) {
        piece_.resize(static_cast<std::size_t>(std::min<std::uint64_t>(std::max(least, kRead), room)));
        begin_ = offset;
        try {
            piece_.resize(read_all_at(*file_, offset, std::as_writable_bytes(std::span(piece_))));
        } catch (...) {
            piece_.clear();
            throw;
        }
    }
    const std::string_view found = std::string_view(piece_).substr(static_cast<std::size_t>(offset - begin_));
    return found.substr(0, static_cast<std::size_t>(std::min<std::uint64_t>(found.size(), room)));
}

Lines::Line Lines::at(std::uint64_t offset, std::uint64_t end) {
    for (std::size_t least = 1;;) {
        const std::string_view text = piece(offset, least, end);
        const std::size_t length = text.find('\n');
        if (length != std::string_view::npos)
            return {text.substr(0, length), offset + length + 1, true};
        if (text.size() < least || text.size() == end - offset) // the file ends, or what may be read of it
            return {text, offset + text.size(), false};
        least = std::max(kRead, 2 * text.size());
        least = static_cast<std::size_t>(std::min<std::uint64_t>(least, end - offset));
    }
}

std::uint64_t Lines::beginFrom(std::uint64_t offset, std::uint64_t end) {
    return at(offset - 1, end).next; // the line feed before it may be all that is left of its line
}

std::uint64_t SortedLines::lowerBound(wstring_view key) {
    std::uint64_t low = begin_; // lines that begin before it have smaller keys
    std::uint64_t high = end_;  // those that begin at it or behind have not
    while (low < high) {
        const std::uint64_t middle = low + (high - low) / 2;
        std::uint64_t begin = middle == low ? low : lines_.beginFrom(middle, end_);
        if (begin >= high)
            begin = low; // the line at `low` reaches over the middle
        Entry entry;
        if (!read(begin, entry) || entry.next > high) {
            // Only damaged lines stand before `high`.
            if (begin == low)
                return low;
            high = begin;
        } else if (entry.set.key < key) {
            low = entry.next;
        } else {
            high = begin;
        }
    }
    return low;
}

bool SortedLines::read(std::uint64_t offset, Entry& entry) {
    while (offset < end_) {
        const Lines::Line line = lines_.at(offset, end_);
        std::optional<std::vector<KeyChange>> record;
        if (line.isWhole)
            record = read_record(line.text);
        offset = line.next;
        if (record && record->size() == 1 && !record->front().value.empty()) {
            entry.set = std::move(record->front());
            entry.next = offset;
            return true;
        }
        damaged_ = true;
        if (line.text.empty() && !line.isWhole) // the file ends early
            return false;
    }
    return false;
}

} // namespace core
