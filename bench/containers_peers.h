// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/files.h>
#include <core/runtime/utf8.h>
#include <core/storage.h>

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <lmdb.h>
#include <sqlite3.h>
#include <sys/mman.h>
#include <unistd.h>
#include <zip.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <numeric>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

/// The files that the benchmarks of containers work on, and the peers that hold them.
namespace containers {
inline constexpr std::size_t kFiles = 10000;
inline constexpr std::size_t kSize = 1024;

inline std::string name_of(std::size_t i) {
    char text[64];
    std::snprintf(text, sizeof text, "folder/file%06zu.txt", i);
    return text;
}

inline const std::vector<std::string>& names() {
    static const auto all = [] {
        std::vector<std::string> result(100000);
        for (std::size_t i = 0; i < result.size(); ++i)
            result[i] = name_of(i);
        return result;
    }();
    return all;
}
inline const std::vector<core::wstring>& wide_names() {
    static const auto all = [] {
        std::vector<core::wstring> result;
        for (const std::string& name : names())
            result.push_back(core::from_utf8(name));
        return result;
    }();
    return all;
}

inline const std::vector<std::byte>& content() {
    static const auto bytes = [] {
        std::mt19937 random(1);
        std::vector<std::byte> result(kSize);
        for (std::byte& b : result)
            b = static_cast<std::byte>(random());
        return result;
    }();
    return bytes;
}

/// The files in an order that no reading ahead foresees.
inline const std::vector<std::size_t>& shuffled() {
    static const auto order = [] {
        std::vector<std::size_t> result(kFiles);
        std::iota(result.begin(), result.end(), 0);
        std::shuffle(result.begin(), result.end(), std::mt19937(2));
        return result;
    }();
    return order;
}

inline void require(bool ok) {
    if (!ok)
        throw std::runtime_error("a peer failed");
}

class Folder {
  public:
    Folder() : path_((std::filesystem::temp_directory_path() / "bench-XXXXXX").string()) {
        require(::mkdtemp(path_.data()) != nullptr);
    }
    ~Folder() { std::filesystem::remove_all(path_); }
    [[nodiscard]] std::string file() const { return path_ + "/f"; }
    void clear() const {
        for (const auto& entry : std::filesystem::directory_iterator(path_))
            std::filesystem::remove_all(entry);
    }

