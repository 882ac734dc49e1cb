// SPDX-License-Identifier: Apache-2.0
// Containers on a real disk, shared by processes: readers beside a writer, writers that are killed at any
// moment, and a folder tree there and back. CORE_NIGHTLY=1 runs each of them long: 10 000 kills.
#include "tests/support/hooked_file.h"
#include "tests/support/rounds.h"
#include "tests/support/storage_fixture.h"

#include <core/runtime/utf8.h>

#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <functional>
#include <optional>
#include <stdexcept>
#include <thread>
#include <tuple>
#include <utility>
#include <vector>

namespace core {
namespace {

using namespace std::chrono_literals;
using support::is_nightly;
using test::Bytes;

/// A container on the disk; as new ones are unless told otherwise.
class OnDisk : public testing::Test {
  protected:
    explicit OnDisk(const test::Format& format = *std::rbegin(test::kFormats))
        : layout_(*format.layout),
          path_((std::filesystem::temp_directory_path() / "core-storage-XXXXXX").string()) {
        ::close(::mkstemp(path_.data()));
        test::create_container(*open_disk_file(path_, OpenMode::readWrite), format);
    }
    ~OnDisk() override { std::filesystem::remove(path_); }

    StorageRW open() { return StorageRW(open_disk_file(path_, OpenMode::readWrite), layout_); }

    /// Runs `work` in a process of its own, whose exit code is 0 when it returns true.
    static ::pid_t start(const std::function<bool()>& work) {
        const ::pid_t child = ::fork();
        if (child != 0)
            return child;
        ::prctl(PR_SET_PDEATHSIG, SIGKILL); // it never outlives the test
        bool good = false;
        try {
            good = work();
        } catch (const std::exception& e) {
            std::fprintf(stderr, "%s\n", e.what());
        }
        ::_exit(good ? 0 : 1);
    }
    static bool succeeded(::pid_t child) {
        int status = 0;
        ::waitpid(child, &status, 0);
        return WIFEXITED(status) && WEXITSTATUS(status) == 0;
    }

    static constexpr int kFiles = 5;
    static wstring nameOf(int writer, int file) {
        return from_utf8("writer" + std::to_string(writer) + "/file" + std::to_string(file));
    }
    /// Bytes that tell by themselves which generation they are of, and whether they are all of one.
    static Bytes contentOf(std::uint32_t generation, int file) {
        test::Random random(generation * 10 + static_cast<std::uint32_t>(file));
        Bytes bytes(4 + random.size(), static_cast<std::byte>(generation));
        std::memcpy(bytes.data(), &generation, sizeof generation);
        return bytes;
    }
    static std::uint32_t generationOf(const Bytes& bytes) {
        std::uint32_t generation = 0;
        if (bytes.size() >= sizeof generation)
            std::memcpy(&generation, bytes.data(), sizeof generation);
        return generation;
    }
    /// A writer's files in their next generation, of which one is written in pieces, and the number of
    /// generations that all writers have made, in one commit.
    static void write(StorageRW& storage, std::uint32_t generation, int writer = 0) {
        StorageTransaction transaction(storage);
        for (int file = 0; file < kFiles; ++file) {
            if (file != 1) {
                storage.put(nameOf(writer, file), contentOf(generation, file));
                continue;
            }
            const auto stream = storage.open(nameOf(writer, file), OpenMode::replace);
            const Bytes content = contentOf(generation, file);
            write_all(*stream, std::span(content).first(content.size() / 2));
            write_all(*stream, std::span(content).subspan(content.size() / 2));
            stream->close();
        }
        std::uint32_t all = (storage.contains(kAll) ? generationOf(storage.get(kAll)) : 0) + 1;
        storage.put(kAll, std::as_bytes(std::span(&all, 1)));
        transaction.commit();
    }
    /// A large file, written in pieces beside what others commit.
    static void writeLarge(StorageRW& storage, std::uint32_t generation, int writer) {
        const auto stream = storage.open(largeOf(writer), OpenMode::replace);
        const Bytes piece(60000, static_cast<std::byte>(generation));
        for (int i = 0; i < 3; ++i)
            write_all(*stream, piece);
        stream->close();
    }
    static wstring largeOf(int writer) { return from_utf8("large" + std::to_string(writer)); }
    static bool isWholeLarge(const StorageRW& storage, int writer) {
        if (!storage.contains(largeOf(writer)))
            return true;
        const Bytes bytes = storage.get(largeOf(writer));
        return bytes == Bytes(180000, bytes.at(0));
    }

