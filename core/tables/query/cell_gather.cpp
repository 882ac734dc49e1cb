// SPDX-License-Identifier: Apache-2.0
#include "core/tables/query/cell_gather.h"

#include "core/tables/query/word_scale.h"

#include <algorithm>

namespace core {
namespace {

using Code = CellColumn::Code;
using Form = CellColumn::Form;

/// Whether a column has had no value yet, so that its form says nothing.
bool is_blank(const CellColumn& cells) noexcept {
    return cells.form() == Form::coded && cells.dictionary().size() == 1;
}

/// The form that all runs have, and in a form of numbers the largest scale; the form `values` where they
/// differ.
struct CommonForm {
    Form form = Form::coded;
    std::uint32_t scale = 0;

    explicit CommonForm(std::span<const CellRun> runs) noexcept {
        bool known = false;
        for (const CellRun& run : runs) {
            if (is_blank(*run.cells))
                continue;
            form = known && form != run.cells->form() ? Form::values : run.cells->form();
            scale = std::max(scale, form == Form::numbers ? run.cells->scale() : 0);
            known = true;
        }
    }
};

/// Appends what `cell_of` makes of each row to `out`, which has room for all; `none` stands for kNoRow.
template <class Cell, class CellOf>
void append(std::vector<Cell>& out, RowRange rows, const Cell& none, WorkWatch& watch, CellOf cell_of) {
    const std::size_t first = out.size();
    out.resize(first + rows.size(), none);
    rows.visit([&](auto row_at) {
        watch.inPieces(rows.size(), [&](std::size_t begin, std::size_t end) {
            for (std::size_t i = begin; i < end; ++i) {
                if (const RowId row = row_at(i); row != kNoRow)
                    out[first + i] = cell_of(row);
            }
        });
    });
}

/// Returns nothing where a word does not fit the common scale.
std::optional<CellColumn> gather_words(std::span<const CellRun> runs, std::size_t count, CommonForm common,
                                       WorkWatch& watch) {
    std::vector<std::int64_t> words;
    words.reserve(count);
    bool fits = true;
    for (const CellRun& run : runs) {
        const auto from = run.cells->words();
        if (from.empty()) {
            words.insert(words.end(), run.rows.size(), CellColumn::kEmptyWord);
            continue;
        }
        if (run.cells->scale() == common.scale || common.form == Form::dates) {
            append(words, run.rows, CellColumn::kEmptyWord, watch, [from](RowId row) { return from[row]; });
            continue;
        }
        const WordScale scale(common.scale - run.cells->scale());
        append(words, run.rows, CellColumn::kEmptyWord, watch, [&](RowId row) {
            const auto word = scale.up(from[row]);
            fits = fits && word.has_value();
            return word.value_or(0);
        });
    }
    if (!fits)
        return std::nullopt;
    return CellColumn::ofWords(common.form, common.scale, std::move(words));
}

/// The codes of one dictionary in another one, which gets a value when it is first met.
class Translation {
  public:
    Translation(const ValueDictionary& from, ValueDictionary& to)
        : from_(from), to_(to), codes_(from.size(), kNew) {
        codes_[0] = 0;
    }
    [[nodiscard]] Code operator()(Code code) {
        if (codes_[code] == kNew)
            codes_[code] = to_.add(from_[code]);
        return codes_[code];
    }

  private:
    static constexpr Code kNew = ~Code{0};

    const ValueDictionary& from_;
    ValueDictionary& to_;
    std::vector<Code> codes_;
};

CellColumn gather_codes(std::span<const CellRun> runs, std::size_t count, WorkWatch& watch) {
    // A dictionary that serves few rows is made of their values alone.
    const ValueDictionary& first = runs.front().cells->dictionary();
    const bool shares = first.size() / 2 <= runs.front().rows.size();
    auto dictionary = shares ? std::make_unique<ValueDictionary>(first) : std::make_unique<ValueDictionary>();
    std::vector<Code> codes;
    codes.reserve(count);
    for (const CellRun& run : runs) {
        const auto from = run.cells->codes();
        if (&run == &runs.front() && shares) {
            append(codes, run.rows, Code{0}, watch, [from](RowId row) { return from[row]; });
            continue;
        }
        Translation translation(run.cells->dictionary(), *dictionary);
        append(codes, run.rows, Code{0}, watch, [&](RowId row) { return translation(from[row]); });
    }
    return CellColumn::ofCodes(std::move(dictionary), std::move(codes));
}

/// Values of any form; a column finds the plainest one for them where the runs had plainer ones.
CellColumn gather_values(std::span<const CellRun> runs, std::size_t count, WorkWatch& watch) {
    const bool plain = std::any_of(runs.begin(), runs.end(), [](const CellRun& run) {
        return run.cells->form() != Form::values && !is_blank(*run.cells);
    });
    std::vector<Value> values;
    values.reserve(count);
    for (const CellRun& run : runs)
        append(values, run.rows, Value(), watch, [&](RowId row) { return run.cells->get(row); });
    if (!plain)
        return CellColumn::ofValues(std::move(values));
    CellColumn out;
    out.grow(count);
    for (std::size_t i = 0; i < count; ++i) {
        watch.turn();
        out.put(static_cast<RowId>(i), values[i]);
    }
    return out;
}

} // namespace

CellColumn gather_cells(std::span<const CellRun> runs, WorkWatch& watch) {
    std::size_t count = 0;
    for (const CellRun& run : runs)
        count += run.rows.size();
    const CommonForm common(runs);
    if (common.form == Form::coded)
        return gather_codes(runs, count, watch);
    if (common.form != Form::values) {
        if (auto words = gather_words(runs, count, common, watch))
            return *std::move(words);
    }
    return gather_values(runs, count, watch);
}

} // namespace core
