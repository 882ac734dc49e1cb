// SPDX-License-Identifier: Apache-2.0
// Locks that nobody else wants, and locks that two threads want all the time, beside the standard library's
// and absl::Mutex. All with a second thread alive, so that no lock may take the short way of programs with
// one.
#include <core/runtime/threads/mutex.h>
#include <core/runtime/threads/rw_mutex.h>
#include <core/runtime/threads/semaphore.h>
#include <core/runtime/threads/thread.h>

#include <absl/synchronization/mutex.h>
#include <benchmark/benchmark.h>

#include <chrono>
#include <mutex>
#include <semaphore>
#include <shared_mutex>
#include <thread>

namespace {

using namespace core;

/// A thread that waits as long as the program runs.
Thread second(u"second", [] { Thread::sleep(std::chrono::hours(24)); });

/// Who uses the lock under its own names.
struct Absl {
    void lock() ABSL_NO_THREAD_SAFETY_ANALYSIS { mutex.Lock(); }
    void unlock() ABSL_NO_THREAD_SAFETY_ANALYSIS { mutex.Unlock(); }
    void lockRead() ABSL_NO_THREAD_SAFETY_ANALYSIS { mutex.ReaderLock(); }
    void unlockRead() ABSL_NO_THREAD_SAFETY_ANALYSIS { mutex.ReaderUnlock(); }
    void lockWrite() { lock(); }
    void unlockWrite() { unlock(); }
    absl::Mutex mutex;
};
struct Shared {
    void lockRead() { mutex.lock_shared(); }
    void unlockRead() { mutex.unlock_shared(); }
    void lockWrite() { mutex.lock(); }
    void unlockWrite() { mutex.unlock(); }
    std::shared_mutex mutex;
};
struct Face { // as code does that knows the interface alone
    IMutexImpl mutex;
    IMutex* face = &mutex;
    void lock() {
        benchmark::DoNotOptimize(face);
        face->lock();
    }
    void unlock() { face->unlock(); }
};

template <class Mutex>
void exclusive(benchmark::State& state) {
    static Mutex mutex;
    static long guarded = 0;
    for (auto _ : state) {
        mutex.lock();
        ++guarded;
        mutex.unlock();
    }
    benchmark::DoNotOptimize(guarded);
}
template <class Mutex>
void read(benchmark::State& state) {
    static Mutex mutex;
    for (auto _ : state) {
        mutex.lockRead();
        mutex.unlockRead();
    }
}
template <class Mutex>
void write(benchmark::State& state) {
    static Mutex mutex;
    for (auto _ : state) {
        mutex.lockWrite();
        mutex.unlockWrite();
    }
}
/// One of sixteen writes.
template <class Mutex>
void mixed(benchmark::State& state) {
    static Mutex mutex;
    static long guarded = 0;
    long seen = 0;
    for (int i = 0; auto _ : state) {
        if (++i % 16 == 0) {
            mutex.lockWrite();
            ++guarded;
            mutex.unlockWrite();
        } else {
            mutex.lockRead();
            seen += guarded;
            mutex.unlockRead();
        }
    }
    benchmark::DoNotOptimize(seen);
}

void semaphore_ours(benchmark::State& state) {
    ISemaphoreImpl semaphore;
    for (auto _ : state) {
        semaphore.signal();
        benchmark::DoNotOptimize(semaphore.wait(kForever));
    }
}
void semaphore_std(benchmark::State& state) {
    std::counting_semaphore<> semaphore(0);
    for (auto _ : state) {
        semaphore.release();
        semaphore.acquire();
    }
}

void start_ours(benchmark::State& state) {
    for (auto _ : state)
        Thread(u"brief", [] {}).join();
}
void start_std(benchmark::State& state) {
    for (auto _ : state)
        std::thread([] {}).join();
}

BENCHMARK(exclusive<IMutexImpl>)->Name("mutex_ours");
BENCHMARK(exclusive<Face>)->Name("mutex_ours_by_interface");
BENCHMARK(exclusive<std::mutex>)->Name("mutex_std");
BENCHMARK(exclusive<std::recursive_mutex>)->Name("mutex_std_recursive");
BENCHMARK(exclusive<Absl>)->Name("mutex_absl");
BENCHMARK(read<IRWMutexSimpleImpl>)->Name("read_ours");
BENCHMARK(read<Shared>)->Name("read_std_shared");
BENCHMARK(read<Absl>)->Name("read_absl");
BENCHMARK(write<IRWMutexSimpleImpl>)->Name("write_ours");
BENCHMARK(write<Shared>)->Name("write_std_shared");
BENCHMARK(write<Absl>)->Name("write_absl");
BENCHMARK(exclusive<IMutexImpl>)->Name("mutex_contended_ours")->Threads(2)->UseRealTime();
BENCHMARK(exclusive<std::mutex>)->Name("mutex_contended_std")->Threads(2)->UseRealTime();
BENCHMARK(exclusive<Absl>)->Name("mutex_contended_absl")->Threads(2)->UseRealTime();
BENCHMARK(mixed<IRWMutexSimpleImpl>)->Name("mixed_contended_ours")->Threads(2)->UseRealTime();
BENCHMARK(mixed<Shared>)->Name("mixed_contended_std_shared")->Threads(2)->UseRealTime();
BENCHMARK(mixed<Absl>)->Name("mixed_contended_absl")->Threads(2)->UseRealTime();
BENCHMARK(semaphore_ours);
BENCHMARK(semaphore_std);
BENCHMARK(start_ours)->UseRealTime();
BENCHMARK(start_std)->UseRealTime();

} // namespace
