// SPDX-License-Identifier: Apache-2.0
#include "core/tables/query/match_keys.h"

#include "core/strings/hash_index.h"
#include "core/tables/query/word_scale.h"

#include <algorithm>

namespace core {
namespace {

using Form = CellColumn::Form;

/// Numbers different words from 1 in the order in which they come.
class WordTable {
  public:
    [[nodiscard]] std::uint32_t add(std::int64_t word) {
        const std::uint64_t hash = hashOf(word);
        if (const std::uint32_t known = search(hash, word); known != HashIndex::kNone)
            return known + 1;
        const auto position = static_cast<std::uint32_t>(words_.size());
        words_.push_back(word);
        index_.add(hash, position);
        return position + 1;
    }
    /// Returns kNoKey for a word that was not added.
    [[nodiscard]] std::uint32_t find(std::int64_t word) const noexcept {
        const std::uint32_t known = search(hashOf(word), word);
        return known != HashIndex::kNone ? known + 1 : MatchKeys::kNoKey;
    }
    [[nodiscard]] std::size_t size() const noexcept { return words_.size(); }

  private:
    [[nodiscard]] std::uint64_t hashOf(std::int64_t word) const noexcept {
        return table_hash_step(seed_, static_cast<std::uint64_t>(word));
    }
    [[nodiscard]] std::uint32_t search(std::uint64_t hash, std::int64_t word) const noexcept {
        return index_.find(hash, [&](std::uint32_t position) { return words_[position] == word; });
    }

    std::uint64_t seed_ = table_hash_seed();
    std::vector<std::int64_t> words_;
    HashIndex index_;
};

/// Both sides of one pair of columns.
struct Sides {
    const CellColumn& left;
    RowRange leftRows;
    const CellColumn& right;
    RowRange rightRows;
    BlankCells blank;
};

/// Stores what `key_of` makes of each row.
template <class KeyOf>
void store_keys(std::vector<std::uint32_t>& keys, RowRange rows, WorkWatch& watch, KeyOf key_of) {
    keys.resize(rows.size());
    rows.visit([&](auto row_at) {
        watch.inPieces(rows.size(), [&](std::size_t begin, std::size_t end) {
            for (std::size_t i = begin; i < end; ++i)
                keys[i] = key_of(row_at(i));
        });
    });
}

/// The smallest and the largest word of a column; the smallest is the larger one when all cells are empty.
struct WordLimits {
    std::int64_t smallest = std::numeric_limits<std::int64_t>::max();
    std::int64_t largest = CellColumn::kEmptyWord;

