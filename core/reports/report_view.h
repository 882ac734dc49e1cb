// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/exchange/table_view.h>
#include <core/reports/report.h>

#include <cstdint>
#include <vector>

namespace core {

/// What columns and rules set for a cell, in the words of their styles.
struct CellLook {
    std::optional<Color> text{};
    std::optional<Color> back{};
    Font font{};

    friend bool operator==(const CellLook&, const CellLook&) = default;
};

/// What a style sets for cells.
[[nodiscard]] CellLook look_of(const Style& style);

/// Black or white, whichever has more contrast on a background.
[[nodiscard]] Rgba strongest_on(Rgba background) noexcept;

/// A report as it is shown, and the look of each of its cells.
class ReportView {
  public:
    /// Throws as core/reports/report.h says.
    explicit ReportView(const Report& report);

    [[nodiscard]] const TableView& view() const noexcept { return view_; }
    [[nodiscard]] TableView& view() noexcept { return view_; }
    [[nodiscard]] bool isTree() const noexcept { return isTree_; }
    /// The style of all that no column and no rule sets.
    [[nodiscard]] const Style& style() const noexcept { return style_; }
    /// The different looks; the first is that of cells for which nothing is set.
    [[nodiscard]] const std::vector<CellLook>& looks() const noexcept { return looks_; }
    /// The index in looks() of the look of a cell, by its row and column.
    [[nodiscard]] std::size_t look(std::size_t row, std::size_t column) const noexcept {
        return looksOfRules_[rulesOfRow_.empty() ? 0 : rulesOfRow_[row]][column];
    }

  private:
    using Rules = std::vector<std::size_t>;

    [[nodiscard]] std::size_t columnOf(wstring_view name) const;
    void setColumns(const ReportStyle& style);
    void setTotals(const ReportStyle& style, IValueTableBaseRO& rows);
    /// The different sets of rules that rows pass, and which set each row passes.
    [[nodiscard]] std::vector<Rules> findRules(const ReportStyle& style, const IValueTableBaseRO& rows);
    void makeLooks(const ReportStyle& style, const std::vector<Rules>& sets);

    TableView view_;
    std::vector<wstring> names_; // of the columns, as styles say them
    bool isTree_;
    Style style_;
    std::vector<CellLook> looks_{1};
    std::vector<std::vector<std::uint32_t>> looksOfRules_; // by set of rules and column
    std::vector<std::uint32_t> rulesOfRow_;                // the set; empty where no row passes a rule
};

} // namespace core
