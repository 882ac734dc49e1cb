// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/values.h>

#include <QtCore/QString>
#include <QtCore/QVariant>
#include <benchmark/benchmark.h>
#include <sqlite3.h>

#include <array>
#include <memory>
#include <random>
#include <string>
#include <vector>

/// The rows that the benchmarks of tables work on, and the peers that hold them.
namespace tables {

enum Names { few, many };
inline constexpr std::int64_t kNames = 10'000;
inline constexpr std::size_t kLargest = 1'000'000;

/// A row as each of the three is given it.
struct Record {
    std::string name;
    std::int64_t number;
    std::int64_t cents;
    std::int64_t seconds; // since 1970
    std::array<core::Value, 4> values;
    std::array<QVariant, 4> variants;
};

inline const std::vector<Record>& records(Names names) {
    static const auto make = [](Names names) {
        std::mt19937_64 random(1);
        std::vector<Record> made(kLargest);
        std::vector<std::pair<core::Value, QVariant>> shared(kNames);
        for (Record& record : made) {
            const auto i = static_cast<std::int64_t>(&record - made.data());
            const std::int64_t name = names == few ? static_cast<std::int64_t>(random() % kNames)
                                                   : i * 7'919 % static_cast<std::int64_t>(kLargest);
            record.name = "Item of stock " + std::to_string(name);
            record.number = static_cast<std::int64_t>(random() % 1000);
            record.cents = static_cast<std::int64_t>(random() % 1'000'000'00);
            record.seconds = static_cast<std::int64_t>(1'400'000'000 + random() % 300'000'000);
            const core::Date date(core::Date(1970, 1, 1).ticks() +
                                  static_cast<std::uint64_t>(record.seconds) * 10'000);
            core::Value text(std::u16string(record.name.begin(), record.name.end()));
            QVariant qtText(QString::fromStdString(record.name));
            if (names == few) { // as a program has them that reads names from somewhere else
                auto& known = shared[static_cast<std::size_t>(name)];
                if (known.first.isUndefined())
                    known = {text, qtText};
                text = known.first;
                qtText = known.second;
            }
            record.values = {text, core::Value(record.number),
                             core::Value(core::Numeric::fromScaled(record.cents, 2)), core::Value(date)};
            record.variants = {qtText, QVariant(static_cast<qlonglong>(record.number)),
                               QVariant(static_cast<qlonglong>(record.cents)),
                               QVariant(static_cast<qlonglong>(record.seconds))};
        }
        return made;
    };
    if (names == few) {
        static const std::vector<Record> made = make(few);
        return made;
    }
    static const std::vector<Record> made = make(many);
    return made;
}

// SQLite.

class Database {
  public:
    Database() {
        sqlite3_open(":memory:", &database_);
        run("CREATE TABLE t (name TEXT, number INTEGER, cents INTEGER, seconds INTEGER)");
    }
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;
    ~Database() { sqlite3_close(database_); }

    void run(const char* sql) {
        if (sqlite3_exec(database_, sql, nullptr, nullptr, nullptr) != SQLITE_OK)
            std::abort();
    }
    void append(Names names, std::size_t count) {
        sqlite3_stmt* insert = nullptr;
        run("BEGIN");
        sqlite3_prepare_v2(database_, "INSERT INTO t VALUES (?, ?, ?, ?)", -1, &insert, nullptr);
        for (std::size_t i = 0; i < count; ++i) {
            const Record& record = records(names)[i];
            sqlite3_bind_text(insert, 1, record.name.data(), static_cast<int>(record.name.size()),
                              SQLITE_STATIC);
            sqlite3_bind_int64(insert, 2, record.number);
            sqlite3_bind_int64(insert, 3, record.cents);
            sqlite3_bind_int64(insert, 4, record.seconds);
            sqlite3_step(insert);
            sqlite3_reset(insert);
        }
        sqlite3_finalize(insert);
        run("COMMIT");
    }
    /// A statement to be read again and again.
    class Query {
      public:
        Query(Database& database, const char* sql) {
            if (sqlite3_prepare_v2(database.database_, sql, -1, &statement_, nullptr) != SQLITE_OK)
                std::abort();
        }
        Query(const Query&) = delete;
        Query& operator=(const Query&) = delete;
        ~Query() { sqlite3_finalize(statement_); }
        void bind(std::int64_t number) { sqlite3_bind_int64(statement_, 1, number); }
        void bind(const std::string& text) {
            sqlite3_bind_text(statement_, 1, text.data(), static_cast<int>(text.size()), SQLITE_STATIC);
        }
        /// Reads all rows, the first column of each, and says how many there are.
        std::size_t read() {
            std::size_t rows = 0;
            for (; sqlite3_step(statement_) == SQLITE_ROW; ++rows)
                benchmark::DoNotOptimize(sqlite3_column_int64(statement_, 0));
            sqlite3_reset(statement_);
            return rows;
        }

      private:
        sqlite3_stmt* statement_ = nullptr;
    };

  private:
    sqlite3* database_ = nullptr;
};

inline Database& their_table(Names names, std::size_t count) {
    static std::unique_ptr<Database> kept;
    static std::pair<Names, std::size_t> key;
    if (!kept || key != std::pair(names, count)) {
        kept = std::make_unique<Database>();
        kept->append(names, count);
        key = {names, count};
    }
    return *kept;
}

// Rows of QVariant.

using Variants = std::vector<std::vector<QVariant>>;

inline void append_variants(Variants& rows, Names names, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        const auto& values = records(names)[i].variants;
        rows.emplace_back(values.begin(), values.end());
    }
}
inline const Variants& variant_rows(Names names, std::size_t count) {
    static Variants kept;
    static std::pair<Names, std::size_t> key;
    if (kept.empty() || key != std::pair(names, count)) {
        kept.clear();
        append_variants(kept, names, count);
        key = {names, count};
    }
    return kept;
}

} // namespace tables
