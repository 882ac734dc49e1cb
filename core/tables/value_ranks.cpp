// SPDX-License-Identifier: Apache-2.0
#include "core/tables/value_ranks.h"

#include "core/tables/introsort.h"

#include <core/runtime/settings.h>
#include <core/strings/collate.h>

#include <array>
#include <bit>
#include <cstring>
#include <string>

namespace core {
namespace {

/// A value in a sort: most comparisons end at the first word of what decides.
struct Item {
    std::uint64_t word;
    std::uint32_t index;
};

/// The bits of a double in an order that unsigned integers have, too.
std::uint64_t ordered_bits(double value) noexcept {
    const auto bits = std::bit_cast<std::uint64_t>(value);
    return bits >> 63 != 0 ? ~bits : bits | std::uint64_t{1} << 63;
}

/// The collation keys of texts, one behind the other.
class TextKeys {
  public:
    void add(wstring_view text) {
        keys_ += collation_key(text, locale_);
        ends_.push_back(keys_.size());
    }
    [[nodiscard]] std::string_view operator[](std::size_t i) const noexcept {
        const std::size_t begin = i == 0 ? 0 : ends_[i - 1];
        return std::string_view(keys_).substr(begin, ends_[i] - begin);
    }

  private:
    const Locale& locale_ = current_settings().locale;
    std::string keys_;
    std::vector<std::size_t> ends_;
};

/// The first eight bytes, the first of them highest.
std::uint64_t first_word(std::string_view key) noexcept {
    std::uint64_t word = 0;
    for (std::size_t i = 0; i < sizeof word; ++i)
        word = word << 8 | (i < key.size() ? static_cast<unsigned char>(key[i]) : 0U);
    return word;
}

/// Sorts values of one kind and writes their places, the first of which is `next`, to where they belong.
class Ranking {
  public:
    Ranking(std::span<const Value> values, std::vector<std::uint32_t>& ranks) noexcept
        : values_(values), ranks_(ranks) {}

    void rank(ValueKind kind, std::span<const std::uint32_t> indexes) {
        if (indexes.empty())
            return;
        items_.clear();
        switch (kind) {
        case ValueKind::undefined:
        case ValueKind::null:
            rankBy(indexes, [](const Value&) { return 0U; });
            break;
        case ValueKind::boolean:
            rankBy(indexes, [](const Value& value) { return value.isTrue() ? 1U : 0U; });
            break;
        case ValueKind::date:
            rankBy(indexes, [](const Value& value) { return value.asDate()->ticks(); });
            break;
        case ValueKind::number:
            rankNumbers(indexes);
            break;
        default:
            rankTexts(indexes);
        }
        ++next_;
    }

  private:
    template <class Word>
    void rankBy(std::span<const std::uint32_t> indexes, Word word) {
        for (const std::uint32_t index : indexes)
            items_.push_back({word(values_[index]), index});
        rankItems([](const Item&, const Item&) { return 0; });
    }

    void rankNumbers(std::span<const std::uint32_t> indexes) {
        for (const std::uint32_t index : indexes)
            items_.push_back({ordered_bits(static_cast<double>(*values_[index].asNumeric())), index});
        rankItems([this](const Item& a, const Item& b) {
            return values_[a.index].asNumeric()->compare(*values_[b.index].asNumeric());
        });
    }

    void rankTexts(std::span<const std::uint32_t> indexes) {
        TextKeys keys;
        std::vector<wstring> presentations;
        std::vector<wstring_view> texts;
        presentations.reserve(indexes.size());
        for (const std::uint32_t index : indexes) {
            const wstring_view* const text = values_[index].asString();
            texts.push_back(text != nullptr ? *text
                                            : presentations.emplace_back(values_[index].presentation()));
            keys.add(texts.back());
        }
        for (std::uint32_t i = 0; i < indexes.size(); ++i)
            items_.push_back({first_word(keys[i]), i});
        const auto compare_rest = [&](const Item& a, const Item& b) {
            const int order = keys[a.index].compare(keys[b.index]);
            return order != 0 ? order : texts[a.index].compare(texts[b.index]);
        };
        rankItems(compare_rest, indexes);
    }

    /// `indexes`, where given, says what the items' own indexes stand for.
    template <class CompareRest>
    void rankItems(CompareRest compare_rest, std::span<const std::uint32_t> indexes = {}) {
        const auto less = [&](const Item& a, const Item& b) {
            return a.word != b.word ? a.word < b.word : compare_rest(a, b) < 0;
        };
        introsort(std::span(items_), less);
        for (std::size_t i = 0; i < items_.size(); ++i) {
            if (i != 0 && less(items_[i - 1], items_[i]))
                ++next_;
            ranks_[indexes.empty() ? items_[i].index : indexes[items_[i].index]] = next_;
        }
    }

    std::span<const Value> values_;
    std::vector<std::uint32_t>& ranks_;
    std::vector<Item> items_;
    std::uint32_t next_ = 0;
};

} // namespace

std::vector<std::uint32_t> rank_values(std::span<const Value> values) {
    constexpr std::size_t kKinds = static_cast<std::size_t>(ValueKind::object) + 1;
    std::array<std::vector<std::uint32_t>, kKinds> kinds;
    for (std::size_t i = 0; i < values.size(); ++i)
        kinds[static_cast<std::size_t>(values[i].kind())].push_back(static_cast<std::uint32_t>(i));
    std::vector<std::uint32_t> ranks(values.size());
    Ranking ranking(values, ranks);
    for (std::size_t kind = 0; kind < kKinds; ++kind)
        ranking.rank(static_cast<ValueKind>(kind), kinds[kind]);
    return ranks;
}

} // namespace core
