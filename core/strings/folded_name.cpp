// SPDX-License-Identifier: Apache-2.0
#include "core/strings/folded_name.h"

#include "core/strings/folding.h"
#include "core/strings/table_hash.h"

#include <utility>

namespace core {
namespace {

/// Hands the words of the folding to `take(word)`, and returns how many units it has.
template <class Take>
std::size_t fold_words(wstring_view name, Take take) noexcept {
    const FoldTable& fold = FoldTable::instance();
    constexpr wchar kLong = FoldTable::kLong;
    std::size_t i = 0;
    for (; i + 4 <= name.size(); i += 4) {
        const std::uint64_t a = fold[name[i]];
        const std::uint64_t b = fold[name[i + 1]];
        const std::uint64_t c = fold[name[i + 2]];
        const std::uint64_t d = fold[name[i + 3]];
        if (a == kLong || b == kLong || c == kLong || d == kLong)
            break;
        take(a | b << 16 | c << 32 | d << 48);
    }
    std::size_t length = i;
    std::uint64_t word = 0;
    const auto add = [&](std::uint64_t unit) {
        word |= unit << (length % 4 * 16);
        if (++length % 4 == 0)
            take(std::exchange(word, 0));
    };
    for (; i < name.size() && fold[name[i]] != kLong; ++i)
        add(fold[name[i]]);
    if (i < name.size()) {
        FoldedReader rest(name.substr(i));
        for (int c = rest.next(); c >= 0; c = rest.next())
            add(static_cast<std::uint64_t>(c));
    }
    if (length % 4 != 0)
        take(word);
    return length;
}

} // namespace

std::uint64_t table_hash_nocase(wstring_view name) noexcept {
    std::uint64_t hash = table_hash_seed();
    fold_words(name, [&](std::uint64_t word) { hash = table_hash_step(hash, word); });
    return hash;
}

FoldedName::FoldedName(wstring_view name) noexcept : name_(name) {
    std::uint64_t hash = table_hash_seed(); // a member would be stored and loaded at each step
    std::size_t count = 0;
    length_ = fold_words(name, [&](std::uint64_t word) {
        hash = table_hash_step(hash, word);
        if (count < kWords)
            words_[count++] = word;
    });
    hash_ = hash;
}

bool FoldedName::isSameLong(const std::uint64_t* folding) const noexcept {
    bool same = true;
    fold_words(name_, [&](std::uint64_t word) { same &= word == *folding++; });
    return same;
}

void FoldedName::appendTo(std::vector<std::uint64_t>& words, std::uint64_t head) const {
    std::size_t end = words.size();
    words.resize(end + 1 + (length_ + 3) / 4);
    words[end++] = head;
    fold_words(name_, [&](std::uint64_t word) { words[end++] = word; });
}

} // namespace core
