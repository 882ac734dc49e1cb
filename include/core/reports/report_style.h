// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/context/native_value.h>
#include <core/exchange/table_text.h>
#include <core/presentation/style.h>
#include <core/tables/filter.h>

#include <optional>
#include <vector>

/// How the report of a table looks: its title, the formats, looks and totals of its columns, and rules that
/// give the rows that pass a filter a look of their own. Scripts know it as "ReportStyle".
///
///     ReportStyle style;
///     style.column(u"Price").format = u"fraction=2";
///     style.rules.push_back({u"Price < 0", red});
///     save_html("report.html", sales, style);
namespace core {

class IInPersistenceStorage;
class IOutPersistenceStorage;
class Enumeration;

/// The type id of "ReportStyle".
inline constexpr GUID kReportStyleType = "021462a9-f611-417b-91d9-00e76436313e"_guid;

/// Returns the script enumeration of the alignments, borrowed; it lives as long as the library.
[[nodiscard]] CORE_API Enumeration* script_enumeration(ColumnAlignment) noexcept;

/// What the report says of a column of the table.
struct ColumnStyle {
    wstring name;                                           ///< of the column, in any case
    wstring title{};                                        ///< above it; empty for the table's own title
    wstring format{};                                       ///< of its cells, as format_value() takes it
    ColumnAlignment alignment = ColumnAlignment::automatic; ///< of its cells and its title
    Style style{};   ///< its TextColor, BackColor and TextFont are those of the cells, where it sets them
    wstring total{}; ///< an expression over all rows, as total_rows() takes it: "Sum(Price)"; empty for none

    /// Says whether all parts are equal.
    friend bool operator==(const ColumnStyle&, const ColumnStyle&) = default;
};

/// The look of the rows that pass a filter.
struct ReportRule {
    Filter condition;               ///< which rows are meant
    Style style;                    ///< as ColumnStyle::style
    std::vector<wstring> columns{}; ///< whose cells have the look; none for the whole row
    wstring title{}; ///< what the look means, which a page says below the table; empty for nothing

    /// Says whether all parts are equal.
    friend bool operator==(const ReportRule&, const ReportRule&) = default;
};

/// The style of a report. What several rules set for a cell, the last one decides; rules come before columns.
/// A plain value; safe to read on any thread.
struct CORE_API ReportStyle {
    wstring title{};                    ///< above the table; empty for none
    std::optional<Style> style{};       ///< of title, header, cells and totals; none for that of the process
    std::vector<ColumnStyle> columns{}; ///< in any order, each name once
    std::vector<ReportRule> rules{};    ///< later ones win

    /// Returns what is said of a column, to be changed: valid until another column is added. A column that
    /// nothing was said of is added. Throws ContextException ("IDS_VT_COLUMNCODE_ERROR") for a text that is
    /// not a name, and std::bad_alloc.
    ColumnStyle& column(wstring_view name);
    /// Returns what is said of a column, borrowed until the style changes; null where nothing is.
    [[nodiscard]] const ColumnStyle* find(wstring_view name) const noexcept;

    /// Writes the style as one list. Throws ContextException for a value in a filter that cannot be written.
    void serialize(IOutPersistenceStorage* storage) const;
    /// Reads what serialize() wrote. Throws ListStreamException for anything else.
    [[nodiscard]] static ReportStyle deserialize(IInPersistenceStorage* storage);

    /// Says whether both say the same; the order of columns does not count.
    friend CORE_API bool operator==(const ReportStyle& a, const ReportStyle& b) noexcept;
    /// Returns a hash; equal styles have equal ones.
    [[nodiscard]] std::int32_t hash() const noexcept;
};

/// A ReportStyle.
template <>
struct NativeValue<ReportStyle> {
    /// Returns a copy of the content; refuses the type of any other value.
    static CORE_API ReportStyle from(const Value& value, ValueReceiver receiver);
    /// Returns a new object with that content.
    static CORE_API Value to(const ReportStyle& style);
    /// Returns the id of ReportStyle.
    static const GUID* type() noexcept { return &kReportStyleType; }
};

} // namespace core
