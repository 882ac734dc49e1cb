// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string_view>

namespace core {

/// Sorts the rows of a page by the column whose title is clicked: up, down, and as they were. Numbers, dates
/// and Booleans have their number in data-n and come before texts; empty cells come last in both directions.
inline constexpr std::string_view kPageScript = R"("use strict";
const table = document.querySelector("table"), heads = [...table.tHead.rows[0].cells];
const body = table.tBodies[0], unsorted = [...body.rows];
const collator = new Intl.Collator(document.documentElement.lang, { numeric: true });
const next = { none: "ascending", ascending: "descending", descending: "none" };
function keyOf(cell) {
    if (cell.dataset.n !== undefined)
        return { rank: 0, number: Number(cell.dataset.n) };
    const text = cell.textContent;
    return { rank: text === "" && !cell.firstElementChild ? 2 : 1, text };
}
function sort(column, direction) {
    const sign = direction === "descending" ? -1 : 1;
    const rows = unsorted.map((row) => ({ row, key: keyOf(row.cells[column]) }));
    if (direction !== "none")
        rows.sort(({ key: a }, { key: b }) => {
            if (a.rank !== b.rank)
                return a.rank === 2 || b.rank === 2 ? a.rank - b.rank : sign * (a.rank - b.rank);
            return a.rank === 2 ? 0 : sign * (a.rank === 0 ? a.number - b.number : collator.compare(a.text, b.text));
        });
    body.replaceChildren(...rows.map(({ row }) => row));
}
heads.forEach((head, column) => head.querySelector("button").addEventListener("click", () => {
    const direction = next[head.getAttribute("aria-sort")];
    heads.forEach((other) => other.setAttribute("aria-sort", other === head ? direction : "none"));
    sort(column, direction);
}));
)";

} // namespace core
