// SPDX-License-Identifier: Apache-2.0
#include "core/runtime/threads/posix/named_memory.h"

#include "core/runtime/threads/posix/named_files.h"

#include <core/runtime/threads/errors.h>
#include <core/runtime/utf8.h>

#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <ctime>
#include <system_error>
#include <thread>

#if defined(__linux__)
#include <linux/futex.h>
#include <sys/syscall.h>
#endif

namespace core::detail {
namespace {

constexpr std::uint32_t kMagic = 0x4c4b4331;
constexpr std::chrono::nanoseconds kSlice = std::chrono::milliseconds(20);
static_assert(std::atomic<std::uint32_t>::is_always_lock_free, "processes share no locks of the library");

} // namespace

void fail_named(const wstring& name, int error) {
    throw_error<ThreadException>(messages::kLockOpen,
                                 {name, from_utf8(std::system_category().message(error))});
}

bool sleep_at(std::atomic<std::uint32_t>& word, std::uint32_t value, const Deadline& deadline) noexcept {
    auto time = kSlice;
    if (deadline)
        time = std::min(time, std::chrono::nanoseconds(*deadline - std::chrono::steady_clock::now()));
    if (time <= std::chrono::nanoseconds::zero())
        return false;
#if defined(__linux__)
    const timespec most{0, static_cast<long>(time.count())};
    syscall(SYS_futex, &word, FUTEX_WAIT, value, &most, nullptr, 0);
#else
    if (word.load() == value)
        std::this_thread::sleep_for(std::min<std::chrono::nanoseconds>(time, std::chrono::milliseconds(1)));
#endif
    return true;
}

void wake_one_at(std::atomic<std::uint32_t>& word) noexcept {
#if defined(__linux__)
    syscall(SYS_futex, &word, FUTEX_WAKE, 1, nullptr, nullptr, 0);
#else
    static_cast<void>(word);
#endif
}

NamedMemory::NamedMemory(const wstring& name, const NamedKind& kind, std::uint32_t with)
    : name_(name), kind_(kind), path_(named_path(name)) {
    while (!tryOpen() && !tryMake(with)) { // another process was quicker with the one or the other
    }
}

NamedMemory::~NamedMemory() {
    const OpenFile file(file_);
    if (file.lock(OpenFile::Lock::exclusive) && file.isLinked() && as<NamedHeader>().held.load() == 0)
        unlink(path_.c_str());
}

bool NamedMemory::tryOpen() {
    OpenFile file = OpenFile::open(path_);
    if (file.get() < 0 && errno == ENOENT)
        return false;
    if (file.get() < 0 || !file.lock(OpenFile::Lock::shared))
        fail_named(name_, errno);
    if (!file.isLinked())
        return false;
    if (!file.isOwn(kind_.size))
        fail_named(name_, EINVAL);
    if (const int error = memory_.map(file.get(), kind_.size))
        fail_named(name_, error);
    const auto& header = as<NamedHeader>();
    if (header.magic != kMagic || header.kind != kind_.number)
        fail_named(name_, EINVAL);
    file_ = file.detach();
    return true;
}

bool NamedMemory::tryMake(std::uint32_t with) {
    remove_unused_files();
    const std::string early = unfinished_path(path_);
    OpenFile file = OpenFile::make(early);
    const RemovedFile removed(early); // its other name stays
    if (file.get() < 0 || !file.lock(OpenFile::Lock::shared) || fchmod(file.get(), S_IRUSR | S_IWUSR) != 0 ||
        ftruncate(file.get(), static_cast<off_t>(kind_.size)) != 0)
        fail_named(name_, errno);
    if (const int error = memory_.map(file.get(), kind_.size))
        fail_named(name_, error);
    as<NamedHeader>().magic = kMagic;
    as<NamedHeader>().kind = kind_.number;
    kind_.init(memory_.get(), with);
    if (link(early.c_str(), path_.c_str()) != 0) {
        if (errno != EEXIST && errno != ENOENT) // ENOENT: it was taken for an unused one before it was locked
            fail_named(name_, errno);
        return false;
    }
    file_ = file.detach();
    return true;
}

int SharedMapping::map(int file, std::size_t size) noexcept {
    void* const memory = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    if (memory == MAP_FAILED)
        return errno;
    end();
    memory_ = memory;
    size_ = size;
    return 0;
}

void SharedMapping::end() noexcept {
    if (memory_ != nullptr)
        munmap(memory_, size_);
}

} // namespace core::detail
