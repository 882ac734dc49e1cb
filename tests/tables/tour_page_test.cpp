// SPDX-License-Identifier: Apache-2.0
// What docs/tour.md shows: each phrase of SQL in SQLite, and ours beside it, give the same rows.
#include "tests/support/folder_test.h"
#include "tests/support/sqlite_database.h"

#include <core/context/iteration.h>
#include <core/runtime/utf8.h>
#include <core/script.h>
#include <core/strings/split.h>
#include <core/tables.h>
#include <host/host_process.h>

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using namespace core;

struct Phrase {
    std::string sql;
    std::string ours;
    bool changes; ///< whether ours changes the sales
};

class TourPage : public host::FolderTest {
  protected:
    TourPage() : page_(host::text_of(std::filesystem::path(CORE_SOURCE_DIR) / "docs" / "tour.md")) {}

    /// The text of the first block that begins with a line.
    [[nodiscard]] std::string block(const std::string& line) const {
        const std::size_t begin = page_.find("\n\n```" + line + "\n") + line.size() + 6;
        return page_.substr(begin, page_.find("```", begin) - begin);
    }
    /// The first and the last code of each row of a table.
    [[nodiscard]] std::vector<Phrase> phrases() const {
        std::vector<Phrase> all;
        for (std::size_t at = page_.find("\n| `"); at != std::string::npos;
             at = page_.find("\n| `", at + 1)) {
            const std::string row = page_.substr(at + 1, page_.find('\n', at + 1) - at - 1);
            const std::size_t sql = row.find('`') + 1;
            const std::size_t end = row.rfind('`');
            const std::size_t ours = row.rfind('`', end - 1) + 1;
            all.push_back({row.substr(sql, row.find('`', sql) - sql), row.substr(ours, end - ours),
                           row.ends_with("* |")});
        }
        return all;
    }
    static std::string shown(const Value& cell) {
        return cell.isUndefined() ? "NULL" : to_utf8(cell.presentation());
    }
    static sqlite::Rows rows_of(const Value& result) {
        const auto table = result.query<IValueTable>();
        if (!table)
            return {{shown(result)}};
        sqlite::Rows rows(table->rowCount());
        for (std::size_t row = 0; row < rows.size(); ++row) {
            for (std::size_t i = 0; i < table->columnCount(); ++i)
                rows[row].push_back(shown(table->get(row, table->column(i).id)));
        }
        return rows;
    }
    /// The same table in SQLite: numbers as numbers, all else as text.
    static void copy_table(sqlite::Database& database, const std::string& name, IValueTable& table) {
        std::string columns;
        for (std::size_t i = 0; i < table.columnCount(); ++i)
            columns += (i != 0 ? "," : "") + to_utf8(table.column(i).name);
        database.run("CREATE TABLE " + name + " (" + columns + ")");
        for (std::size_t row = 0; row < table.rowCount(); ++row) {
            std::string cells;
            for (std::size_t i = 0; i < table.columnCount(); ++i) {
                const Value cell = table.get(row, table.column(i).id);
                const bool plain = cell.isUndefined() || cell.kind() == ValueKind::number;
                cells += (i != 0 ? "," : "") + (plain ? shown(cell) : "'" + shown(cell) + "'");
            }
            database.run("INSERT INTO " + name + " VALUES (" + cells + ")");
        }
    }
    const host::HostProcess process_;
    const std::string page_;
};

TEST_F(TourPage, BothPhrasesGiveTheSame) {
    for (const char* const name : {"sales.csv", "products.csv"})
        static_cast<void>(file(name, block(std::string("csv ") + name)));
    const auto before = std::filesystem::current_path();
    std::filesystem::current_path(folder());
    int count = 0;
    for (const Phrase& phrase : phrases()) {
        core::script::Engine engine;
        engine.run(from_utf8(block("")));
        sqlite::Database database;
        copy_table(database, "sales", *engine.run(u"Return Sales").query<IValueTable>());
        copy_table(database, "products", *engine.run(u"Return Products").query<IValueTable>());
        const bool asks = phrase.sql.starts_with("SELECT");
        if (!asks)
            database.run(phrase.sql);
        sqlite::Rows theirs = database.query(asks ? phrase.sql : "SELECT * FROM sales");
        const std::string ours = phrase.changes ? phrase.ours + "; Return Sales" : "Return " + phrase.ours;
        sqlite::Rows rows = rows_of(engine.run(from_utf8(ours)));
        const bool ordered = phrase.sql.find(" ORDER BY ") != std::string::npos &&
                             phrase.sql.find(" OVER ") == std::string::npos;
        if (!ordered) {
            std::sort(rows.begin(), rows.end());
            std::sort(theirs.begin(), theirs.end());
        }
        EXPECT_EQ(rows, theirs) << phrase.ours;
        ++count;
    }
    std::filesystem::current_path(before);
    EXPECT_GE(count, 20);
}

} // namespace
