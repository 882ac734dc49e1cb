// SPDX-License-Identifier: Apache-2.0
#include "core/tables/objects/table_cells.h"

#include "core/collections/stored_count.h"
#include "core/runtime/threads/loop_check.h"

#include <core/lists/list_in_stream.h>
#include <core/lists/list_out_stream.h>

#include <bit>

namespace core {
namespace {

using detail::CompactReader;
using detail::CompactWriter;
using Form = CellColumn::Form;

/// How a column of words is packed: a word is `base` + `step` × what stands there. Where a cell is Undefined,
/// 0 stands for it, and all others are one more.
struct Packing {
    std::int64_t base = 0;
    std::int64_t step = 1;
    bool anyEmpty = false;
    std::uint64_t highest = 0;

    Packing() = default;
    Packing(Form form, RowRange rows, std::span<const std::int64_t> words) noexcept {
        std::int64_t lowest = std::numeric_limits<std::int64_t>::max();
        std::int64_t largest = CellColumn::kEmptyWord;
        bool days = form == Form::dates;
        bool seconds = form == Form::dates;
        rows.forEach([&](RowId row) {
            const std::int64_t word = words[row];
            if (word == CellColumn::kEmptyWord) {
                anyEmpty = true;
                return;
            }
            lowest = std::min(lowest, word);
            largest = std::max(largest, word);
            days = days && word % kTicksPerDay == 0;
            seconds = seconds && (days || word % kTicksPerSecond == 0);
        });
        if (largest == CellColumn::kEmptyWord)
            return; // no cell has a word
        base = lowest;
        step = days ? kTicksPerDay : seconds ? kTicksPerSecond : 1;
        highest = packed(largest);
    }

