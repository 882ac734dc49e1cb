// SPDX-License-Identifier: Apache-2.0
#include "host/terminal/console_chooser.h"

#include "host/terminal/system_terminal.h"
#include "host/terminal/terminal_text.h"

#include <core/exchange/table_view.h>
#include <core/runtime/exception.h>
#include <core/runtime/internal_class.h>
#include <core/runtime/utf8.h>
#include <core/strings/integer_text.h>
#include <core/strings/split.h>
#include <core/tables/value_list.h>
#include <core/tables/value_table.h>

#include <algorithm>
#include <iostream>
#include <optional>
#include <ostream>
#include <string>
#include <utility>

namespace host {

using namespace core;

namespace {

constexpr std::size_t kListed = 50; // of more rows, the first are shown; any number is taken

/// A view whose rows have their numbers in front, from 1, and a mark in front of that
/// of the row to begin with.
TableView numbered(TableView view, std::size_t marked) {
    view.columns.insert(view.columns.begin(), {{}, {u"№"}});
    view.walk = [walk = std::move(view.walk), marked](const TableView::Show& show) {
        std::vector<Value> row;
        std::size_t number = 0;
        walk([&](std::span<const Value> cells, std::size_t level) {
            row.assign({Value(number == marked ? u"→" : u""), Value(number + 1)});
            row.insert(row.end(), cells.begin(), cells.end());
            ++number;
            return show(row, level);
        });
    };
    return view;
}

class ConsoleChooser : public IChooser {
  public:
    using Interfaces = InterfaceList<IChooser>;

    explicit ConsoleChooser(Console& console) : console_(console) {}

    GenericValue chooseRow(const Value& rows, const wstring& title, const Value& initialRow) override {
        const auto table = rows.query<IValueTableBaseRO>();
        if (!table)
            return {};
        std::size_t initial = initialRow.isUndefined() ? table->rowCount() : 0;
        while (initial < table->rowCount() && table->row(initial) != initialRow)
            ++initial;
        const auto number = choose(rows, title, initial);
        return number ? table->row(*number) : GenericValue();
    }

    GenericValue chooseItem(const Value& list, const wstring& title, const Value& initialItem) override {
        const auto items = list.query<IValueList>();
        std::size_t initial = 0;
        while (initial < items->count() && items->item(initial) != initialItem)
            ++initial;
        const auto number = choose(list, title, initial);
        return number ? items->item(*number) : GenericValue();
    }

    bool checkItems(const Value& list, const wstring& title) override {
        const auto items = list.query<IValueList>();
        show(list, title, items->count());
        std::vector<bool> checks;
        const bool answered =
            ask("IDS_HOST_CHECK", items->count(), [&](std::span<const std::size_t> numbers) {
                checks.assign(items->count(), false);
                for (const std::size_t number : numbers) {
                    if (number > 0)
                        checks[number - 1] = true;
                }
                return numbers.size() == 1 || std::ranges::find(numbers, 0U) == numbers.end();
            });
        for (std::size_t i = 0; answered && i < checks.size(); ++i)
            items->setCheck(i, checks[i]);
        return answered;
    }

  private:
    std::optional<std::size_t> choose(const Value& rows, const wstring& title, std::size_t initial) {
        const std::size_t count = show(rows, title, initial);
        std::size_t chosen = 0;
        const bool answered = ask("IDS_HOST_CHOOSE", count, [&chosen](std::span<const std::size_t> numbers) {
            chosen = numbers.front();
            return numbers.size() == 1 && chosen > 0;
        });
        return answered ? std::optional(chosen - 1) : std::nullopt;
    }

    /// Lists the rows under their title and returns how many there are.
    std::size_t show(const Value& rows, const wstring& title, std::size_t initial) {
        if (!title.empty())
            console_.out << terminal_text(title) << '\n';
        const TableView view = numbered(*table_view(rows), initial);
        print_table(console_.out, view, line_width(console_), kListed);
        return view.rows;
    }

    /// Asks until numbers up to `count` are given that `take` takes; false when the answer is nothing.
    template <class Take>
    bool ask(const char* question, std::size_t count, Take take) {
        while (true) {
            console_.out << to_utf8(message_text(question, {string_intto(count)})) << ' ' << std::flush;
            std::string line;
            if (!awaitLine()) {
                console_.out << '\n';
                return false;
            }
            if (!std::getline(console_.in, line) && isTerminal()) {
                console_.in.clear(); // the end of this answer is not the end of the terminal
                console_.out << '\n';
            }
            const auto words = string_tokenize(std::string_view(line), " ,;\t\r");
            if (words.empty())
                return false;
            std::vector<std::size_t> numbers;
            for (const std::string_view word : words) {
                const auto number = string_toint<std::size_t>(word);
                if (!number || *number > count)
                    break;
                numbers.push_back(*number);
            }
            if (numbers.size() == words.size() && take(numbers))
                return true;
            console_.out << to_utf8(message_text("IDS_HOST_CHOOSE_AGAIN")) << '\n';
        }
    }

    [[nodiscard]] bool isTerminal() const { return console_.in.rdbuf() == std::cin.rdbuf(); }

    /// Waits until a line can be read; false when Ctrl-C came instead, which reading would not tell.
    [[nodiscard]] bool awaitLine() const {
        return !isTerminal() || console_.in.rdbuf()->in_avail() > 0 || host::await_line();
    }

    Console& console_;
};

} // namespace

InterfacePtr<IChooser> create_console_chooser(Console& console) {
    return make_object<ConsoleChooser>(console);
}

} // namespace host