    WordLimits(RowRange rows, std::span<const std::int64_t> words) noexcept {
        rows.forEach([&](RowId row) {
            const std::int64_t word = words[row];
            smallest = word == CellColumn::kEmptyWord ? smallest : std::min(smallest, word);
            largest = std::max(largest, word);
        });
    }
    [[nodiscard]] std::uint64_t distance(std::int64_t word) const noexcept {
        return static_cast<std::uint64_t>(word) - static_cast<std::uint64_t>(smallest);
    }
};

/// Keys of two columns of words. `to_right` brings a left word to the scale of the right column. Few possible
/// words are their own keys, many are looked up.
template <class ToRight>
MatchKeys keys_of_words(const Sides& sides, WorkWatch& watch, ToRight to_right) {
    const auto left = sides.left.words();
    const auto right = sides.right.words();
    const std::uint32_t empty = sides.blank == BlankCells::equal ? 1 : MatchKeys::kNoKey;
    const WordLimits limits(sides.rightRows, right);
    MatchKeys keys;
    const std::uint64_t few = std::max<std::uint64_t>(std::uint64_t{1} << 16, 4 * sides.rightRows.size());
    if (limits.largest >= limits.smallest && limits.distance(limits.largest) < few) {
        const auto key_of = [&](std::int64_t word) {
            return word == CellColumn::kEmptyWord ? empty
                                                  : static_cast<std::uint32_t>(limits.distance(word) + 2);
        };
        keys.count = limits.distance(limits.largest) + 3;
        store_keys(keys.right, sides.rightRows, watch, [&](RowId row) { return key_of(right[row]); });
        store_keys(keys.left, sides.leftRows, watch, [&](RowId row) {
            const auto word = to_right(left[row]);
            const bool possible = word && (*word == CellColumn::kEmptyWord ||
                                           (*word >= limits.smallest && *word <= limits.largest));
            return possible ? key_of(*word) : MatchKeys::kNoKey;
        });
        return keys;
    }
    WordTable table;
    store_keys(keys.right, sides.rightRows, watch, [&](RowId row) {
        return right[row] == CellColumn::kEmptyWord ? empty : table.add(right[row]) + 1;
    });
    store_keys(keys.left, sides.leftRows, watch, [&](RowId row) {
        const auto word = to_right(left[row]);
        if (!word)
            return MatchKeys::kNoKey;
        if (*word == CellColumn::kEmptyWord)
            return empty;
        const std::uint32_t known = table.find(*word);
        return known != MatchKeys::kNoKey ? known + 1 : MatchKeys::kNoKey;
    });
    keys.count = table.size() + 2;
    return keys;
}

MatchKeys keys_of_words(const Sides& sides, WorkWatch& watch) {
    const std::uint32_t left = sides.left.scale();
    const std::uint32_t right = sides.right.scale();
    const WordScale scale(std::max(left, right) - std::min(left, right));
    if (left == right)
        return keys_of_words(sides, watch, [](std::int64_t word) { return std::optional(word); });
    if (left < right)
        return keys_of_words(sides, watch, [&](std::int64_t word) { return scale.up(word); });
    return keys_of_words(sides, watch, [&](std::int64_t word) { return scale.down(word); });
}

/// Makes keys of the codes of a dictionary.
class CodeKeys {
  public:
    CodeKeys(const ValueDictionary& dictionary, BlankCells blank) noexcept
        : dictionary_(dictionary), shift_(blank == BlankCells::equal ? 1 : 0),
          null_(blank == BlankCells::never ? dictionary.find(Value::null()).value_or(0) : 0) {}

    [[nodiscard]] std::uint32_t ofCode(ValueDictionary::Code code) const noexcept {
        return code == null_ && code != 0 ? MatchKeys::kNoKey : code + shift_;
    }
    [[nodiscard]] std::uint32_t ofValue(const Value& value) const noexcept {
        const auto code = dictionary_.find(value);
        return code ? ofCode(*code) : MatchKeys::kNoKey;
    }
    [[nodiscard]] std::uint64_t count() const noexcept { return dictionary_.size() + shift_; }

