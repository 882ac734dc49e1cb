// SPDX-License-Identifier: Apache-2.0
// Concerns: the identity rule and the count over queries; null and unknown interfaces; what must not count;
// objects with the count inside and in front; chains of owners of any length; counts under many threads.
#include <core/runtime.h>

#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <memory>
#include <thread>
#include <vector>

namespace {

using namespace core;

struct IFirst : IUnknown {
    static constexpr GUID IID = "b9f8a2b0-6a31-4f3e-8b70-2a4d3b0c0001"_guid;
    virtual int first() = 0;
};
struct ISecond : IUnknown {
    static constexpr GUID IID = "b9f8a2b0-6a31-4f3e-8b70-2a4d3b0c0002"_guid;
    virtual int second() = 0;
};
struct IOther : IUnknown {
    static constexpr GUID IID = "b9f8a2b0-6a31-4f3e-8b70-2a4d3b0c0003"_guid;
};

class Pair : public IFirst, public ISecond {
  public:
    using Interfaces = InterfaceList<IFirst, ISecond>;
    explicit Pair(int base = 0) : base_(base) {}
    int first() override { return base_ + 1; }
    int second() override { return base_ + 2; }

  private:
    int base_;
};
using PairClass = SCOM_InternalClass<Pair>;

TEST(InternalClass, AnswersEachInterfaceAndKeepsOneIdentity) {
    const auto object = PairClass::create(10);
    const InterfacePtr<IFirst> first(object);
    const InterfacePtr<ISecond> second(first);
    EXPECT_EQ(first->first(), 11);
    EXPECT_EQ(second->second(), 12);
    EXPECT_EQ(first.query<IUnknown>().get(), second.query<IUnknown>().get());
    EXPECT_EQ(static_cast<void*>(first.query<IUnknown>().get()), static_cast<void*>(first.get()));
    EXPECT_EQ(second.query<IFirst>().get(), first.get());
    EXPECT_EQ(object->AddRef(), 4U);
    EXPECT_EQ(object->Release(), 3U);
}

TEST(InternalClass, RefusesAnUnknownInterfaceWithoutCounting) {
    const auto object = PairClass::create();
    void* out = object.get();
    EXPECT_EQ(static_cast<IFirst*>(object.get())->QueryInterface(IOther::IID, &out), kNoInterface);
    EXPECT_EQ(static_cast<std::uint32_t>(kNoInterface), 0x80004002U);
    EXPECT_EQ(out, nullptr);
    EXPECT_FALSE(InterfacePtr<IOther>(object));
    EXPECT_FALSE(InterfacePtr<IOther>(static_cast<IFirst*>(nullptr)));
    EXPECT_EQ(ComRefcount<IFirst>::cast(nullptr), nullptr);
    EXPECT_EQ(query_interface_map(nullptr, PairClass::interfaceMap(), IFirst::IID, &out), kNoInterface);
    EXPECT_EQ(query_interface_map(&out, nullptr, IFirst::IID, &out), kNoInterface);
    EXPECT_EQ(object->AddRef(), 2U);
    EXPECT_EQ(object->Release(), 1U);
}

TEST(InternalClass, MapListsTheInterfacesAndEndsWithNull) {
    const InterfaceMapEntry* map = PairClass::interfaceMap();
    EXPECT_EQ(*map[0].iid, IFirst::IID);
    EXPECT_EQ(map[0].offset, 0);
    EXPECT_EQ(*map[1].iid, ISecond::IID);
    EXPECT_EQ(map[1].offset, static_cast<std::ptrdiff_t>(sizeof(void*)));
    EXPECT_EQ(map[1].kind, 1);
    EXPECT_EQ(map[2].iid, nullptr);
}

TEST(InterfacePtr, MovesCountNothingAndSelfAssignmentKeepsTheObject) {
    auto object = PairClass::create();
    InterfacePtr<IFirst> pointer(object);
    InterfacePtr<IFirst> moved(std::move(pointer));
    EXPECT_EQ(object->AddRef(), 3U);
    object->Release();
    moved = *&moved;
    object = nullptr;
    EXPECT_EQ(moved->first(), 1);
    IFirst* raw = moved.detach();
    EXPECT_EQ(raw->Release(), 0U);
}

TEST(InternalClass, LiveCounterFollowsObjectsOfEveryThread) {
    const std::int32_t before = PairClass::liveCount();
    std::vector<InterfacePtr<PairClass>> kept(4);
    std::vector<std::thread> threads;
    for (auto& place : kept) {
        threads.emplace_back([&place] {
            for (int i = 0; i < 1000; ++i)
                place = PairClass::create(i);
        });
    }
    for (auto& thread : threads)
        thread.join();
    EXPECT_EQ(PairClass::liveCount(), before + 4);
    kept.clear(); // destroyed on another thread than the one that made them
    EXPECT_EQ(PairClass::liveCount(), before);
}

TEST(InternalClass, LiveCounterNeverMissesWhatAThreadLeavesBehind) {
    constexpr int kThreads = 2000;
    const std::int32_t before = PairClass::liveCount();
    std::vector<InterfacePtr<PairClass>> kept(kThreads);
    std::atomic<std::int32_t> made{0};
    std::thread maker([&] {
        for (auto& place : kept)
            std::thread([&] {
                place = PairClass::create(1);
                ++made;
            }).join(); // as it ends, its part of the count goes to what no thread holds
    });
    bool missed = false;
    for (std::int32_t least = 0; least < kThreads;) {
        least = made;
        missed = missed || PairClass::liveCount() < before + least;
    }
    maker.join();
    EXPECT_FALSE(missed);
}

TEST(InternalClass, SharedCountsAreExactUnderContention) {
    const auto object = PairClass::create();
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&] {
            for (int i = 0; i < 20000; ++i)
                const InterfacePtr<ISecond> copy(object);
        });
    }
    for (auto& thread : threads)
        thread.join();
    EXPECT_EQ(object->AddRef(), 2U);
    EXPECT_EQ(object->Release(), 1U);
}

