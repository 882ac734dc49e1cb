// SPDX-License-Identifier: Apache-2.0
// Putting, getting and checking large contents ends soon after it is asked to, at whatever write or read, and
// leaves the container as it was before the call.
#include "tests/support/file_helpers.h"
#include "tests/support/hooked_file.h"

#include <core/containers.h>
#include <core/files/memory_file.h>
#include <core/runtime/threads/stop_scope.h>

namespace core {
namespace {

class StoppedContainers : public testing::TestWithParam<const StorageLayout*> {
  protected:
    static constexpr std::size_t kSize = std::size_t{3} << 20;

    StoppedContainers() {
        StorageRW::create(*open_memory_file(data_), *GetParam());
        const auto use = [this](auto...) {
            if (--left_ == 0)
                source_.request();
        };
        storage_.emplace(make_object<test::HookedFile>(open_memory_file(data_),
                                                       test::FileHooks{.read = use, .write = use}),
                         *GetParam());
    }
    /// Whether a stop at a read or write of `call` ends it.
    template <class Call>
    bool stops(int use, Call call) {
        source_ = StopSource();
        left_ = use;
        try {
            const StopScope scope(source_.token());
            call();
        } catch (const ThreadDeath&) {
            left_ = 0;
            return true;
        }
        left_ = 0;
        return false;
    }

    const decltype(create_memory_data()) data_ = create_memory_data();
    const std::vector<std::byte> old_ = std::vector<std::byte>(kSize, std::byte{1});
    const std::vector<std::byte> new_ = std::vector<std::byte>(kSize + 1, std::byte{2});
    std::optional<StorageRW> storage_;

  private:
    StopSource source_;
    int left_ = 0;
};
INSTANTIATE_TEST_SUITE_P(Layouts, StoppedContainers, testing::Values(&kStorageLayout32, &kStorageLayout64),
                         [](const auto& info) { return std::to_string(8 * info.param->width); });

TEST_P(StoppedContainers, KeepWhatTheyHad) {
    storage_->put(u"a", old_);
    int stopped = 0;
    for (int use = 1; use <= 12; ++use) {
        if (!stops(use, [&] { storage_->put(u"a", new_); })) {
            EXPECT_EQ(storage_->get(u"a"), new_);
            storage_->put(u"a", old_);
            continue;
        }
        ++stopped;
        EXPECT_EQ(storage_->get(u"a"), old_);
        EXPECT_TRUE(storage_->check().isClean());
    }
    EXPECT_GE(stopped, 3);
    storage_->begin();
    storage_->put(u"b", old_);
    EXPECT_TRUE(stops(1, [&] { storage_->put(u"a", new_); }));
    storage_->rollback();
    EXPECT_EQ(storage_->get(u"a"), old_);
    EXPECT_FALSE(storage_->contains(u"b"));
    EXPECT_TRUE(storage_->check().isClean());
}

TEST_P(StoppedContainers, CanBeReadAndCheckedAgain) {
    storage_->put(u"a", old_);
    EXPECT_TRUE(stops(1, [&] { static_cast<void>(storage_->get(u"a")); }));
    EXPECT_TRUE(stops(1, [&] { static_cast<void>(storage_->check()); }));
    EXPECT_TRUE(stops(1, [&] { storage_->copy(u"a", u"b"); }));
    EXPECT_EQ(storage_->get(u"a"), old_);
    EXPECT_FALSE(storage_->contains(u"b"));
    EXPECT_TRUE(storage_->check().isClean());
}

} // namespace
} // namespace core
