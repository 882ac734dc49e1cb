// SPDX-License-Identifier: Apache-2.0
#include "host/terminal/byte_input.h"

#include "host/terminal/disk_entry.h"
#include "host/terminal/system_terminal.h"

#include <core/files/disk_file.h>
#include <core/files/errors.h>
#include <core/runtime/threads/thread.h>
#include <core/runtime/utf8.h>
#include <core/streams/text_file.h>

#include <algorithm>
#include <cerrno>
#include <iostream>

namespace host {
namespace {

constexpr const char* kStandardInput = "-";

/// The size of a regular file, else 0.
std::uint64_t size_of_input(const std::string& name, std::istream& in) {
    if (name == kStandardInput)
        return in.rdbuf() == std::cin.rdbuf() ? size_of_standard_input() : 0;
    const auto entry = disk_entry(name);
    return entry && entry->isFile ? entry->size : 0;
}

} // namespace

ByteInput::ByteInput(Console& console, std::string file)
    : name_(std::move(file)), in_(name_ == kStandardInput ? console.in : file_),
      progress_(console, name_, size_of_input(name_, console.in)) {
    if (name_ == kStandardInput)
        return;
    errno = 0;
    if (name_.find('\0') != std::string::npos)
        errno = EINVAL;
    else
        file_.open(native_path(name_), std::ios::binary);
    const bool opened = file_.is_open();
    if (const auto entry = opened ? disk_entry(name_) : std::nullopt; entry && entry->isFolder)
        errno = EISDIR;
    if (!file_.is_open() && errno == EINTR)
        core::Thread::check();
    if (!file_.is_open() || errno == EISDIR)
        core::throw_file_error(core::messages::kFileOpen, core::file_url(name_), errno);
}

/// What the stream has at hand, else what the system brings: only that way does a signal end the wait.
std::size_t ByteInput::readStandardInput(std::span<std::byte> bytes) {
    const std::streamsize ready = std::min(in_.rdbuf()->in_avail(), std::ssize(bytes));
    if (ready > 0)
        return static_cast<std::size_t>(in_.rdbuf()->sgetn(reinterpret_cast<char*>(bytes.data()), ready));
    for (;;) {
        if (const auto count = read_standard_input(bytes))
            return *count;
        if (errno != EINTR)
            core::throw_file_error(core::messages::kFileRead, core::from_utf8(name_), errno);
        core::Thread::check();
    }
}

std::size_t ByteInput::read(std::span<std::byte> bytes) {
    if (in_.rdbuf() == std::cin.rdbuf()) {
        const std::size_t count = readStandardInput(bytes);
        progress_.add(count);
        return count;
    }
    errno = 0;
    in_.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    if (in_.bad())
        core::throw_file_error(core::messages::kFileRead, core::from_utf8(name_), errno);
    const auto count = static_cast<std::size_t>(in_.gcount());
    if (in_.eof())
        file_.close(); // the result may be to replace it, which not every disk does while it is open
    progress_.add(count);
    return count;
}

core::wstring read_text(Console& console, const std::string& file, const core::TextReaderOptions& options) {
    ByteInput bytes(console, file);
    core::TextInStream in([&](std::span<std::byte> piece) { return bytes.read(piece); },
                          core::from_utf8(file), options);
    return core::read_text(in);
}

} // namespace host
