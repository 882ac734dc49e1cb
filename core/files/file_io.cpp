// SPDX-License-Identifier: Apache-2.0
#include <core/files/errors.h>
#include <core/files/file_io.h>
#include <core/runtime/threads/thread.h>

#include <algorithm>
#include <cerrno>

namespace core {
namespace {

constexpr std::size_t kCopyBlock = std::size_t{256} << 10;

void require_progress(std::size_t done, IFile& file) {
    if (done == 0)
        throw_file_error(messages::kFileWrite, file.url(), ENOSPC);
}

} // namespace

std::size_t read_all_at(IFile& file, std::uint64_t offset, std::span<std::byte> bytes) {
    std::size_t done = 0;
    while (done < bytes.size()) {
        const std::size_t part = file.readAt(offset + done, bytes.data() + done, bytes.size() - done);
        if (part == 0)
            break;
        done += part;
    }
    return done;
}

void write_all_at(IFile& file, std::uint64_t offset, std::span<const std::byte> bytes) {
    while (!bytes.empty()) {
        const std::size_t part = file.writeAt(offset, bytes.data(), bytes.size());
        require_progress(part, file);
        offset += part;
        bytes = bytes.subspan(part);
    }
}

void write_all(IFile& file, std::span<const std::byte> bytes) {
    while (!bytes.empty()) {
        const std::size_t part = file.write(bytes.data(), bytes.size());
        require_progress(part, file);
        bytes = bytes.subspan(part);
    }
}

std::vector<std::byte> read_whole(IFile& file) {
    std::vector<std::byte> bytes;
    std::size_t done = 0;
    for (;;) {
        // The expected rest at once, but no more than doubles what was really read.
        const std::uint64_t length = file.length();
        const std::uint64_t rest = length > done ? length - done : 0;
        const std::uint64_t step =
            std::min<std::uint64_t>(rest, std::max<std::uint64_t>(done, std::uint64_t{16} << 20)) + 1;
        if (step > bytes.max_size() - done)
            throw_file_error(messages::kFileRead, file.url(), EFBIG);
        bytes.resize(done + static_cast<std::size_t>(step));
        const std::size_t part = read_all_at(file, done, std::span(bytes).subspan(done));
        done += part;
        if (part < step)
            break;
    }
    bytes.resize(done);
    return bytes;
}

std::uint64_t copy_bytes(IFile& from, IFile& to) {
    std::vector<std::byte> block(kCopyBlock);
    std::uint64_t done = 0;
    while (const std::size_t part = read_all_at(from, done, block)) {
        Thread::check();
        write_all(to, std::span(block).first(part));
        done += part;
    }
    return done;
}

} // namespace core