  private:
    const ValueDictionary& dictionary_;
    std::uint32_t shift_;
    ValueDictionary::Code null_;
};

/// Stores the keys of one side. The values of a dictionary are looked up once.
void store_code_keys(std::vector<std::uint32_t>& keys, const CellColumn& cells, RowRange rows,
                     const CodeKeys& codeKeys, bool ownCodes, WorkWatch& watch) {
    if (cells.form() == Form::coded) {
        const auto codes = cells.codes();
        if (ownCodes) {
            store_keys(keys, rows, watch, [&](RowId row) { return codeKeys.ofCode(codes[row]); });
            return;
        }
        std::vector<std::uint32_t> byCode;
        byCode.reserve(cells.dictionary().size());
        for (const Value& value : cells.dictionary().values())
            byCode.push_back(codeKeys.ofValue(value));
        store_keys(keys, rows, watch, [&](RowId row) { return byCode[codes[row]]; });
    } else if (cells.form() == Form::values) {
        const auto values = cells.values();
        constexpr std::size_t kAhead = 16; // values lie anywhere in memory
        keys.resize(rows.size());
        watch.inPieces(rows.size(), [&](std::size_t begin, std::size_t end) {
            for (std::size_t i = begin; i < end; ++i) {
                if (i + kAhead < end)
                    __builtin_prefetch(values[rows[i + kAhead]].object());
                keys[i] = codeKeys.ofValue(values[rows[i]]);
            }
        });
    } else {
        store_keys(keys, rows, watch, [&](RowId row) { return codeKeys.ofValue(cells.get(row)); });
    }
}

/// Keys of columns one of which at least is not of words: the codes of a dictionary, the larger one of two. A
/// right column without a dictionary gets one for the occasion where the left one has none.
MatchKeys keys_of_codes(const Sides& sides, WorkWatch& watch) {
    const bool leftCoded = sides.left.form() == Form::coded;
    const bool rightCoded = sides.right.form() == Form::coded;
    ValueDictionary made;
    const ValueDictionary* dictionary = &made;
    if (leftCoded && (!rightCoded || sides.left.dictionary().size() > sides.right.dictionary().size()))
        dictionary = &sides.left.dictionary();
    else if (rightCoded)
        dictionary = &sides.right.dictionary();
    else
        watch.inPieces(sides.rightRows.size(), [&](std::size_t begin, std::size_t end) {
            for (std::size_t i = begin; i < end; ++i)
                static_cast<void>(made.add(sides.right.get(sides.rightRows[i])));
        });
    const CodeKeys codeKeys(*dictionary, sides.blank);
    MatchKeys keys;
    keys.count = codeKeys.count();
    const auto owns = [&](const CellColumn& cells) {
        return cells.form() == Form::coded && &cells.dictionary() == dictionary;
    };
    store_code_keys(keys.right, sides.right, sides.rightRows, codeKeys, owns(sides.right), watch);
    store_code_keys(keys.left, sides.left, sides.leftRows, codeKeys, owns(sides.left), watch);
    return keys;
}

/// Makes one key of two for each row.
void combine(MatchKeys& keys, const MatchKeys& more, WorkWatch& watch) {
    const auto both = [&](std::vector<std::uint32_t>& first, const std::vector<std::uint32_t>& second,
                          auto key_of) {
        watch.inPieces(first.size(), [&](std::size_t begin, std::size_t end) {
            for (std::size_t i = begin; i < end; ++i) {
                const bool none = first[i] == MatchKeys::kNoKey || second[i] == MatchKeys::kNoKey;
                first[i] = none ? MatchKeys::kNoKey : key_of(first[i], second[i]);
            }
        });
    };
    const std::uint64_t few = std::max<std::uint64_t>(std::uint64_t{1} << 16, 2 * keys.right.size());
    if (keys.count < few / more.count) {
        const auto key_of = [&](std::uint32_t a, std::uint32_t b) {
            return static_cast<std::uint32_t>(a * more.count + b);
        };
        both(keys.right, more.right, key_of);
        both(keys.left, more.left, key_of);
        keys.count *= more.count;
        return;
    }
    const auto pair = [](std::uint32_t a, std::uint32_t b) {
        return static_cast<std::int64_t>(std::uint64_t{a} << 32 | b);
    };
    WordTable table;
    both(keys.right, more.right, [&](std::uint32_t a, std::uint32_t b) { return table.add(pair(a, b)); });
    both(keys.left, more.left, [&](std::uint32_t a, std::uint32_t b) { return table.find(pair(a, b)); });
    keys.count = table.size() + 1;
}

} // namespace

MatchKeys match_keys(RowRange left, RowRange right, std::span<const ColumnPair> pairs, BlankCells blank,
                     WorkWatch& watch) {
    watch.expect(pairs.size() * (left.size() + right.size()));
    MatchKeys keys;
    for (const ColumnPair& pair : pairs) {
        const Sides sides{pair.left->cells, left, pair.right->cells, right, blank};
        const Form form = sides.left.form();
        const bool words = form == sides.right.form() && (form == Form::numbers || form == Form::dates);
        MatchKeys more = words ? keys_of_words(sides, watch) : keys_of_codes(sides, watch);
        if (&pair == &pairs.front())
            keys = std::move(more);
        else
            combine(keys, more, watch);
    }
    if (pairs.empty()) {
        keys.left.assign(left.size(), 1);
        keys.right.assign(right.size(), 1);
        keys.count = 2;
    }
    return keys;
}

} // namespace core