class Link : public IFirst {
  public:
    using Interfaces = InterfaceList<IFirst>;
    explicit Link(InterfacePtr<IFirst> next) : next_(std::move(next)) {}
    int first() override { return 0; }

  private:
    InterfacePtr<IFirst> next_;
};

TEST(InternalClass, ALongChainOfOwnersIsDestroyedWithoutDeepRecursion) {
    const std::int32_t before = SCOM_InternalClass<Link>::liveCount();
    InterfacePtr<IFirst> head;
    for (int i = 0; i < 1'000'000; ++i)
        head = SCOM_InternalClass<Link>::create(std::move(head));
    head.reset();
    EXPECT_EQ(SCOM_InternalClass<Link>::liveCount(), before);
}

TEST(UnknownImpl, OwnedObjectsAnswerQueriesButCountNothing) {
    IMutexImpl mutex;
    ISemaphoreImpl semaphore;
    ISemaphoreOneTimeImpl oneTime;
    IRWMutexSimpleImpl rwMutex;
    EXPECT_EQ(mutex.AddRef(), 1U);
    EXPECT_EQ(semaphore.Release(), 1U);
    EXPECT_EQ(rwMutex.Release(), 1U);
    IUnknown* const unknown = static_cast<IMutex*>(&mutex);
    EXPECT_EQ(InterfacePtr<IMutex>(unknown).get(), &mutex);
    EXPECT_FALSE(InterfacePtr<ISemaphore>(static_cast<IMutex*>(&mutex)));
    using namespace std::chrono_literals;
    EXPECT_FALSE(semaphore.wait(0ms));
    semaphore.signal();
    EXPECT_TRUE(semaphore.wait(0ms));
    EXPECT_FALSE(semaphore.wait(0ms));
    oneTime.signal();
    EXPECT_TRUE(oneTime.wait(0ms) && oneTime.wait(0ms));
}

