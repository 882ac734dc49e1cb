// SPDX-License-Identifier: Apache-2.0
// The search for circles of locks, in builds that have it.
#include <core/runtime/threads/lock_cycles.h>
#include <core/runtime/threads/mutex.h>
#include <core/runtime/threads/rw_mutex.h>
#include <core/runtime/threads/thread.h>
#include <core/runtime/utf8.h>

#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <cstdlib>
#include <functional>
#include <mutex>
#include <optional>
#include <vector>

namespace {

using namespace core;

std::vector<wstring> reports;

class LockCycles : public testing::Test {
  protected:
    void SetUp() override {
        if (!finds_lock_cycles())
            GTEST_SKIP() << "this build does not look for circles";
        reports.clear();
        replace_lock_cycle_handler([](const wstring& report) { reports.push_back(report); });
    }
    void TearDown() override { replace_lock_cycle_handler(nullptr); }

    static void onThread(const wstring& name, const std::function<void()>& work) {
        Thread(name, work).join();
    }
};

TEST_F(LockCycles, AnInvertedOrderIsReportedOnceWithItsThreadsAndPlaces) {
    IMutexImpl a, b;
    IRWMutexSimpleImpl c;
    onThread(u"first", [&] {
        const std::lock_guard holdA(a);
        const std::lock_guard under(b);
    });
    onThread(u"second", [&] {
        const std::lock_guard holdB(b);
        const ReadLock under(c);
    });
    EXPECT_TRUE(reports.empty());
    for (int i = 0; i < 2; ++i)
        onThread(u"third", [&] {
            const WriteLock holdC(c);
            const std::lock_guard under(a); // a before b before c before a
        });
    ASSERT_EQ(reports.size(), 1U);
    for (const wchar* part : {u"first", u"second", u"third", u"0x"})
        EXPECT_NE(reports[0].find(part), wstring::npos);
}

TEST_F(LockCycles, APlaceInCodeThatIsNotCppHasItsPlainName) {
    static IMutexImpl a, b;
    onThread(u"first", [] {
        const std::lock_guard holdA(a);
        const std::lock_guard under(b);
    });
    struct Callback { // few calls of ours, in a build without inlining, too: a report shows the first three
        static int compare(const void*, const void*) {
            b.lock();
            a.lock();
            a.unlock();
            b.unlock();
            return 0;
        }
    };
    onThread(u"second", [] {
        const int one = 0;
        void* (*volatile search)(const void*, const void*, std::size_t, std::size_t,
                                 int (*)(const void*, const void*)) = &std::bsearch; // not inlined
        (void)search(&one, &one, 1, sizeof(int), &Callback::compare);
    });
    ASSERT_EQ(reports.size(), 1U);
    EXPECT_NE(reports[0].find(u"bsearch"), wstring::npos) << to_utf8(reports[0]);
}

TEST_F(LockCycles, TriesTimeOutsAndAgainAreNoCircles) {
    IMutexImpl a, b;
    const std::lock_guard holdA(a);
    {
        const std::lock_guard holdB(b);
        a.lock(); // again
        a.unlock();
        EXPECT_TRUE(a.tryLock());
        a.unlock();
    }
    onThread(u"careful", [&] {
        const std::lock_guard holdB(b);
        EXPECT_FALSE(a.tryLock());
        EXPECT_FALSE(a.tryLockFor(std::chrono::milliseconds(5)));
    });
    EXPECT_TRUE(reports.empty());
}

TEST_F(LockCycles, AThreadThatReadsUnderItsOwnWritingIsReportedBeforeItWaits) {
    IRWMutexSimpleImpl mutex;
    mutex.lockRead();
    mutex.lockRead(); // goes well as long as no writer comes between
    mutex.unlockRead();
    mutex.unlockRead();
    EXPECT_EQ(reports.size(), 1U);
}

TEST_F(LockCycles, ALockAtTheAddressOfAnotherStartsNew) {
    IMutexImpl a;
    std::optional<IMutexImpl> b;
    for (int i = 0; i < 2; ++i) {
        b.emplace();
        const std::lock_guard first(i == 0 ? a : *b);
        const std::lock_guard second(i == 0 ? *b : a);
    }
    EXPECT_TRUE(reports.empty());
}

} // namespace
