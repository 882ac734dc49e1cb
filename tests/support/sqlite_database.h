// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <sqlite3.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

/// A database in memory: an independent model of what tables answer.
namespace sqlite {

/// Rows of cells as text; NULL is "NULL".
using Rows = std::vector<std::vector<std::string>>;

class Database {
  public:
    Database() {
        sqlite3* opened = nullptr;
        const int code = sqlite3_open(":memory:", &opened);
        database_.reset(opened);
        check(code);
    }

    void run(const std::string& sql) {
        check(sqlite3_exec(database_.get(), sql.c_str(), nullptr, nullptr, nullptr));
    }
    [[nodiscard]] Rows query(const std::string& sql) {
        sqlite3_stmt* prepared = nullptr;
        check(sqlite3_prepare_v2(database_.get(), sql.c_str(), -1, &prepared, nullptr));
        const std::unique_ptr<sqlite3_stmt, decltype(&sqlite3_finalize)> statement(prepared,
                                                                                   sqlite3_finalize);
        Rows rows;
        int code = SQLITE_DONE;
        while ((code = sqlite3_step(prepared)) == SQLITE_ROW) {
            auto& row = rows.emplace_back();
            for (int i = 0; i < sqlite3_column_count(prepared); ++i) {
                const auto* const text = sqlite3_column_text(prepared, i);
                row.emplace_back(text != nullptr ? reinterpret_cast<const char*>(text) : "NULL");
            }
        }
        check(code);
        return rows;
    }

  private:
    void check(int code) const {
        if (code != SQLITE_OK && code != SQLITE_DONE)
            throw std::runtime_error(sqlite3_errmsg(database_.get()));
    }

    std::unique_ptr<sqlite3, decltype(&sqlite3_close)> database_{nullptr, sqlite3_close};
};

} // namespace sqlite
