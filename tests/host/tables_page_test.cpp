// SPDX-License-Identifier: Apache-2.0
// What docs/tables.md shows works as the page says: each script behind the first one of the page.
#include "tests/host/program_fixture.h"
#include "tests/script/script_fixture.h"

#include <core/script.h>
#include <core/tables.h>

#include <regex>

std::size_t keep_year(core::IValueTable& sales, int year); // of docs/tables.md

namespace host {
namespace {

class TablesPageTest : public FolderTest {};

std::string page_text() {
    return text_of(std::filesystem::path(CORE_SOURCE_DIR) / "docs" / "tables.md");
}

TEST_F(TablesPageTest, ScriptsPrintWhatThePageSays) {
    const std::string page = page_text();
    const std::regex blocks("```\n([^`]*)```\n\n```text\n([^`]*)```");
    std::string first;
    std::size_t count = 0;
    for (std::sregex_iterator block(page.begin(), page.end(), blocks), end; block != end; ++block, ++count) {
        const HostProcess process;
        core::script::Session session;
        if (count == 0)
            first = (*block)[1];
        else
            session.run(first);
        std::string printed = session.run((*block)[1].str()) + "\n";
        std::erase(printed, '\r'); // the line ends of CSV
        EXPECT_EQ(printed, (*block)[2].str()) << (*block)[1];
    }
    EXPECT_GE(count, 5U);
}

TEST_F(TablesPageTest, QueriesTakeConditions) {
    const std::string sales =
        file("sales.csv", "Region,Price,Quantity\nNorth,1.20,10\nSouth,3,4\nEast,2.5,1\n");
    const auto query = [&](const char* steps) {
        return corehost({"query", "--mode", "csv", sales, steps}).out;
    };
    const std::string best = "Region,Price,Quantity\r\nSouth,3,4\r\nNorth,1.2,10\r\n";
    EXPECT_EQ(query("Where(Price * Quantity > 10 And Region In (\"North\", \"South\")) | Sort(Price Desc)"),
              best);
    EXPECT_EQ(query("Где(\"Price * Quantity > 10\") | Сортировать(\"Price Убыв\")"), best);
    EXPECT_EQ(query("Filter(Price * Quantity > 10) | Sort(Price * -1)"), best);
    EXPECT_EQ(query("Where(\"Region\", \"East\") | Count()"), "1\n");
    const Answer failed = corehost({"query", sales, "Where(Pric > 1)"});
    EXPECT_EQ(failed.code, ExitCode::malformed);
    EXPECT_NE(failed.err.find("Did you mean “Price”?"), std::string::npos) << failed.err;
}

TEST_F(TablesPageTest, TheProgramFiltersAndSorts) {
    const HostProcess process;
    const auto table = core::create_value_table();
    for (const char16_t* name : {u"Day", u"Price", u"Quantity"})
        table->addColumn(name);
    for (const int year : {2023, 2024, 2024, 2024}) {
        const auto row = static_cast<int>(table->rowCount());
        const core::Value cells[] = {core::Date(year, 1, 1), row == 3 ? 0 : row, 5};
        table->appendRow(cells);
    }
    EXPECT_EQ(keep_year(*table, 2024), 2U);
    EXPECT_EQ(table->get(0, table->findColumn(u"Sum")), core::GenericValue(10));
}

} // namespace
} // namespace host