struct Plain : Refcountable<Plain> {
    int value = 7;
};
struct PlainDerived : Plain {};
struct Virtual : Refcountable<Virtual> {
    virtual ~Virtual() = default;
};
struct Derived : Virtual {
    explicit Derived(bool& gone) : gone_(gone) {}
    ~Derived() override { gone_ = true; }
    bool& gone_;
};

TEST(Refcount, TheMixinReportsZeroAndLeavesTheRestToItsOwner) {
    Plain plain;
    EXPECT_EQ(plain.acquire(), 1);
    EXPECT_EQ(plain.acquire(), 2);
    EXPECT_EQ(plain.release(), 1);
    EXPECT_EQ(plain.release(), 0);
    EXPECT_EQ(plain.value, 7);
    EXPECT_EQ(Plain::liveCount(), 1);
}

TEST(Refcount, ACounterThatNobodyHoldsIsExactUnderContention) {
    std::int32_t count = 0;
    std::atomic<int> ready = 0;
    const auto work = [&] {
        for (++ready; ready < 2;) { // so that they meet
        }
        for (int i = 0; i < 1'000'000; ++i) {
            AtomicCounter::increment(count);
            AtomicCounter::decrement(count);
        }
    };
    std::thread other(work);
    work();
    other.join();
    EXPECT_EQ(count, 0);
    EXPECT_EQ(AtomicCounter::decrement(count), -1);
    EXPECT_EQ(AtomicCounter::increment(count), 0);
}

TEST(Refcount, SharedPtrConvertsToItsBaseAndSharesTheCount) {
    bool gone = false;
    {
        SharedPtr<Derived> derived(new Derived(gone));
        const SharedPtr<Virtual> base(derived);
        SharedPtr<Virtual> assigned;
        assigned = derived;
        derived = SharedPtr<Derived>();
        EXPECT_EQ(base.get(), assigned.get());
        EXPECT_FALSE(gone);
    }
    EXPECT_TRUE(gone);
    static_assert(!std::is_convertible_v<SharedPtr<Virtual>, SharedPtr<Derived>>);
    static_assert(!std::is_convertible_v<SharedPtr<PlainDerived>, SharedPtr<Plain>>,
                  "a base that would destroy only a part of the object");
}

TEST(Refcount, SharedPtrDestroysThroughTheVirtualDestructorWithTheLastHolder) {
    bool gone = false;
    SharedPtr<Virtual> a(new Derived(gone));
    SharedPtr<Virtual> b;
    assign(b, a);
    assign(a, SharedPtr<Virtual>());
    EXPECT_FALSE(gone);
    assign(b, b);
    EXPECT_FALSE(gone);
    core::assign(b, static_cast<Virtual*>(nullptr));
    EXPECT_TRUE(gone);
    IntrinsicRefcount<Virtual>::deallocate(nullptr);
}

struct alignas(32) Wide {
    explicit Wide(bool fail = false) {
        if (fail)
            throw std::runtime_error("no");
    }
    std::shared_ptr<int> witness = std::make_shared<int>(1);
};

TEST(Refcount, ExtrinsicCountStandsInTheFourBytesBeforeTheObject) {
    auto pointer = CountedPtr<Wide>::make();
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(pointer.get()) % 32, 0U);
    const auto* const count = reinterpret_cast<const std::int32_t*>(pointer.get()) - 1;
    EXPECT_EQ(*count, 1);
    const std::weak_ptr<int> witness = pointer->witness;
    {
        const auto copy = pointer;
        EXPECT_EQ(*count, 2);
    }
    EXPECT_EQ(*count, 1);
    core::assign(pointer, CountedPtr<Wide>());
    EXPECT_TRUE(witness.expired());
    EXPECT_THROW(static_cast<void>(CountedPtr<Wide>::make(true)), std::runtime_error);
}

