// SPDX-License-Identifier: Apache-2.0
// Compacting gives a container of table layout 1 the other layout: beside others, and in steps where chains
// must be written again.
#include "tests/support/fault_file.h"
#include "tests/support/hooked_file.h"
#include "tests/support/storage_fixture.h"
#include "tests/support/storage_image.h"

#include <core/runtime/utf8.h>

#include <functional>
#include <utility>

namespace core {
namespace {

using test::Bytes;
using test::FaultDisk;
using test::Model;
using test::ReplacedClock;

class Conversion : public test::InFormats {
  protected:
    [[nodiscard]] StorageRW open() { return StorageRW(test::open_fault_file(disk_), layout_); }
    /// Opens the container; `hook` is called before each read.
    [[nodiscard]] StorageRW openWatched(std::function<void()> hook) {
        return StorageRW(make_object<test::HookedFile>(test::open_fault_file(disk_),
                                                       test::FileHooks{.read = std::move(hook)}),
                         layout_);
    }

    FaultDisk disk_;
};
INSTANTIATE_TEST_SUITE_P(Formats, Conversion, test::kEveryFlatFormat, test::name_of_format);

TEST_P(Conversion, LetsOthersInAndTakesWhatTheyChanged) {
    test::create_container(*test::open_fault_file(disk_), format_);
    Model model;
    StorageRW other = open();
    for (int i = 0; i < 40; ++i) {
        const wstring name = u"file" + from_utf8(std::to_string(i));
        other.put(name, model[name] = Bytes(100000, static_cast<std::byte>(i)));
    }
    ReplacedClock clock;
    int reads = 0;
    int puts = 0;
    StorageRW storage = openWatched([&] {
        if (++reads < 10 || puts == 12) // the first ones look the state up, for which all others wait
            return;
        const wstring name =
            u"file" + from_utf8(std::to_string(puts % 5)); // more than once, and in old space
        const Bytes content(90000 + static_cast<std::size_t>(reads), static_cast<std::byte>(reads));
        ++puts;
        other.put(name, model[name] = content);
        if (puts == 7) {
            other.remove(u"file9");
            model.erase(u"file9");
        }
    });
    reads = 0;
    EXPECT_TRUE(storage.compact().damaged.empty());
    EXPECT_EQ(puts, 12);
    EXPECT_EQ(clock.sleeps, 0) << "nobody waits";
    EXPECT_TRUE(storage.check().isClean());
    EXPECT_EQ(test::contents(open()), model);
    EXPECT_EQ(open().info().freeBytes, 0U);
}

/// Blocks of other sizes: each chain is written again, a step at a time, in the space of those before it.
TEST_P(Conversion, WritesChainsAgainInSteps) {
    test::StorageImage image(layout_);
    test::Random random(11);
    Model model;
    for (int i = 0; i < 60; ++i) {
        const wstring name = u"file" + from_utf8(std::to_string(100 + i));
        model[name] = random.bytes(100000);
        image.file(name, image.chain(model[name], {60000, 50000}));
    }
    disk_.bytes = image.finish();
    const std::size_t length = disk_.bytes.size();
    disk_.capacity = length + length / 2; // not for everything twice
    StorageRW storage = open();
    const std::uint64_t before = storage.changeCounter();
    EXPECT_TRUE(storage.compact().damaged.empty());
    EXPECT_GT(storage.changeCounter() - before, 5U);
    EXPECT_TRUE(storage.check().isClean());
    EXPECT_EQ(test::contents(open()), model);
    EXPECT_EQ(storage.info().freeBytes, 0U);
}

} // namespace
} // namespace core
