// SPDX-License-Identifier: Apache-2.0
#include "core/tables/sort/value_ranks.h"

#include "core/locales/collation_keys.h"
#include "core/tables/sort/word_sort.h"

#include <core/runtime/settings.h>

#include <array>
#include <bit>
#include <string>

namespace core {
namespace {

/// Gives the bits of a double such that unsigned integers compare as the doubles do.
std::uint64_t ordered_bits(double value) noexcept {
    const auto bits = std::bit_cast<std::uint64_t>(value);
    return bits >> 63 != 0 ? ~bits : bits | std::uint64_t{1} << 63;
}

/// Reads a collation key word by word.
class KeyWords {
  public:
    explicit KeyWords(std::string_view key) : key_(key) {}

    /// Returns eight bytes, the first of them highest, with zeros behind the end. No key holds a zero byte.
    [[nodiscard]] std::uint64_t word(unsigned depth) const noexcept {
        const std::string_view rest = key_.substr(depth * sizeof(std::uint64_t));
        std::uint64_t word = 0;
        if (rest.size() >= sizeof word) {
            for (std::size_t byte = 0; byte < sizeof word; ++byte)
                word = word << 8 | static_cast<unsigned char>(rest[byte]);
            return word;
        }
        for (std::size_t byte = 0; byte < sizeof word; ++byte)
            word = word << 8 | (byte < rest.size() ? static_cast<unsigned char>(rest[byte]) : 0U);
        return word;
    }
    /// Says whether the words before this depth hold the whole key.
    [[nodiscard]] bool endsBefore(unsigned depth) const noexcept {
        return key_.size() < depth * sizeof(std::uint64_t);
    }

  private:
    std::string_view key_;
};

/// Sorts values of one kind and writes their ranks, the first of which is `next_`.
class Ranking {
  public:
    Ranking(std::span<const Value> values, RowRange chosen)
        : values_(values), chosen_(chosen), ranks_(chosen.size()) {}

    void rank(ValueKind kind, std::span<const std::uint32_t> positions) {
        if (positions.empty())
            return;
        switch (kind) {
        case ValueKind::undefined:
        case ValueKind::null:
            rankBy(positions, [](const Value&) { return 0U; });
            break;
        case ValueKind::boolean:
            rankBy(positions, [](const Value& value) { return value.isTrue() ? 1U : 0U; });
            break;
        case ValueKind::date:
            rankBy(positions, [](const Value& value) { return value.asDate()->ticks(); });
            break;
        case ValueKind::number:
            rankNumbers(positions);
            break;
        default:
            rankTexts(positions);
        }
    }
    [[nodiscard]] std::vector<std::uint32_t> take() noexcept { return std::move(ranks_); }

  private:
    [[nodiscard]] const Value& value(std::uint32_t position) const noexcept {
        return values_[chosen_[position]];
    }

    template <class Word>
    void rankBy(std::span<const std::uint32_t> positions, Word word) {
        std::vector<std::uint64_t> words;
        words.reserve(positions.size());
        for (const std::uint32_t position : positions)
            words.push_back(word(value(position)));
        sort(positions, words, nothing_deeper, [](std::uint32_t, std::uint32_t) { return 0; });
    }

    void rankNumbers(std::span<const std::uint32_t> positions) {
        std::vector<std::uint64_t> words;
        words.reserve(positions.size());
        for (const std::uint32_t position : positions)
            words.push_back(ordered_bits(static_cast<double>(*value(position).asNumeric())));
        sort(positions, words, nothing_deeper, [&](std::uint32_t a, std::uint32_t b) {
            return value(positions[a]).asNumeric()->compare(*value(positions[b]).asNumeric());
        });
    }

    void rankTexts(std::span<const std::uint32_t> positions) {
        std::vector<wstring> presentations;
        std::vector<wstring_view> texts;
        presentations.reserve(positions.size());
        texts.reserve(positions.size());
        detail::LoopCheck check;
        for (const std::uint32_t position : positions) {
            check();
            const wstring_view* const text = value(position).asString();
            texts.push_back(text != nullptr ? *text
                                            : presentations.emplace_back(value(position).presentation()));
        }
        const CollationKeys keys(texts, current_settings().locale);
        std::vector<std::uint64_t> words(texts.size());
        for (std::size_t i = 0; i < texts.size(); ++i)
            words[i] = KeyWords(keys[i]).word(0);
        const auto deepen = [&](std::span<const std::uint32_t> equal, unsigned depth) {
            if (KeyWords(keys[equal.front()]).endsBefore(depth))
                return false;
            for (const std::uint32_t i : equal)
                words[i] = KeyWords(keys[i]).word(depth);
            return true;
        };
        sort(positions, words, deepen,
             [&](std::uint32_t a, std::uint32_t b) { return texts[a].compare(texts[b]); });
    }

    static bool nothing_deeper(std::span<const std::uint32_t>, unsigned) noexcept { return false; }

    template <class Deepen, class Compare>
    void sort(std::span<const std::uint32_t> positions, std::span<std::uint64_t> words, Deepen deepen,
              Compare compare) {
        const SortedIndexes sorted = sort_by_words(words, deepen, compare);
        for (std::size_t i = 0; i < sorted.order.size(); ++i) {
            next_ += sorted.leads[i] ? 1U : 0U;
            ranks_[positions[sorted.order[i]]] = next_ - 1;
        }
    }

    std::span<const Value> values_;
    RowRange chosen_;
    std::vector<std::uint32_t> ranks_;
    std::uint32_t next_ = 0;
};

} // namespace

std::vector<std::uint32_t> rank_values(std::span<const Value> values, RowRange chosen) {
    constexpr std::size_t kKinds = static_cast<std::size_t>(ValueKind::object) + 1;
    std::array<std::vector<std::uint32_t>, kKinds> kinds;
    for (std::uint32_t i = 0; i < chosen.size(); ++i)
        kinds[static_cast<std::size_t>(values[chosen[i]].kind())].push_back(i);
    Ranking ranking(values, chosen);
    for (std::size_t kind = 0; kind < kKinds; ++kind)
        ranking.rank(static_cast<ValueKind>(kind), kinds[kind]);
    return ranking.take();
}

} // namespace core