TEST(LeaksCounter, IsReportedWhileItLives) {
    const auto lines = [] {
        std::int32_t count = 0;
        for (const LiveClass& line : live_report())
            count += line.name == "a named entry" ? line.count : 0;
        return count;
    };
    {
        const LeaksCounter entry("a named entry");
        EXPECT_EQ(lines(), 1);
    }
    EXPECT_EQ(lines(), 0);
    LeaksCounter::setTerm(u"leaks", nullptr);
    EXPECT_EQ(leaks_term().first, u"leaks");
    EXPECT_EQ(leaks_term().second, u"");
}

TEST(Utf8, BrokenPiecesAreReplacedAndTextsThatAreTooLongRefused) {
    EXPECT_EQ(from_utf8("\xC3\xA9\xF0\x9F\x98\x80 \xED\xA0\x80\xFF"),
              u"\u00E9\U0001F600 \uFFFD\uFFFD\uFFFD\uFFFD");
    EXPECT_EQ(to_utf8(u"\u00E9\U0001F600\xD800x\xDC00"), "\xC3\xA9\xF0\x9F\x98\x80\xEF\xBF\xBDx\xEF\xBF\xBD");
    EXPECT_EQ(to_utf8(u""), "");
    // No such text exists here: its length is all that is looked at.
    EXPECT_THROW(static_cast<void>(to_utf8({u"x", std::size_t{1} << 30})), ConverterException);
    EXPECT_THROW(static_cast<void>(from_utf8({"x", std::size_t{1} << 31})), ConverterException);
}

TEST(Guid, TextRoundTripsAndOtherTextIsRefused) {
    GUID id;
    EXPECT_TRUE(from_string(u"F6F167A0-dcc9-49ad-8f8e-2c9d9904e4fe", id));
    EXPECT_EQ(id, Exception::kClassId);
    EXPECT_EQ(to_string(id), u"f6f167a0-dcc9-49ad-8f8e-2c9d9904e4fe");
    for (const wstring_view bad :
         {u"", u"{f6f167a0-dcc9-49ad-8f8e-2c9d9904e4fe}", u"f6f167a0-dcc9-49ad-8f8e-2c9d9904e4f",
          u"f6f167a0_dcc9-49ad-8f8e-2c9d9904e4fe", u"g6f167a0-dcc9-49ad-8f8e-2c9d9904e4fe"}) {
        EXPECT_FALSE(from_string(bad, id));
        EXPECT_EQ(id, kNullGuid);
    }
    EXPECT_TRUE(from_string(u"\uFF26\uFF46f167a0-dcc9-49ad-8f8e-2c9d9904e4fe", id));
    EXPECT_EQ(id.data1, 0xfff167a0U);
    EXPECT_NE(new_guid(), new_guid());
}

TEST(Random, GivesEveryByte) {
    std::vector<std::byte> bytes(10'000);
    current_random().fill(bytes);
    EXPECT_EQ(std::set<std::byte>(bytes.begin(), bytes.end()).size(), 256U);
}

TEST(Guid, NewOnesAreRandomInEveryBitButThoseThatSaySo) {
    GUID any{};
    GUID every{0xFFFFFFFF, 0xFFFF, 0xFFFF, {255, 255, 255, 255, 255, 255, 255, 255}};
    for (int i = 0; i < 100; ++i) {
        const GUID id = new_guid();
        any.data1 |= id.data1;
        every.data1 &= id.data1;
        any.data3 |= id.data3;
        every.data3 &= id.data3;
        any.data4[0] |= id.data4[0];
        every.data4[0] &= id.data4[0];
    }
    EXPECT_EQ(any.data1, 0xFFFFFFFFU);
    EXPECT_EQ(every.data1, 0U);
    EXPECT_EQ(any.data3, 0x4FFF); // version 4
    EXPECT_EQ(every.data3, 0x4000);
    EXPECT_EQ(any.data4[0], 0xBF); // variant 10
    EXPECT_EQ(every.data4[0], 0x80);
}

} // namespace
