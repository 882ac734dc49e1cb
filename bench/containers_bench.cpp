// SPDX-License-Identifier: Apache-2.0
// Containers beside LMDB, SQLite, libzip and a plain file: thousands of small files and a large one.
// Everybody makes every commit durable, as he does it when nothing else is said (libzip, which does not, by a
// flush behind it). Files lie in the temporary folder; what TMPDIR=/dev/shm shows is the work without the
// disk.
#include <core/files.h>
#include <core/runtime/utf8.h>
#include <core/storage.h>

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <lmdb.h>
#include <sqlite3.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>
#include <zip.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <new>
#include <numeric>
#include <random>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

constexpr std::size_t kFiles = 10000;
constexpr std::size_t kSize = 1024;

std::string name_of(std::size_t i) {
    char text[64];
    std::snprintf(text, sizeof text, "folder/file%06zu.txt", i);
    return text;
}

const std::vector<std::string>& names() {
    static const auto all = [] {
        std::vector<std::string> result(100000);
        for (std::size_t i = 0; i < result.size(); ++i)
            result[i] = name_of(i);
        return result;
    }();
    return all;
}
const std::vector<core::wstring>& wide_names() {
    static const auto all = [] {
        std::vector<core::wstring> result;
        for (const std::string& name : names())
            result.push_back(core::from_utf8(name));
        return result;
    }();
    return all;
}