  private:
    std::string path_;
};

/// A store of named contents: what is measured, once for everybody. Keys count the names.
struct Ours {
    static core::StorageRW open(const std::string& path, bool make) {
        auto file = core::open_disk_file(path, core::OpenMode::create);
        if (make)
            core::StorageRW::create(*file, core::kStorageLayout32);
        return core::StorageRW(std::move(file), core::kStorageLayout32);
    }
    explicit Ours(const std::string& path, bool make) : storage(open(path, make)) {}
    void begin() { storage.begin(); }
    void commit() { storage.commit(); }
    void put(std::size_t i) { storage.put(wide_names()[i], content()); }
    void remove(std::size_t i) { storage.remove(wide_names()[i]); }
    void beginReading() { reading = std::make_unique<core::StorageReading>(storage); }
    std::size_t get(std::size_t i) { return storage.get(wide_names()[i]).size(); }
    void endReading() { reading.reset(); }
    core::StorageRW storage;
    std::unique_ptr<core::StorageReading> reading;
};

struct Lmdb {
    explicit Lmdb(const std::string& path, bool) {
        require(mdb_env_create(&env) == 0);
        require(mdb_env_set_mapsize(env, std::size_t{16} << 30) == 0);
        require(mdb_env_open(env, path.c_str(), MDB_NOSUBDIR, 0600) == 0);
        MDB_txn* first = nullptr;
        require(mdb_txn_begin(env, nullptr, 0, &first) == 0);
        require(mdb_dbi_open(first, nullptr, MDB_CREATE, &dbi) == 0);
        require(mdb_txn_commit(first) == 0);
    }
    ~Lmdb() { mdb_env_close(env); }
    void begin() { require(mdb_txn_begin(env, nullptr, 0, &txn) == 0); }
    void commit() { require(mdb_txn_commit(txn) == 0); }
    static MDB_val key(std::size_t i) { return {names()[i].size(), const_cast<char*>(names()[i].data())}; }
    void put(std::size_t i) {
        MDB_val k = key(i);
        MDB_val v{content().size(), const_cast<std::byte*>(content().data())};
        require(mdb_put(txn, dbi, &k, &v, 0) == 0);
    }
    void remove(std::size_t i) {
        MDB_val k = key(i);
        require(mdb_del(txn, dbi, &k, nullptr) == 0);
    }
    void beginReading() { require(mdb_txn_begin(env, nullptr, MDB_RDONLY, &txn) == 0); }
    std::size_t get(std::size_t i) {
        MDB_val k = key(i);
        MDB_val v{};
        require(mdb_get(txn, dbi, &k, &v) == 0);
        const auto* const from = static_cast<const std::byte*>(v.mv_data);
        const std::vector<std::byte> copy(from, from + v.mv_size); // as everybody hands it out
        benchmark::DoNotOptimize(copy.data());
        return copy.size();
    }
    void endReading() { mdb_txn_abort(txn); }
    MDB_env* env = nullptr;
    MDB_txn* txn = nullptr;
    MDB_dbi dbi = 0;
};

struct Sqlite {
    explicit Sqlite(const std::string& path, bool make) {
        require(sqlite3_open(path.c_str(), &db) == SQLITE_OK);
        sqlite3_busy_timeout(db, 20000); // as long as ours waits for its turn
        if (make)
            run("create table f(name text primary key, data blob) without rowid");
        insert = prepare("insert or replace into f values(?, ?)");
        erase = prepare("delete from f where name = ?");
        select = prepare("select data from f where name = ?");
    }
    ~Sqlite() {
        for (sqlite3_stmt* statement : {insert, erase, select})
            sqlite3_finalize(statement);
        sqlite3_close(db);
    }
    void run(const char* sql) { require(sqlite3_exec(db, sql, nullptr, nullptr, nullptr) == SQLITE_OK); }
    sqlite3_stmt* prepare(const char* sql) {
        sqlite3_stmt* statement = nullptr;
        require(sqlite3_prepare_v2(db, sql, -1, &statement, nullptr) == SQLITE_OK);
        return statement;
    }
    static void bind(sqlite3_stmt* statement, std::size_t i) {
        sqlite3_reset(statement);
        sqlite3_bind_text(statement, 1, names()[i].data(), static_cast<int>(names()[i].size()),
                          SQLITE_STATIC);
    }
    void begin() { run("begin immediate"); }
    void commit() { run("commit"); }
    void put(std::size_t i) {
        bind(insert, i);
        sqlite3_bind_blob(insert, 2, content().data(), kSize, SQLITE_STATIC);
        require(sqlite3_step(insert) == SQLITE_DONE);
    }
    void remove(std::size_t i) {
        bind(erase, i);
        require(sqlite3_step(erase) == SQLITE_DONE);
    }
    void beginReading() { run("begin"); }
    std::size_t get(std::size_t i) {
        bind(select, i);
        require(sqlite3_step(select) == SQLITE_ROW);
        const auto* const from = static_cast<const std::byte*>(sqlite3_column_blob(select, 0));
        const std::vector<std::byte> copy(from, from + sqlite3_column_bytes(select, 0));
        benchmark::DoNotOptimize(copy.data());
        return copy.size();
    }
    void endReading() {
        sqlite3_reset(select);
        run("commit");
    }
    sqlite3* db = nullptr;
    sqlite3_stmt* insert = nullptr;
    sqlite3_stmt* erase = nullptr;
    sqlite3_stmt* select = nullptr;
};

struct Zip {
    explicit Zip(const std::string& path, bool make) : path_(path) {
        if (!make)
            beginReading();
    }
    ~Zip() {
        if (zip != nullptr)
            zip_discard(zip);
    }
    void open(int flags) {
        int error = 0;
        zip = zip_open(path_.c_str(), flags, &error);
        require(zip != nullptr);
    }
    void begin() {
        endReading();
        open(ZIP_CREATE);
    }
    void commit() { // makes nothing durable by itself
        require(zip_close(std::exchange(zip, nullptr)) == 0);
        const int file = ::open(path_.c_str(), O_RDONLY);
        require(file >= 0 && ::fdatasync(file) == 0);
        ::close(file);
    }
    void put(std::size_t i) {
        zip_source_t* const source = zip_source_buffer(zip, content().data(), content().size(), 0);
        const zip_int64_t index = zip_file_add(zip, names()[i].c_str(), source, ZIP_FL_OVERWRITE);
        require(index >= 0);
        zip_set_file_compression(zip, static_cast<zip_uint64_t>(index), ZIP_CM_STORE, 0);
    }
    void remove(std::size_t i) {
        require(zip_delete(zip, static_cast<zip_uint64_t>(zip_name_locate(zip, names()[i].c_str(), 0))) == 0);
    }
    void beginReading() {
        if (zip == nullptr)
            open(ZIP_RDONLY);
    }
    std::size_t get(std::size_t i) {
        zip_file_t* const file = zip_fopen(zip, names()[i].c_str(), 0);
        std::vector<std::byte> copy(kSize);
        const zip_int64_t size = zip_fread(file, copy.data(), copy.size());
        zip_fclose(file);
        return static_cast<std::size_t>(size);
    }
    void endReading() {
        if (zip != nullptr)
            zip_discard(std::exchange(zip, nullptr));
    }
    std::string path_;
    zip_t* zip = nullptr;
};

} // namespace containers
