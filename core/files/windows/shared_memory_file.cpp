// SPDX-License-Identifier: Apache-2.0
#include "core/files/shared_memory_file.h"

#include "core/files/disk_node.h"
#include "core/files/schemes.h"
#include "core/files/windows/open_handle.h"

#include <core/files/errors.h>

#include <cerrno>
#include <new>

namespace core {
namespace {

using windows::lock_whole;

// What stays in memory as long as there is room.
constexpr DWORD kFlags = FILE_ATTRIBUTE_TEMPORARY | FILE_ATTRIBUTE_NOT_CONTENT_INDEXED;

/// Whether a name still leads to the file.
bool is_linked(int descriptor) noexcept {
    FILE_STANDARD_INFO info{};
    return ::GetFileInformationByHandleEx(windows::handle_of(descriptor), FileStandardInfo, &info,
                                          sizeof info) != 0 &&
           info.DeletePending == FALSE && info.NumberOfLinks > 0;
}

Descriptor open_there(const std::string& path, DWORD access) {
    return windows::open_shared(path, {.access = access, .flags = kFlags});
}

} // namespace

SharedMemoryUse SharedMemoryUse::join(const std::string& path, const wstring& url, bool readOnly) {
    for (;;) {
        removeUnused(path);
        SharedMemoryUse use(open_there(path, readOnly ? GENERIC_READ : GENERIC_READ | GENERIC_WRITE), path);
        if (!use && errno == ENOENT)
            return use;
        const int descriptor = use.descriptor_.number();
        if (!use || !lock_whole(descriptor, false))
            throw_file_error(messages::kFileOpen, url, errno);
        if (is_linked(descriptor))
            return use;
    }
}

SharedMemoryUse SharedMemoryUse::make(const std::string& path, const wstring& url) {
    SharedMemoryUse use(
        windows::open_shared(
            path, {.access = GENERIC_READ | GENERIC_WRITE, .disposition = CREATE_NEW, .flags = kFlags}),
        path);
    if (!use && errno == EEXIST)
        return use;
    const int descriptor = use.descriptor_.number();
    if (!use || !lock_whole(descriptor, false))
        throw_file_error(messages::kFileOpen, url, errno);
    if (!is_linked(descriptor)) // it was taken for an unused one before it was locked
        (void)use.descriptor_.close();
    return use;
}

void SharedMemoryUse::leave(int descriptor, const std::string& path) noexcept {
    if (descriptor >= 0 && lock_whole(descriptor, true) && is_linked(descriptor))
        (void)remove_one_file(path);
}

void SharedMemoryUse::removeUnused(const std::string& path) noexcept {
    try {
        const Descriptor found = open_there(path, GENERIC_READ);
        leave(found.number(), path);
    } catch (const std::bad_alloc&) { // the next one does it
    }
}

void SharedMemoryFile::truncate(std::uint64_t length) {
    // Disks that reserve what a file grows by refuse it themselves.
    const std::uint64_t before = this->length();
    if (length > before && length <= kMaxFileLength && length - before > disk_space(path_, url()).available)
        throw_file_error(messages::kFileWrite, url(), ENOSPC);
    DescriptorFile::truncate(length);
}

void SharedMemoryFile::close() {
    SharedMemoryUse::leave(descriptor(), path_);
    DescriptorFile::close();
}

} // namespace core