const std::vector<std::byte>& content() {
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
const std::vector<std::size_t>& shuffled() {
    static const auto order = [] {
        std::vector<std::size_t> result(kFiles);
        std::iota(result.begin(), result.end(), 0);
        std::shuffle(result.begin(), result.end(), std::mt19937(2));
        return result;
    }();
    return order;
}

void require(bool ok) {
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
        require(mdb_env_set_mapsize(env, std::size_t{1} << 30) == 0);
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

template <class Store>
void fill(Store& store, std::size_t count) {
    store.begin();
    for (std::size_t i = 0; i < count; ++i)
        store.put(i);
    store.commit();
}

void per_file(benchmark::State& state, std::size_t count) {
    state.counters["each"] =
        benchmark::Counter(static_cast<double>(count),
                           benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

template <class Store>
void create(benchmark::State& state) {
    const Folder folder;
    names(), wide_names(), content();
    for (auto _ : state) {
        state.PauseTiming();
        folder.clear();
        auto store = std::make_unique<Store>(folder.file(), true);
        state.ResumeTiming();
        fill(*store, kFiles);
        state.PauseTiming();
        store.reset();
        state.ResumeTiming();
    }
    per_file(state, kFiles);
}

template <class Store>
void read_at_random(benchmark::State& state) {
    const Folder folder;
    Store store(folder.file(), true);
    fill(store, kFiles);
    for (auto _ : state) {
        store.beginReading();
        for (const std::size_t i : shuffled())
            require(store.get(i) == kSize);
        store.endReading();
    }
    per_file(state, kFiles);
}

template <class Store>
void delete_and_add(benchmark::State& state) {
    const Folder folder;
    Store store(folder.file(), true);
    fill(store, kFiles);
    for (auto _ : state) {
        store.begin();
        for (std::size_t i = 0; i < kFiles / 2; ++i)
            store.remove(shuffled()[i]);
        store.commit();
        store.begin();
        for (std::size_t i = 0; i < kFiles / 2; ++i)
            store.put(shuffled()[i]);
        store.commit();
    }
    per_file(state, kFiles / 2);
}

template <class Store>
void reopen(benchmark::State& state) {
    const Folder folder;
    {
        Store store(folder.file(), true);
        fill(store, static_cast<std::size_t>(state.range(0)));
    }
    for (auto _ : state) {
        Store store(folder.file(), false);
        store.beginReading();
        require(store.get(static_cast<std::size_t>(state.range(0)) / 2) == kSize);
        store.endReading();
    }
}

#define STORE_BENCHMARKS(Store)                                                                              \
    BENCHMARK_TEMPLATE(create, Store)->Unit(benchmark::kMillisecond)->UseRealTime();                         \
    BENCHMARK_TEMPLATE(read_at_random, Store)->Unit(benchmark::kMillisecond)->UseRealTime();                 \
    BENCHMARK_TEMPLATE(delete_and_add, Store)->Unit(benchmark::kMillisecond)->UseRealTime();                 \
    BENCHMARK_TEMPLATE(reopen, Store)                                                                        \
        ->Arg(1000)                                                                                          \
        ->Arg(10000)                                                                                         \
        ->Arg(100000)                                                                                        \
        ->Unit(benchmark::kMicrosecond)                                                                      \
        ->UseRealTime()

STORE_BENCHMARKS(Ours);
STORE_BENCHMARKS(Lmdb);
STORE_BENCHMARKS(Sqlite);
STORE_BENCHMARKS(Zip);

template <class Store>
void commit_one(Store& store, std::size_t i) {
    store.begin();
    store.put(i);
    store.commit();
}

// One file replaced, in a store of more and more of them.
template <class Store>
void commit_among(benchmark::State& state) {
    const Folder folder;
    Store store(folder.file(), true);
    const auto count = static_cast<std::size_t>(state.range(0));
    fill(store, count);
    std::mt19937 random(3);
    for (auto _ : state)
        commit_one(store, random() % count);
}
BENCHMARK_TEMPLATE(commit_among, Ours)->Arg(1000)->Arg(10000)->Arg(100000)->UseRealTime();
BENCHMARK_TEMPLATE(commit_among, Lmdb)->Arg(1000)->Arg(10000)->Arg(100000)->UseRealTime();
BENCHMARK_TEMPLATE(commit_among, Sqlite)->Arg(1000)->Arg(10000)->Arg(100000)->UseRealTime();

void reopen_a_million(benchmark::State& state) {
    constexpr std::size_t kMillion = 1000000;
    const Folder folder;
    {
        core::StorageRW storage = Ours::open(folder.file(), true);
        for (std::size_t i = 0; i < kMillion;) {
            core::StorageTransaction transaction(storage);
            do
                storage.put(core::from_utf8(name_of(i)), std::span(content()).first(16));
            while (++i % 100000 != 0);
            transaction.commit();
        }
    }
    for (auto _ : state)
        require(Ours::open(folder.file(), false).get(core::from_utf8(name_of(kMillion / 2))).size() == 16);
}
BENCHMARK(reopen_a_million)->Unit(benchmark::kMicrosecond)->UseRealTime();

// Two processes that take turns, each with one small file a commit: how long a commit takes the one, and how
// many the other gets done meanwhile. libzip is not for several.

struct Other {
    std::atomic<bool> stop;
    std::atomic<std::uint64_t> commits;
};

template <class Store>
void take_turns(benchmark::State& state) {
    const Folder folder;
    names(), wide_names(), content();
    {
        Store store(folder.file(), true);
        fill(store, 1000);
    }
    void* const memory =
        ::mmap(nullptr, sizeof(Other), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    require(memory != MAP_FAILED);
    Other& other = *new (memory) Other{};
    const ::pid_t child = ::fork();
    if (child == 0) {
        Store store(folder.file(), false);
        for (; !other.stop; ++other.commits)
            commit_one(store, other.commits % 500);
        ::_exit(0);
    }
    {
        Store store(folder.file(), false);
        while (other.commits == 0)
            ::usleep(1000);
        const std::uint64_t before = other.commits;
        std::size_t i = 0;
        for (auto _ : state)
            commit_one(store, 500 + i++ % 500);
        state.counters["other"] =
            static_cast<double>(other.commits - before) / static_cast<double>(state.iterations());
    }
    other.stop = true;
    int status = 0;
    require(::waitpid(child, &status, 0) == child && status == 0);
    ::munmap(memory, sizeof(Other));
}

BENCHMARK_TEMPLATE(take_turns, Ours)->Unit(benchmark::kMicrosecond)->UseRealTime();
BENCHMARK_TEMPLATE(take_turns, Lmdb)->Unit(benchmark::kMicrosecond)->UseRealTime();
BENCHMARK_TEMPLATE(take_turns, Sqlite)->Unit(benchmark::kMicrosecond)->UseRealTime();

// One large file: written a mebibyte at a time, read as a whole into new memory.

constexpr std::size_t kLarge = std::size_t{64} << 20;
constexpr std::size_t kPiece = std::size_t{1} << 20;

const std::vector<std::byte>& piece() {
    static const std::vector<std::byte> bytes(kPiece, std::byte{0x5A});
    return bytes;
}

void write_large_ours(benchmark::State& state) {
    const Folder folder;
    for (auto _ : state) {
        state.PauseTiming();
        folder.clear();
        auto store = std::make_unique<Ours>(folder.file(), true);
        state.ResumeTiming();
        const auto file = store->storage.open(u"large", core::OpenMode::create);
        for (std::size_t done = 0; done < kLarge; done += kPiece)
            core::write_all(*file, piece());
        file->close();
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(kLarge));
}

void write_large_plain(benchmark::State& state) {
    const Folder folder;
    for (auto _ : state) {
        state.PauseTiming();
        folder.clear();
        const int file = ::open(folder.file().c_str(), O_RDWR | O_CREAT, 0600);
        state.ResumeTiming();
        for (std::size_t done = 0; done < kLarge; done += kPiece)
            require(::write(file, piece().data(), kPiece) == static_cast<::ssize_t>(kPiece));
        require(::fdatasync(file) == 0);
        ::close(file);
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(kLarge));
}

void read_large_ours(benchmark::State& state) {
    const Folder folder;
    Ours store(folder.file(), true);
    const auto out = store.storage.open(u"large", core::OpenMode::create);
    for (std::size_t done = 0; done < kLarge; done += kPiece)
        core::write_all(*out, piece());
    out->close();
    for (auto _ : state) {
        const std::vector<std::byte> whole = store.storage.get(u"large");
        require(whole.size() == kLarge);
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(kLarge));
}

void read_large_plain(benchmark::State& state) {
    const Folder folder;
    const int out = ::open(folder.file().c_str(), O_RDWR | O_CREAT, 0600);
    for (std::size_t done = 0; done < kLarge; done += kPiece)
        require(::write(out, piece().data(), kPiece) == static_cast<::ssize_t>(kPiece));
    for (auto _ : state) {
        std::vector<std::byte> whole(kLarge);
        for (std::size_t done = 0; done < kLarge;) {
            const auto part = ::pread(out, whole.data() + done, kLarge - done, static_cast<::off_t>(done));
            require(part > 0);
            done += static_cast<std::size_t>(part);
        }
    }
    ::close(out);
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(kLarge));
}

BENCHMARK(write_large_ours)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(write_large_plain)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(read_large_ours)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(read_large_plain)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace
