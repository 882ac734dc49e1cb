// SPDX-License-Identifier: Apache-2.0
// Containers beside LMDB, SQLite, libzip and a plain file: thousands of small files and a large one.
// Everybody makes every commit durable, as he does it when nothing else is said (libzip, which does not, by a
// flush behind it). Files lie in the temporary folder; what TMPDIR=/dev/shm shows is the work without the
// disk.
#include "bench/containers_peers.h"

#include <core/files.h>
#include <core/runtime/utf8.h>
#include <core/storage.h>

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <lmdb.h>
#include <sqlite3.h>
#include <sys/mman.h>
#include <sys/prctl.h>
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

using namespace containers;

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
        ::prctl(PR_SET_PDEATHSIG, SIGKILL); // a run that is broken off leaves nobody behind
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