    /// The generations of the first writers' files in one state; nothing when files of one writer are of
    /// different ones, or their sum is another.
    static std::optional<std::vector<std::uint32_t>> generations(const StorageRW& storage, int writers) {
        const StorageReading reading(storage);
        std::vector<std::uint32_t> found;
        std::uint32_t sum = 0;
        for (int writer = 0; writer < writers; ++writer) {
            found.push_back(storage.contains(nameOf(writer, 0)) ? generationOf(storage.get(nameOf(writer, 0)))
                                                                : 0);
            sum += found.back();
            for (int file = 0; file < kFiles && found.back() != 0; ++file) {
                if (storage.get(nameOf(writer, file)) != contentOf(found.back(), file))
                    return std::nullopt;
            }
            if (!isWholeLarge(storage, writer))
                return std::nullopt;
        }
        if (sum != (storage.contains(kAll) ? generationOf(storage.get(kAll)) : 0))
            return std::nullopt;
        return found;
    }

    static constexpr wstring_view kAll = u"all";
    const StorageLayout& layout_;
    std::string path_;
};

class Processes : public OnDisk, public testing::WithParamInterface<test::Format> {
  protected:
    Processes() : OnDisk(GetParam()) {}
};
INSTANTIATE_TEST_SUITE_P(Formats, Processes, test::kEveryFormat, test::name_of_format);

TEST_P(Processes, ReadersBesideAWriterSeeWholeStates) {
    const auto end = std::chrono::steady_clock::now() + (is_nightly() ? 60000ms : 500ms);
    StorageRW storage = open();
    write(storage, 1);
    const auto reader = [&] {
        StorageRW mine = open();
        int reads = 0;
        while (std::chrono::steady_clock::now() < end) {
            const auto whole = generations(mine, 1);
            if (!whole)
                return false;
            const int file = reads++ % kFiles;
            const Bytes alone = mine.get(nameOf(0, file)); // of a later state, perhaps
            if (generationOf(alone) < whole->at(0) || alone != contentOf(generationOf(alone), file))
                return false;
        }
        return reads > 5;
    };
    const ::pid_t readers[] = {start(reader), start(reader)};
    std::uint32_t generation = 1;
    while (std::chrono::steady_clock::now() < end) {
        write(storage, ++generation);
        std::this_thread::sleep_for(1ms);
    }
    EXPECT_GT(generation, 5U);
    for (const ::pid_t child : readers)
        EXPECT_TRUE(succeeded(child)) << "a torn read";
    EXPECT_TRUE(storage.check().isClean());
}

TEST_P(Processes, AReaderKeepsTheVersionThatItOpened) {
    const auto end = std::chrono::steady_clock::now() + (is_nightly() ? 60s : 500ms);
    StorageRW storage = open();
    write(storage, 1);
    const ::pid_t writer = start([&] {
        StorageRW mine = open();
        for (std::uint32_t generation = 2; std::chrono::steady_clock::now() < end; ++generation) {
            write(mine, generation);
            if (generation % 7 == 0)
                mine.compact();
        }
        return true;
    });
    std::mt19937 random(5);
    int reads = 0;
    for (; std::chrono::steady_clock::now() < end; ++reads) {
        const int number = reads % kFiles;
        const auto reader = storage.open(nameOf(0, number), OpenMode::read);
        Bytes start(sizeof(std::uint32_t));
        ASSERT_EQ(read_all_at(*reader, 0, start), start.size());
        std::this_thread::sleep_for(std::chrono::microseconds(random() % 20000));
        ASSERT_EQ(read_whole(*reader), contentOf(generationOf(start), number));
    }
    EXPECT_GT(reads, 5);
    EXPECT_TRUE(succeeded(writer));
    storage.put(u"last", {}); // nobody reads old versions any more
    EXPECT_EQ(storage.info().fileLength, storage.info().end);
    EXPECT_TRUE(storage.check().isClean());
}

TEST_P(Processes, WritersTakeTurns) {
    const auto writer = [&](int number) {
        return [this, number] {
            StorageRW mine = open();
            const wstring name(1, static_cast<wchar>(u'a' + number));
            for (int i = 0; i < 20; ++i) {
                mine.put(name, contentOf(static_cast<std::uint32_t>(i), number));
                // Reading, then writing what follows from it, in one turn.
                StorageTransaction transaction(mine);
                Bytes sum = mine.contains(u"sum") ? mine.get(u"sum") : Bytes(1);
                sum[0] = static_cast<std::byte>(std::to_integer<int>(sum[0]) + 1);
                mine.put(u"sum", sum);
                transaction.commit();
            }
            return true;
        };
    };
    const ::pid_t writers[] = {start(writer(0)), start(writer(1)), start(writer(2))};
    for (const ::pid_t child : writers)
        EXPECT_TRUE(succeeded(child));
    StorageRW storage = open();
    EXPECT_EQ(storage.get(u"sum")[0], std::byte{60});
    EXPECT_EQ(storage.find().size(), 4U);
    EXPECT_EQ(storage.changeCounter(), 120U);
    EXPECT_TRUE(storage.check().isClean());
}

/// A disk that takes its time to make things durable, and does not do it; and to write much.
InterfacePtr<IFile> slow_disk(const std::string& path, std::chrono::milliseconds flush,
                              std::chrono::milliseconds write = 0ms) {
    const auto writeSlowly = [write](std::size_t count) {
        if (count > 50000)
            std::this_thread::sleep_for(write);
    };
    return make_object<test::HookedFile>(
        open_disk_file(path, OpenMode::readWrite),
        test::FileHooks{.write = writeSlowly, .flush = [flush] { std::this_thread::sleep_for(flush); }});
}

/// How many writers there are, and how long a flush takes; on the real disk as long as it does.
class Fairness : public OnDisk, public testing::WithParamInterface<std::tuple<int, int>> {};
INSTANTIATE_TEST_SUITE_P(Writers, Fairness, testing::Combine(testing::Values(2, 4), testing::Values(0, 15)));

TEST_P(Fairness, TheSlowestWriterCommitsAThirdOfTheFastest) {
    const auto count = std::get<0>(GetParam());
    const auto flush = std::get<1>(GetParam());
    const auto end = std::chrono::steady_clock::now() + (is_nightly() ? 60s : 1s);
    int ends[2];
    ASSERT_EQ(::pipe(ends), 0);
    const auto put = [&](int number) {
        StorageRW mine(flush == 0 ? open_disk_file(path_, OpenMode::readWrite)
                                  : slow_disk(path_, std::chrono::milliseconds(flush)),
                       layout_);
        int commits = 0;
        for (; std::chrono::steady_clock::now() < end; ++commits)
            mine.put(nameOf(number, 0), contentOf(static_cast<std::uint32_t>(commits), number));
        return commits;
    };
    std::vector<::pid_t> writers;
    for (int number = 0; number < count; ++number) {
        writers.push_back(start([&, number] {
            const int commits = put(number);
            return ::write(ends[1], &commits, sizeof commits) == sizeof commits;
        }));
    }
    for (const ::pid_t writer : writers)
        EXPECT_TRUE(succeeded(writer));
    ::close(ends[1]);
    std::vector<int> all;
    for (int commits = 0; ::read(ends[0], &commits, sizeof commits) == sizeof commits;)
        all.push_back(commits);
    ::close(ends[0]);
    ASSERT_EQ(all.size(), writers.size());
    const auto [slowest, fastest] = std::minmax_element(all.begin(), all.end());
    EXPECT_GE(3 * *slowest, *fastest) << *slowest << " against " << *fastest;
    EXPECT_GT(*slowest, 1);
    EXPECT_TRUE(open().check().isClean());
}

TEST_F(OnDisk, ALongPutLetsShortOnesThrough) {
    constexpr std::size_t kLarge = std::size_t{20} << 20;
    StorageRW storage(slow_disk(path_, 1ms, 5ms), layout_);
    StorageRW other = open();
    std::atomic<bool> done = false;
    std::thread large([&] {
        storage.put(u"large", Bytes(kLarge, std::byte{1}));
        done = true;
    });
    int beside = 0; // through the same handle and another one
    for (; !done; ++beside)
        (beside % 2 == 0 ? storage : other)
            .put(u"small" + wstring(1, static_cast<wchar>(beside)), Bytes(100));
    large.join();
    EXPECT_GT(beside, 10);
    EXPECT_EQ(other.get(u"large"), Bytes(kLarge, std::byte{1}));
    EXPECT_EQ(other.find(u"small*").size(), static_cast<std::size_t>(beside));
    EXPECT_TRUE(other.check().isClean());
}

TEST_F(OnDisk, ThreadsOfOneHandleTakeTurns) {
    StorageRW storage(slow_disk(path_, 2ms), layout_);
    const auto end = std::chrono::steady_clock::now() + 500ms;
    int commits[3] = {};
    const Bytes content(1000);
    std::vector<std::thread> threads;
    for (int number = 0; number < 3; ++number) {
        threads.emplace_back([&, number] {
            for (; std::chrono::steady_clock::now() < end; ++commits[number])
                storage.put(nameOf(number, 0), content);
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    const auto [slowest, fastest] = std::minmax_element(std::begin(commits), std::end(commits));
    EXPECT_GE(3 * *slowest, *fastest) << *slowest << " against " << *fastest;
}

/// A writer in a process of its own that goes on for ever and says of each commit that it is done.
class Endless {
  public:
    explicit Endless(const std::function<::pid_t(int pipe)>& start) {
        int ends[2];
        if (::pipe(ends) != 0)
            throw std::runtime_error("no pipe");
        child_ = start(ends[1]);
        ::close(ends[1]);
        pipe_ = ends[0];
    }
    ~Endless() {
        kill(0);
        ::close(pipe_);
    }
    Endless(const Endless&) = delete;
    Endless& operator=(const Endless&) = delete;

    /// Kills it; returns the last generation that it told of, or the one that it began behind.
    std::uint32_t kill(std::uint32_t begin) {
        if (const ::pid_t child = std::exchange(child_, 0)) {
            ::kill(child, SIGKILL);
            ::waitpid(child, nullptr, 0);
        }
        for (std::uint32_t told = 0; ::read(pipe_, &told, sizeof told) == sizeof told;)
            begin = told;
        return begin;
    }

  private:
    ::pid_t child_;
    int pipe_;
};

TEST_P(Processes, KilledWritersLoseNothingTheyCommitted) {
    std::mt19937 random(23);
    StorageRW watcher = open(); // by one who has it open all the time
    std::vector<std::uint32_t> now(2);
    std::size_t kills = 0;
    // A slow machine needs more rounds until something has been committed.
    for (int round = support::rounds(12, 1250); round > 0 || now[0] + now[1] <= 10; --round) {
        const auto writer = [&](int number) {
            return [&, number](int pipe) {
                return start([&, number, pipe] {
                    StorageRW mine = open();
                    for (std::uint32_t next = now[static_cast<std::size_t>(number)] + 1;; ++next) {
                        write(mine, next, number);
                        if (::write(pipe, &next, sizeof next) != sizeof next)
                            return false;
                        if (next % 3 == 0)
                            writeLarge(mine, next, number);
                        if (next % 7 == 0)
                            mine.compact();
                    }
                });
            };
        };
        // Both at work; then one is killed, and the other one has to get on.
        Endless writers[] = {Endless(writer(0)), Endless(writer(1))};
        const std::size_t first = random() % 2;
        std::vector<std::uint32_t> committed = now;
        for (const std::size_t number : {first, 1 - first}) {
            const auto end =
                std::chrono::steady_clock::now() + std::chrono::microseconds(500 + random() % 20000);
            do
                ASSERT_TRUE(generations(watcher, 2)) << "a torn read";
            while (std::chrono::steady_clock::now() < end);
            committed[number] = writers[number].kill(now[number]);
            ++kills;
        }
        StorageRW storage = open();
        for (const StorageProblem& problem : storage.check().problems)
            ADD_FAILURE() << to_utf8(problem.text());
        const auto found = generations(storage, 2);
        ASSERT_TRUE(found);
        ASSERT_EQ(generations(watcher, 2), found);
        for (std::size_t i = 0; i < now.size(); ++i)
            ASSERT_TRUE(found->at(i) == committed[i] || found->at(i) == committed[i] + 1)
                << committed[i] << " " << found->at(i);
        now = *found;
    }
    RecordProperty("kills", static_cast<int>(kills));
}

TEST_P(Processes, TheSpaceOfThoseWhoWereKilledIsUsedAgain) {
    StorageRW storage = open();
    const Bytes content(500000, std::byte{1});
    const auto killed = [&](OpenMode mode) {
        storage.put(u"read", content);
        int ends[2];
        EXPECT_EQ(::pipe(ends), 0);
        const ::pid_t child = start([&] {
            StorageRW mine = open();
            const auto file = mine.open(mode == OpenMode::read ? u"read" : u"written", mode);
            Bytes part(10);
            if (mode != OpenMode::read)
                write_all(*file, content);
            else if (read_all_at(*file, 1000, part) != part.size())
                return false;
            if (::write(ends[1], "", 1) != 1)
                return false;
            for (;;) // with the file open
                ::pause();
        });
        ::close(ends[1]);
        char begun = 0;
        EXPECT_EQ(::read(ends[0], &begun, 1), 1);
        if (mode == OpenMode::read) // others change what is read
            storage.put(u"read", Bytes(400000, std::byte{2}));
        ::kill(child, SIGKILL);
        ::waitpid(child, nullptr, 0);
        ::close(ends[0]);
    };
    for (const OpenMode mode : {OpenMode::read, OpenMode::replace}) {
        killed(mode);
        storage.remove(u"read");
        EXPECT_TRUE(storage.find().empty());
        EXPECT_TRUE(storage.check().isClean());
        EXPECT_EQ(storage.info().fileLength, layout_.emptyLength()) << "as long as a new one";
    }
}

TEST_P(Processes, HoldsARealFolderTree) {
    namespace fs = std::filesystem;
    const std::string root = "/usr/share/doc";
    if (!fs::is_directory(root))
        GTEST_SKIP() << "no " << root;
    StorageRW storage = open();
    std::map<wstring, Bytes> tree;
    std::error_code error;
    std::uint64_t bytes = 0;
    for (fs::recursive_directory_iterator entry(root, error), end; entry != end && !error;
         entry.increment(error)) {
        if (!entry->is_regular_file() || (!is_nightly() && bytes > (std::uint64_t{8} << 20)))
            continue;
        Bytes content = read_whole(*open_disk_file(entry->path().string(), OpenMode::read));
        bytes += content.size();
        tree.emplace(from_utf8(entry->path().string().substr(root.size() + 1)), std::move(content));
    }
    {
        StorageTransaction transaction(storage);
        for (const auto& [name, content] : tree) {
            const auto file = storage.open(name, OpenMode::createNew);
            write_all(*file, content);
            file->close();
        }
        transaction.commit();
    }
    StorageRW again = open();
    EXPECT_TRUE(again.check().isClean());
    const auto found = again.find();
    ASSERT_EQ(found.size(), tree.size());
    for (const StorageFound& file : found) {
        ASSERT_TRUE(tree.contains(file.name));
        ASSERT_EQ(file.size, tree.at(file.name).size());
        ASSERT_EQ(read_whole(*again.open(file.name, OpenMode::read)), tree.at(file.name));
    }
}

} // namespace
} // namespace core
