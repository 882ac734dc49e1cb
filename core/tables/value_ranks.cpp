// SPDX-License-Identifier: Apache-2.0
#include "core/tables/value_ranks.h"

#include "core/tables/word_sort.h"

#include <core/runtime/settings.h>
#include <core/strings/collate.h>

#include <array>
#include <bit>
#include <string>

namespace core {
namespace {

/// The bits of a double in an order that unsigned integers have, too.
std::uint64_t ordered_bits(double value) noexcept {
    const auto bits = std::bit_cast<std::uint64_t>(value);
    return bits >> 63 != 0 ? ~bits : bits | std::uint64_t{1} << 63;
}

/// The collation keys of texts, one behind the other, to be read by words.
class TextKeys {
  public:
    void add(wstring_view text) {
        keys_ += collation_key(text, locale_);
        ends_.push_back(keys_.size());
    }
    /// Eight bytes of a key, the first of them highest. A key ends with a zero byte, which it has nowhere
    /// else.
    [[nodiscard]] std::uint64_t word(std::uint32_t i, unsigned depth) const noexcept {
        const std::string_view rest = key(i).substr(depth * sizeof(std::uint64_t));
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
    /// Whether the words up to this depth say all.
    [[nodiscard]] bool endsBefore(std::uint32_t i, unsigned depth) const noexcept {
        return key(i).size() < depth * sizeof(std::uint64_t);
    }

  private:
    [[nodiscard]] std::string_view key(std::uint32_t i) const noexcept {
        const std::size_t begin = i == 0 ? 0 : ends_[i - 1];
        return std::string_view(keys_).substr(begin, ends_[i] - begin);
    }

    const Locale& locale_ = current_settings().locale;
    std::string keys_;
    std::vector<std::size_t> ends_;
};

/// Sorts items whose words tell nothing more by comparing them.
template <class Compare>
void sort_by_comparing(std::span<WordItem> items, Compare compare) {
    introsort(items, [&](const WordItem& a, const WordItem& b) {
        const int order = compare(a, b);
        return order != 0 ? order < 0 : a.index < b.index;
    });
    items.front().leads = true;
    for (std::size_t i = 1; i < items.size(); ++i)
        items[i].leads = compare(items[i - 1], items[i]) != 0;
}

/// Sorts values of one kind and writes their places, the first of which is `next_`, to where they belong.
class Ranking {
  public:
    Ranking(std::span<const Value> values, RowRange chosen) noexcept
        : values_(values), chosen_(chosen), ranks_(chosen.size()) {}

    void rank(ValueKind kind, std::span<const std::uint32_t> places) {
        if (places.empty())
            return;
        items_.clear();
        switch (kind) {
        case ValueKind::undefined:
        case ValueKind::null:
            rankBy(places, [](const Value&) { return 0U; });
            break;
        case ValueKind::boolean:
            rankBy(places, [](const Value& value) { return value.isTrue() ? 1U : 0U; });
            break;
        case ValueKind::date:
            rankBy(places, [](const Value& value) { return value.asDate()->ticks(); });
            break;
        case ValueKind::number:
            rankNumbers(places);
            break;
        default:
            rankTexts(places);
        }
    }
    [[nodiscard]] std::vector<std::uint32_t> take() noexcept { return std::move(ranks_); }

  private:
    [[nodiscard]] const Value& value(std::uint32_t place) const noexcept { return values_[chosen_[place]]; }

    template <class Word>
    void rankBy(std::span<const std::uint32_t> places, Word word) {
        for (const std::uint32_t place : places)
            items_.push_back({word(value(place)), place});
        sort_by_words(std::span(items_), [](std::span<WordItem>, unsigned) { return false; });
        writeRanks([](std::uint32_t index) { return index; });
    }

    void rankNumbers(std::span<const std::uint32_t> places) {
        for (const std::uint32_t place : places)
            items_.push_back({ordered_bits(static_cast<double>(*value(place).asNumeric())), place});
        sort_by_words(std::span(items_), [this](std::span<WordItem> equal, unsigned) {
            sort_by_comparing(equal, [this](const WordItem& a, const WordItem& b) {
                return value(a.index).asNumeric()->compare(*value(b.index).asNumeric());
            });
            return false;
        });
        writeRanks([](std::uint32_t index) { return index; });
    }

    void rankTexts(std::span<const std::uint32_t> places) {
        TextKeys keys;
        std::vector<wstring> presentations;
        std::vector<wstring_view> texts;
        presentations.reserve(places.size());
        texts.reserve(places.size());
        items_.reserve(places.size());
        for (std::uint32_t i = 0; i < places.size(); ++i) {
            const Value& text = value(places[i]);
            const wstring_view* const own = text.asString();
            texts.push_back(own != nullptr ? *own : presentations.emplace_back(text.presentation()));
            keys.add(texts.back());
            items_.push_back({keys.word(i, 0), i});
        }
        sort_by_words(std::span(items_), [&](std::span<WordItem> equal, unsigned depth) {
            if (!keys.endsBefore(equal.front().index, depth)) {
                for (WordItem& item : equal)
                    item.word = keys.word(item.index, depth);
                return true;
            }
            sort_by_comparing(equal, [&](const WordItem& a, const WordItem& b) {
                return texts[a.index].compare(texts[b.index]);
            });
            return false;
        });
        writeRanks([=](std::uint32_t index) { return places[index]; });
    }

    template <class PlaceOf>
    void writeRanks(PlaceOf place_of) {
        for (const WordItem& item : items_) {
            next_ += item.leads ? 1U : 0U;
            ranks_[place_of(item.index)] = next_ - 1;
        }
    }

    std::span<const Value> values_;
    RowRange chosen_;
    std::vector<std::uint32_t> ranks_;
    std::vector<WordItem> items_;
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
