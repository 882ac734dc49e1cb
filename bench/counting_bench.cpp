// SPDX-License-Identifier: Apache-2.0
// Counted objects beside boost::intrusive_ptr, dynamic_cast and std::make_shared, all with a second thread
// running, so that no counter may take the short way of programs with one.
#include <core/runtime.h>
#include <core/runtime/module.h>

#include <benchmark/benchmark.h>
#include <boost/smart_ptr/intrusive_ptr.hpp>
#include <boost/smart_ptr/intrusive_ref_counter.hpp>

#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>

namespace {

using namespace core;

/// A thread that waits as long as the program runs.
class SecondThread {
  public:
    SecondThread() : thread_([this] { wait(); }) {}
    ~SecondThread() {
        {
            const std::lock_guard guard(lock_);
            end_ = true;
        }
        ended_.notify_one();
        thread_.join();
    }

  private:
    void wait() {
        std::unique_lock guard(lock_);
        ended_.wait(guard, [this] { return end_; });
    }

    std::mutex lock_;
    std::condition_variable ended_;
    bool end_ = false;
    std::thread thread_;
};

const LibraryScope library;
const SecondThread second;

template <unsigned n>
struct Face : IUnknown {
    static constexpr GUID IID = {0x3d1c0b00 + n, 0x5d7e, 0x4c11, {0x9a, 1, 2, 3, 4, 5, 6, 7}};
    virtual int work() = 0;
};
template <unsigned... n>
struct Faces : Face<n>... {
    using Interfaces = InterfaceList<Face<n>...>;
    int work() override { return 1; }
};
using Object = Faces<1, 2, 3, 4, 5, 6, 7, 8>;

template <unsigned n>
struct Base {
    virtual ~Base() = default;
    virtual int work() = 0;
};
template <unsigned... n>
struct Bases : Base<n>..., boost::intrusive_ref_counter<Bases<n...>> {
    int work() override { return 1; }
};
using PlainObject = Bases<1, 2, 3, 4, 5, 6, 7, 8>;

void copy_ours(benchmark::State& state) {
    const InterfacePtr<Face<1>> object(SCOM_InternalClass<Object>::create());
    for (auto _ : state) {
        const auto copy = object;
        benchmark::DoNotOptimize(copy.get());
    }
}
void copy_intrusive_ptr(benchmark::State& state) {
    const boost::intrusive_ptr<PlainObject> object(new PlainObject);
    for (auto _ : state) {
        const auto copy = object;
        benchmark::DoNotOptimize(copy.get());
    }
}

template <class Wanted>
void query_ours(benchmark::State& state) {
    const InterfacePtr<Face<1>> object(SCOM_InternalClass<Object>::create());
    for (auto _ : state)
        benchmark::DoNotOptimize(object.query<Wanted>().get());
}
template <class Wanted>
void dynamic_cast_peer(benchmark::State& state) {
    const auto object = std::make_unique<PlainObject>();
    Base<1>* pointer = object.get();
    for (auto _ : state) {
        benchmark::DoNotOptimize(pointer);
        benchmark::DoNotOptimize(dynamic_cast<Wanted*>(pointer));
    }
}

struct Small : Face<1> {
    using Interfaces = InterfaceList<Face<1>>;
    int work() override { return payload; }
    int payload = 1;
};
struct PlainSmall : Base<1> {
    int work() override { return payload; }
    int payload = 1;
};

void create_ours(benchmark::State& state) {
    for (auto _ : state)
        benchmark::DoNotOptimize(SCOM_InternalClass<Small>::create().get());
}
void create_make_shared(benchmark::State& state) {
    for (auto _ : state)
        benchmark::DoNotOptimize(std::make_shared<PlainSmall>().get());
}

BENCHMARK(copy_ours);
BENCHMARK(copy_intrusive_ptr);
BENCHMARK(query_ours<Face<8>>)->Name("query_last_ours");
BENCHMARK(dynamic_cast_peer<Base<8>>)->Name("query_last_dynamic_cast");
BENCHMARK(query_ours<Face<9>>)->Name("query_miss_ours");
BENCHMARK(dynamic_cast_peer<Base<9>>)->Name("query_miss_dynamic_cast");
BENCHMARK(create_ours);
BENCHMARK(create_make_shared);

} // namespace
