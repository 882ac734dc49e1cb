// SPDX-License-Identifier: Apache-2.0
#include "core/runtime/native_path.h"

#include <core/exchange/whole_file.h>
#include <core/files/disk_file.h>
#include <core/files/errors.h>
#include <core/files/file_io.h>
#include <core/files/file_system.h>
#include <core/files/url.h>
#include <core/runtime/process.h>
#include <core/runtime/utf8.h>
#include <core/streams/text_file.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <ostream>

namespace core {
namespace {

namespace fs = std::filesystem;

/// Not to be replaced: something that takes bytes without keeping them.
bool is_device(const fs::path& path) {
    std::error_code ignored;
    const fs::file_status status = fs::status(path, ignored);
    return fs::exists(status) && !fs::is_regular_file(status) && !fs::is_directory(status);
}

/// What a link leads to, whether it is there or not; the name itself if it is not a link.
fs::path followed(const fs::path& file) {
    fs::path path = file;
    std::error_code isNoLink;
    for (int links = 0; links < 40; ++links) { // as many as the system follows
        const fs::path next = fs::read_symlink(path, isNoLink);
        if (isNoLink)
            return path;
        path = path.parent_path() / next;
    }
    throw_file_error(messages::kFileOpen, file_url(path_text(file)), ELOOP);
}

} // namespace

void write_whole_file(const std::string& file, const std::function<void(const ByteWriter&)>& write) {
    const wstring named = from_utf8(file);
    const bool isUrl = split_url(named).path != named; // which its scheme looks at
    if (!isUrl || file.find('\0') != std::string::npos)
        require_whole_path(file);
    if (isUrl || !is_device(native_path(file))) {
        require_service<IFileSystem>().writeFile(
            isUrl ? named : file_url(path_text(followed(native_path(file)))), [&write](IFile& whole) {
                write([&whole](std::span<const std::byte> bytes) { write_all(whole, bytes); });
            });
        return;
    }
    const wstring url = file_url(file);
    errno = 0;
    std::ofstream device(native_path(file), std::ios::binary);
    if (!device)
        throw_file_error(messages::kFileOpen, url, errno);
    const auto fail = [&url] { throw_file_error(messages::kFileWrite, url, errno); };
    write([&](std::span<const std::byte> bytes) {
        if (!device.write(reinterpret_cast<const char*>(bytes.data()), std::ssize(bytes)))
            fail();
    });
    if (!device.flush())
        fail();
}

void write_text_file(const std::string& file, const WriteText& write, const TextWriterOptions& options) {
    write_whole_file(file, [&](const ByteWriter& bytes) {
        TextOutStream text(bytes, file_url(file), options);
        write(text);
        text.finish();
    });
}

void write_text_stream(std::ostream& bytes, const wstring& name, const WriteText& write,
                       const std::function<void()>& fail, const TextWriterOptions& options) {
    TextOutStream text(
        [&](std::span<const std::byte> piece) {
            if (!bytes.write(reinterpret_cast<const char*>(piece.data()), std::ssize(piece)))
                fail();
        },
        name, options);
    write(text);
    text.finish();
    if (!bytes.flush())
        fail();
}

} // namespace core
