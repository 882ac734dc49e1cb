// SPDX-License-Identifier: Apache-2.0
#include "core/tables/query/match_keys.h"

#include <core/tables/errors.h>
#include <core/values/errors.h>

#include <bit>

namespace core {
namespace {

using Kinds = std::uint32_t; // a bit for each ValueKind

constexpr Kinds kBlank = Kinds{1} << static_cast<unsigned>(ValueKind::undefined) |
                         Kinds{1} << static_cast<unsigned>(ValueKind::null);

Kinds bit_of(const Value& value) noexcept {
    return (Kinds{1} << static_cast<unsigned>(value.kind())) & ~kBlank;
}

/// The kinds of the filled cells of a column. A dictionary may have values that no cell has any more.
Kinds kinds_of(RowRange rows, const CellColumn& cells) {
    Kinds kinds = 0;
    switch (cells.form()) {
    case CellColumn::Form::coded: {
        std::vector<Kinds> byCode;
        for (const Value& value : cells.dictionary().values())
            byCode.push_back(bit_of(value));
        rows.forEach([&, codes = cells.codes()](RowId row) { kinds |= byCode[codes[row]]; });
        break;
    }
    case CellColumn::Form::values:
        rows.forEach([&, values = cells.values()](RowId row) { kinds |= bit_of(values[row]); });
        break;
    default: {
        const auto words = cells.words();
        for (std::size_t i = 0; i < rows.size() && kinds == 0; ++i)
            kinds = words[rows[i]] != CellColumn::kEmptyWord ? bit_of(cells.get(rows[i])) : 0;
    }
    }
    return kinds;
}

/// The type of the first cell that has one of some kinds; empty where none has.
wstring type_of(RowRange rows, const CellColumn& cells, Kinds kinds) {
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (const Value value = cells.get(rows[i]); (bit_of(value) & kinds) != 0)
            return value.type().presentation();
    }
    return {};
}

Kinds one_of(Kinds kinds) noexcept {
    return kinds & (~kinds + 1);
}

} // namespace

void require_shared_kinds(RowRange left, RowRange right, const ColumnPair& pair, SharedKinds shared) {
    const Kinds leftKinds = kinds_of(left, pair.left->cells);
    const Kinds rightKinds = kinds_of(right, pair.right->cells);
    if (std::popcount(leftKinds | rightKinds) < 2 ||
        (shared == SharedKinds::some && (leftKinds == 0 || rightKinds == 0 || (leftKinds & rightKinds) != 0)))
        return;
    const auto type = [&](Kinds kind) {
        const wstring found = type_of(left, pair.left->cells, kind);
        return !found.empty() ? found : type_of(right, pair.right->cells, kind);
    };
    const Kinds first = one_of(leftKinds != 0 ? leftKinds : rightKinds);
    const Kinds others = (rightKinds & ~first) != 0 ? rightKinds : leftKinds;
    throw_error<ContextException>(messages::kNeverEqual, {pair.left->info.name, pair.right->info.name,
                                                          type(first), type(one_of(others & ~first))});
}

} // namespace core
