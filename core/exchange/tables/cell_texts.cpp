// SPDX-License-Identifier: Apache-2.0
#include "core/exchange/tables/cell_texts.h"

#include "core/exchange/cells/cell_writer.h"

#include <core/exchange/json.h>
#include <core/locales/date_format.h>
#include <core/runtime/utf8.h>
#include <core/values/errors.h>

namespace core {

CellTexts::CellTexts(const TableView& view, std::size_t most) : view_(view), found_(view.columns.size()) {
    if (most == 0)
        return;
    view.walk([&](std::span<const Value> cells, std::size_t) {
        for (std::size_t i = 0; i < cells.size(); ++i) {
            Found& found = found_[i];
            const ValueKind kind = cells[i].kind();
            if (kind == ValueKind::number)
                found.numbers = true;
            else if (kind != ValueKind::undefined)
                found.others = true;
            if (kind == ValueKind::date && !(*cells[i].asDate() == cells[i].asDate()->begOfDay()))
                found.times = true;
        }
        return --most > 0;
    });
}

wstring CellTexts::text(std::size_t column, const Value& cell) const {
    // A table in a cell would be all there is to see.
    if (has_elements(cell) && !cell.query<IValueTableBaseRO>()) {
        try {
            return from_utf8(to_json(cell));
        } catch (const ContextException&) { // a collection that holds itself has its presentation alone
        }
    }
    const TableView::Column& of = view_.columns[column];
    const bool day = cell.kind() == ValueKind::date && !found_[column].times && of.format.empty() &&
                     of.domain.dateQualifiers().fractions() != DateFractions::time;
    return day ? default_date_format().format(*cell.asDate(), DatePattern::date) : of.text(cell);
}

} // namespace core
