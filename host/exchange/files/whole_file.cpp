// SPDX-License-Identifier: Apache-2.0
#include "host/exchange/files/whole_file.h"

#include <core/files/disk_file.h>
#include <core/files/errors.h>
#include <core/files/file_system.h>
#include <core/files/url.h>
#include <core/runtime/process.h>
#include <core/runtime/utf8.h>
#include <core/streams/text_file.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <ostream>

namespace host {
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
    core::throw_file_error(core::messages::kFileOpen, core::file_url(file.string()), ELOOP);
}

} // namespace

void write_text_file(const std::string& file, const WriteText& write,
                     const core::TextWriterOptions& options) {
    core::require_whole_path(file);
    const core::wstring named = core::from_utf8(file);
    if (core::split_url(named).path != named)
        return core::save_text(core::require_service<core::IFileSystem>(), named, write, options);
    if (is_device(file)) {
        const core::wstring url = core::file_url(file);
        errno = 0;
        std::ofstream bytes(file, std::ios::binary);
        if (!bytes)
            core::throw_file_error(core::messages::kFileOpen, url, errno);
        return write_text_stream(
            bytes, url, write, [&] { core::throw_file_error(core::messages::kFileWrite, url, errno); },
            options);
    }
    core::save_text(core::require_service<core::IFileSystem>(), core::file_url(followed(file).string()),
                    write, options);
}

void write_text_stream(std::ostream& bytes, const core::wstring& name, const WriteText& write,
                       const std::function<void()>& fail, const core::TextWriterOptions& options) {
    core::TextOutStream text(
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

} // namespace host
