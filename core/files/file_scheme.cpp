// SPDX-License-Identifier: Apache-2.0
#include "core/files/schemes.h"

#include <core/files/errors.h>
#include <core/files/file_io.h>
#include <core/files/file_system.h>
#include <core/runtime/random.h>
#include <core/runtime/utf8.h>

#include <cerrno>
#include <exception>
#include <utility>

namespace core {
namespace {

template <class Work>
void ignore_failure(Work work) noexcept {
    try {
        work();
    } catch (const std::exception&) {
    }
}

} // namespace

std::string name_beside() {
    return ".core-" + to_utf8(to_string(new_guid()));
}

void IFileScheme::writeFile(const wstring& to, const FileWriter& write) {
    const wstring beside = to.substr(0, to.rfind(u'/') + 1) + from_utf8(name_beside());
    InterfacePtr<IFile> file = openURL(beside, OpenMode::createNew);
    try {
        write(*file);
        file->flush();
        file->close();
        moveFile(beside, to);
    } catch (...) {
        const std::exception_ptr error = std::current_exception();
        // What is reported is why the file was not written. A file that cannot be closed goes all the same.
        ignore_failure([&] { file->close(); });
        file = nullptr;
        ignore_failure([&] { remove(beside); });
        std::rethrow_exception(error);
    }
}

void IFileScheme::saveFile(IFile& content, const wstring& to) {
    writeFile(to, [&content](IFile& file) { copy_bytes(content, file); });
}

FileCapabilities IFileScheme::capabilities() const noexcept {
    return {};
}

std::optional<FileInfo> IFileScheme::describe(const wstring& url) {
    const wstring path = parseURL(url).path;
    for (FileInfo& info : findFile(url)) { // which takes it for a pattern
        if (parseURL(info.url).path == path)
            return std::move(info);
    }
    return std::nullopt;
}

void IFileScheme::makeFolder(const wstring& url) {
    unsupported(url);
}
void IFileScheme::removeFolder(const wstring& url) {
    unsupported(url);
}
void IFileScheme::copyFolder(const wstring& from, const wstring&) {
    unsupported(from);
}
void IFileScheme::moveFolder(const wstring& from, const wstring&) {
    unsupported(from);
}
void IFileScheme::setAttributes(const wstring& url, const FileAttributes&) {
    unsupported(url);
}
FileSpace IFileScheme::space(const wstring& url) {
    unsupported(url);
}

void unsupported(const wstring& url) {
    throw_file_error(messages::kFileUnsupported, url, ENOTSUP);
}

} // namespace core
