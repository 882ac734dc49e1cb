// SPDX-License-Identifier: Apache-2.0
// The format as somebody else reads and writes it, who has only its description: tests/storage/container.py.
#include "tests/support/storage_fixture.h"
#include "tests/support/storage_python.h"
#include "tests/support/storage_seal.h"

#include <core/runtime/utf8.h>

namespace core {
namespace {

using test::Bytes;
using test::Model;

class Independent : public test::MemoryContainer {
  protected:
    void SetUp() override {
        if (!python_.exists())
            GTEST_SKIP() << "no Python with xxhash";
    }

    const test::Python python_;
};
INSTANTIATE_TEST_SUITE_P(Formats, Independent, test::kEveryFormat, test::name_of_format);

TEST_P(Independent, ReadsWhatTheLibraryWrote) {
    // Two handles in turn, changes alone and in groups.
    StorageRW handles[] = {open(), open()};
    test::Random random(29);
    Model model;
    std::vector<Bytes> images{raw()};
    std::vector<test::Listing> expected{test::listing(handles[0])};
    std::vector<std::uint64_t> counters{0};
    for (int step = 0; step < 60; ++step) {
        StorageRW& storage = handles[random.below(2)];
        if (step % 20 == 19) {
            storage.compact();
        } else if (random.below(3) != 0) {
            test::change(random, storage, model);
        } else {
            StorageTransaction group(storage);
            for (std::size_t i = random.below(5); i > 0; --i)
                test::change(random, storage, model);
            group.commit();
        }
        images.push_back(raw());
        expected.push_back(test::listing(handles[0]));
        counters.push_back(handles[1].changeCounter());
    }
    const std::vector<test::Listing> found = python_.list(images, layout_);
    ASSERT_EQ(found.size(), images.size());
    for (std::size_t i = 0; i < found.size(); ++i)
        ASSERT_EQ(found[i], expected[i]) << "step " << i;
    // A version names one state of one file: a file that is another has the number of the commit that made it
    // so.
    for (std::size_t i = 1; i < found.size(); ++i) {
        for (const auto& [name, file] : found[i]) {
            const auto old = found[i - 1].find(name);
            const bool same = old != found[i - 1].end() && old->second == file;
            EXPECT_TRUE(file.version == counters[i] || (same && file.version == old->second.version))
                << "step " << i << ": " << file.version << " at " << counters[i];
        }
    }
}

TEST_P(Independent, ReadsWhatHoldsManyFilesAndManyHoles) {
    StorageRW storage = open();
    test::Random random(37);
    std::vector<Bytes> images;
    std::vector<test::Listing> expected;
    const auto keep = [&] {
        images.push_back(raw());
        expected.push_back(test::listing(storage));
    };
    const auto each = [&](auto change) {
        StorageTransaction transaction(storage);
        for (int i = 0; i < 1500; ++i)
            change(i, from_utf8("folder/" + std::to_string(i * 7919 % 1500)));
        transaction.commit();
        keep();
    };
    each([&](int, const wstring& name) { storage.put(name, random.bytes(random.below(700))); });
    each([&](int i, const wstring& name) {
        if (i % 2 == 0)
            storage.remove(name);
    });
    for (int i = 0; i < 10; ++i) { // a few nodes each time
        storage.put(u"folder/" + from_utf8(std::to_string(random.below(1500))),
                    random.bytes(random.below(9000)));
        storage.removeAll(u"*" + from_utf8(std::to_string(random.below(1000))));
        keep();
    }
    storage.compact();
    keep();
    storage.removeAll(u"*");
    keep();
    EXPECT_TRUE(python_.list(images, layout_) == expected);
}

TEST_P(Independent, WritesWhatTheLibraryReadsAndChanges) {
    test::Random random(31);
    for (unsigned round = 1; round <= 3; ++round) {
        Model model;
        for (std::size_t i = random.below(12); i > 0; --i)
            model[random.name()] = random.bytes(random.size());
        for (std::size_t i = random.below(300); i > 0; --i)
            model[from_utf8(std::to_string(random.below(1000)))] = random.bytes(random.below(1000));
        data_ = create_memory_data();
        const Bytes image = python_.make(model, layout_, format_.table, round);
        Bytes sealed = image; // the tests of damage put checksums right; here they are
        EXPECT_EQ(test::Seal(sealed, layout_).put(), format_.table == 2);
        EXPECT_TRUE(sealed == image);
        write_all(*file(), image);
        StorageRW storage = open();
        for (const StorageProblem& problem : storage.check().problems)
            ADD_FAILURE() << to_utf8(problem.text());
        ASSERT_EQ(test::contents(storage), model);
        EXPECT_EQ(storage.changeCounter(), 41U);
        for (int i = 0; i < 12; ++i)
            test::change(random, storage, model);
        storage.compact();
        EXPECT_TRUE(storage.check().isClean());
        EXPECT_EQ(test::contents(storage), model);
    }
}

} // namespace
} // namespace core