    [[nodiscard]] std::uint64_t packed(std::int64_t word) const noexcept {
        if (word == CellColumn::kEmptyWord)
            return 0;
        const std::uint64_t distance = static_cast<std::uint64_t>(word) - static_cast<std::uint64_t>(base);
        // Divisions by constants are multiplications.
        const std::uint64_t steps = step == kTicksPerDay      ? distance / std::uint64_t{kTicksPerDay}
                                    : step == kTicksPerSecond ? distance / std::uint64_t{kTicksPerSecond}
                                                              : distance;
        return steps + (anyEmpty ? 1 : 0);
    }
    /// The largest number that a word can be unpacked from.
    [[nodiscard]] std::uint64_t limit() const noexcept {
        const std::uint64_t distance = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max()) -
                                       static_cast<std::uint64_t>(base);
        return distance / static_cast<std::uint64_t>(step);
    }
    [[nodiscard]] std::int64_t word(std::uint64_t distance) const noexcept {
        return static_cast<std::int64_t>(static_cast<std::uint64_t>(base) +
                                         distance * static_cast<std::uint64_t>(step));
    }
};

std::size_t bytes_of(std::uint64_t highest) noexcept {
    return std::max<std::size_t>(1, (static_cast<std::size_t>(std::bit_width(highest)) + 7) / 8);
}

/// Writes the numbers that `number` makes of the rows, none of them above `highest`.
template <class Number>
void put_packed(CompactWriter& out, RowRange rows, std::uint64_t highest, Number number) {
    std::size_t position = 0;
    out.putPacked(rows.size(), bytes_of(highest), [&] { return number(rows[position++]); });
}

void put_words(ListOutStream& list, CompactWriter& out, const CellColumn& cells, RowRange rows) {
    const auto words = cells.words();
    const Packing packing(cells.form(), rows, words);
    list.put(cells.scale());
    list.put(packing.base);
    list.put(packing.step);
    list.put(packing.anyEmpty);
    put_packed(out, rows, packing.highest, [&](RowId row) { return packing.packed(words[row]); });
}

/// Values that no cell has any more are left out, so the codes are new ones.
void put_codes(IOutPersistenceStorage* storage, CompactWriter& out, const CellColumn& cells, RowRange rows) {
    const auto codes = cells.codes();
    const ValueDictionary& dictionary = cells.dictionary();
    std::vector<CellColumn::Code> newCodes(dictionary.size());
    std::vector<CellColumn::Code> used;
    rows.forEach([&](RowId row) {
        const CellColumn::Code code = codes[row];
        if (code != 0 && newCodes[code] == 0) {
            used.push_back(code);
            newCodes[code] = static_cast<CellColumn::Code>(used.size());
        }
    });
    storage->listStream().put(static_cast<std::int64_t>(used.size()));
    detail::LoopCheck check;
    for (const CellColumn::Code code : used) {
        check();
        serialize_value(storage, dictionary[code]);
    }
    put_packed(out, rows, used.size(), [&](RowId row) { return std::uint64_t{newCodes[codes[row]]}; });
}

CompactReader::Packed get_packed(CompactReader& in, std::size_t rows) {
    const CompactReader::Packed packed = in.beginPacked();
    if (packed.count != rows)
        in.fail();
    return packed;
}

void require(CompactReader& in, bool holds) {
    if (!holds)
        in.fail();
}

CellColumn get_words(ListInStream& list, CompactReader& in, Form form, std::size_t rows,
                     const TypeDomain& domain) {
    std::uint32_t scale = 0;
    Packing packing;
    list.get(scale);
    list.get(packing.base);
    list.get(packing.step);
    list.get(packing.anyEmpty);
    const bool isDate = form == Form::dates;
    require(in, scale <= (isDate ? 0 : Numeric::kMaxScale) && packing.step > 0 &&
                    packing.base != CellColumn::kEmptyWord && (!isDate || packing.base >= 0));
    const CompactReader::Packed packed = get_packed(in, rows);
    const std::uint64_t limit = packing.limit();
    std::vector<std::int64_t> words;
    words.reserve(in.believed(rows, packed.width));
    bool anyWord = false;
    in.getPacked(packed, [&](std::uint64_t number) {
        if (packing.anyEmpty && number-- == 0) {
            words.push_back(CellColumn::kEmptyWord);
            return;
        }
        if (number > limit)
            in.fail();
        words.push_back(packing.word(number));
        anyWord = true;
    });
    const Value word = isDate ? Value(Date()) : Value(0);
    require(in, (!packing.anyEmpty || domain.canHold(Value())) && (!anyWord || domain.canHold(word)));
    return CellColumn::ofWords(form, scale, std::move(words));
}

CellColumn get_codes(IInPersistenceStorage* storage, CompactReader& in, std::size_t rows,
                     const TypeDomain& domain) {
    auto dictionary = std::make_unique<ValueDictionary>();
    detail::LoopCheck check;
    for (std::int64_t left = get_count(storage->listStream()); left > 0; --left) {
        check();
        const GenericValue value = GenericValue::deserialize(storage);
        const std::size_t code = dictionary->size();
        require(in, CellColumn::isCodable(value) && domain.canHold(value) && dictionary->add(value) == code);
    }
    const CompactReader::Packed packed = get_packed(in, rows);
    std::vector<CellColumn::Code> codes;
    codes.reserve(in.believed(rows, packed.width));
    bool anyEmpty = false;
    in.getPacked(packed, [&](std::uint64_t code) {
        if (code >= dictionary->size())
            in.fail();
        anyEmpty = anyEmpty || code == 0;
        codes.push_back(static_cast<CellColumn::Code>(code));
    });
    require(in, !anyEmpty || domain.canHold(Value()));
    return CellColumn::ofCodes(std::move(dictionary), std::move(codes));
}

CellColumn get_values(IInPersistenceStorage* storage, CompactReader& in, std::size_t rows,
                      const TypeDomain& domain) {
    std::vector<Value> values;
    values.reserve(in.believed(rows, 1));
    detail::LoopCheck check;
    for (std::size_t row = 0; row < rows; ++row) {
        check();
        values.push_back(GenericValue::deserialize(storage));
        require(in, domain.canHold(values.back()));
    }
    return CellColumn::ofValues(std::move(values));
}

void put_column(IOutPersistenceStorage* storage, CompactWriter& out, const CellColumn& cells, RowRange rows) {
    ListOutStream& list = storage->listStream();
    list.putBeginOfList();
    list.put(static_cast<std::uint32_t>(cells.form()));
    switch (cells.form()) {
    case Form::coded:
        put_codes(storage, out, cells, rows);
        break;
    case Form::numbers:
    case Form::dates:
        put_words(list, out, cells, rows);
        break;
    case Form::values:
        rows.forEach([&, check = detail::LoopCheck()](RowId row) mutable {
            check();
            serialize_value(storage, cells.values()[row]);
        });
    }
    list.putEndOfList();
}

CellColumn get_column(IInPersistenceStorage* storage, CompactReader& in, std::size_t rows,
                      const TypeDomain& domain) {
    ListInStream& list = storage->listStream();
    std::uint32_t form = 0;
    list.getBeginOfList();
    list.get(form);
    require(in, form <= static_cast<std::uint32_t>(Form::values));
    CellColumn cells = [&] {
        switch (static_cast<Form>(form)) {
        case Form::coded:
            return get_codes(storage, in, rows, domain);
        case Form::values:
            return get_values(storage, in, rows, domain);
        default:
            return get_words(list, in, static_cast<Form>(form), rows, domain);
        }
    }();
    list.getEndOfList();
    return cells;
}

} // namespace

void put_cells(IOutPersistenceStorage* storage, CompactWriter& out, const TableData& data) {
    const Nesting::Level level(storage->nesting());
    ListOutStream& list = storage->listStream();
    std::vector<RowId> order;
    if (!data.rows().isPlain())
        order = data.rows().rows();
    const RowRange rows = data.rows().isPlain() ? RowRange(data.rows().size()) : RowRange(order);
    list.putBeginOfList();
    list.put(static_cast<std::int64_t>(rows.size()));
    for (std::size_t i = 0; i < data.columnCount(); ++i)
        put_column(storage, out, data.column(i).cells, rows);
    list.putEndOfList();
}

void get_cells(IInPersistenceStorage* storage, CompactReader& in, TableData& data) {
    const Nesting::Level level(storage->nesting());
    ListInStream& list = storage->listStream();
    list.getBeginOfList();
    const std::int64_t count = get_count(list);
    require(in, count <= std::int64_t{kNoRow}); // more rows would have no ids
    std::vector<CellColumn> columns;
    for (std::size_t i = 0; i < data.columnCount(); ++i)
        columns.push_back(
            get_column(storage, in, static_cast<std::size_t>(count), data.column(i).info.domain));
    list.getEndOfList();
    data.setRows(columns, static_cast<std::size_t>(count));
}

} // namespace core
