// SPDX-License-Identifier: Apache-2.0
#include "core/files/disk_node.h"

#include "core/files/disk_path.h"
#include "core/files/schemes.h"
#include "core/runtime/folder_entries.h"
#include "core/runtime/windows/system.h"

#include <core/files/errors.h>

#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>

namespace core {
namespace {

using windows::fail;
using windows::Handle;
using windows::system_path;

constexpr std::int64_t kTicksPerSecond = 10'000'000; // of the system's times, which count from 1601
constexpr std::int64_t kTicksBefore1970 = 116'444'736'000'000'000;
constexpr unsigned kWritable = 0222;
constexpr unsigned kReadable = 0555; // what has no list of rights in POSIX can be read and run by everybody

std::uint64_t joined(DWORD high, DWORD low) noexcept {
    return std::uint64_t{high} << 32U | low;
}

::timespec time_of(const FILETIME& time) noexcept {
    const auto ticks =
        static_cast<std::int64_t>(joined(time.dwHighDateTime, time.dwLowDateTime)) - kTicksBefore1970;
    const std::int64_t seconds = ticks / kTicksPerSecond - (ticks % kTicksPerSecond < 0 ? 1 : 0);
    ::timespec result{};
    result.tv_sec = static_cast<decltype(result.tv_sec)>(seconds);
    result.tv_nsec = static_cast<decltype(result.tv_nsec)>((ticks - seconds * kTicksPerSecond) * 100);
    return result;
}

FILETIME system_time(const ::timespec& time) noexcept {
    const auto ticks =
        static_cast<std::uint64_t>(time.tv_sec * kTicksPerSecond + time.tv_nsec / 100 + kTicksBefore1970);
    return {static_cast<DWORD>(ticks), static_cast<DWORD>(ticks >> 32U)};
}

/// What memory was missing for says so in errno.
template <class Work>
bool attempt(Work work) noexcept {
    try {
        return work();
    } catch (const std::bad_alloc&) {
        errno = ENOMEM;
        return false;
    }
}

Handle open_node(const std::string& path, DWORD access, Links links) {
    const DWORD flags =
        FILE_FLAG_BACKUP_SEMANTICS | (links == Links::themselves ? FILE_FLAG_OPEN_REPARSE_POINT : 0);
    return Handle(::CreateFileW(system_path(path).c_str(), access,
                                FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                OPEN_EXISTING, flags, nullptr));
}

bool describe(const std::string& path, Links links, DiskNode& node) {
    const Handle handle = open_node(path, FILE_READ_ATTRIBUTES, links);
    if (!handle)
        return windows::fail_at(path);
    if (::GetFileType(handle.get()) != FILE_TYPE_DISK) {
        node.kind = DiskNode::Kind::other; // a device such as the console
        return true;
    }
    BY_HANDLE_FILE_INFORMATION found{};
    if (::GetFileInformationByHandle(handle.get(), &found) == 0)
        return fail();
    const auto has = [&found](DWORD attribute) { return (found.dwFileAttributes & attribute) != 0; };
    node.kind = links == Links::themselves && has(FILE_ATTRIBUTE_REPARSE_POINT) ? DiskNode::Kind::link
                : has(FILE_ATTRIBUTE_DIRECTORY)                                 ? DiskNode::Kind::folder
                                                                                : DiskNode::Kind::file;
    node.length = joined(found.nFileSizeHigh, found.nFileSizeLow);
    node.accessed = time_of(found.ftLastAccessTime);
    node.modified = time_of(found.ftLastWriteTime);
    node.permissions = kReadable | (has(FILE_ATTRIBUTE_READONLY) ? 0 : kWritable);
    node.disk = found.dwVolumeSerialNumber;
    node.number = joined(found.nFileIndexHigh, found.nFileIndexLow);
    return true;
}

/// Renames even over a file that somebody has open, where the system and the disk can: that one goes on with
/// the old file.
bool rename_over_open(HANDLE file, const std::wstring& to) {
    constexpr auto kRename = static_cast<FILE_INFO_BY_HANDLE_CLASS>(22); // FileRenameInfoEx
    constexpr DWORD kReplace = 1; // FILE_RENAME_REPLACE_IF_EXISTS and FILE_RENAME_POSIX_SEMANTICS
    constexpr DWORD kPosix = 2;
    const std::size_t bytes = to.size() * sizeof(wchar_t);
    const std::size_t size = sizeof(FILE_RENAME_INFO) + bytes;
    const std::unique_ptr<void, decltype(&std::free)> memory(std::calloc(1, size), &std::free);
    if (memory == nullptr)
        throw std::bad_alloc();
    auto* const info = static_cast<FILE_RENAME_INFO*>(memory.get());
    const DWORD flags = kReplace | kPosix; // they stand where the older form of the call has one bool
    std::memcpy(info, &flags, sizeof flags);
    info->FileNameLength = static_cast<DWORD>(bytes);
    std::memcpy(info->FileName, to.data(), bytes);
    return ::SetFileInformationByHandle(file, kRename, info, static_cast<DWORD>(size)) != 0;
}

/// Removes all that lies in a folder.
bool remove_below(const std::string& folder) {
    FolderEntries entries(folder);
    while (const char* const name = entries.next()) {
        const std::string path = folder + '/' + name;
        const auto node = disk_node(path, Links::themselves);
        const bool isFolder = node && node->kind == DiskNode::Kind::folder;
        if (!(isFolder ? remove_whole_folder(path) : remove_one_file(path)) && errno != ENOENT)
            return false;
    }
    errno = entries.error();
    return errno == 0;
}

/// The system only says that it is not allowed to put a file in the place of a folder, or a folder in that of
/// a file.
int reason_in_the_way(const std::string& from, const DiskNode& old) noexcept {
    const auto node = disk_node(from, Links::themselves);
    const bool isFolder = node && node->kind == DiskNode::Kind::folder;
    const bool wasFolder = old.kind == DiskNode::Kind::folder;
    return !node || isFolder == wasFolder ? EACCES : wasFolder ? EISDIR : ENOTDIR;
}

} // namespace

std::optional<DiskNode> disk_node(const std::string& path, Links links) noexcept {
    DiskNode node;
    if (!attempt([&] { return describe(path, links, node); }))
        return std::nullopt;
    return node;
}

bool make_one_folder(const std::string& path, unsigned) noexcept {
    return attempt([&] {
        return ::CreateDirectoryW(system_path(path).c_str(), nullptr) != 0 || windows::fail_at(path);
    });
}

bool remove_one_folder(const std::string& path) noexcept {
    return attempt([&] { return ::RemoveDirectoryW(system_path(path).c_str()) != 0 || fail(); });
}

bool remove_one_file(const std::string& path) noexcept {
    return attempt([&] {
        const std::wstring name = system_path(path);
        if (::DeleteFileW(name.c_str()) != 0)
            return true;
        const int reason = windows::last_error_number();
        // Elsewhere a file that is read-only goes as any other.
        const DWORD old = ::GetFileAttributesW(name.c_str());
        if (old != INVALID_FILE_ATTRIBUTES && (old & FILE_ATTRIBUTE_READONLY) != 0 &&
            ::SetFileAttributesW(name.c_str(), old & ~DWORD{FILE_ATTRIBUTE_READONLY}) != 0) {
            if (::DeleteFileW(name.c_str()) != 0)
                return true;
            (void)::SetFileAttributesW(name.c_str(), old);
        }
        // A link to a folder is a folder to the system.
        const auto node = disk_node(path, Links::themselves);
        const bool isLink = node && node->kind == DiskNode::Kind::link;
        errno = reason;
        return isLink && ::RemoveDirectoryW(name.c_str()) != 0;
    });
}

bool remove_whole_folder(const std::string& path) noexcept {
    return attempt([&] { return remove_below(path) && remove_one_folder(path); });
}

bool rename_node(const std::string& from, const std::string& to) noexcept {
    return attempt([&] {
        const std::wstring source = system_path(from);
        const std::wstring target = system_path(to);
        const auto old = disk_node(to, Links::themselves);
        if (old && old->kind != DiskNode::Kind::folder) {
            const Handle file = open_node(from, DELETE | GENERIC_WRITE, Links::themselves);
            if (file && rename_over_open(file.get(), target))
                return ::FlushFileBuffers(file.get()) != 0 || fail();
        }
        if (::MoveFileExW(source.c_str(), target.c_str(),
                          MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != 0)
            return true;
        const int reason = windows::last_error_number();
        errno = old && reason == EACCES ? reason_in_the_way(from, *old) : reason;
        return false;
    });
}

bool set_permissions(const std::string& path, unsigned permissions) noexcept {
    return attempt([&] {
        const std::wstring name = system_path(path);
        const DWORD old = ::GetFileAttributesW(name.c_str());
        if (old == INVALID_FILE_ATTRIBUTES)
            return fail();
        const DWORD attributes = (permissions & kWritable) != 0 ? old & ~DWORD{FILE_ATTRIBUTE_READONLY}
                                                                : old | FILE_ATTRIBUTE_READONLY;
        return attributes == old || ::SetFileAttributesW(name.c_str(), attributes) != 0 || fail();
    });
}

bool set_times(const std::string& path, const std::optional<::timespec>& accessed,
               const std::optional<::timespec>& modified) noexcept {
    return attempt([&] {
        const Handle handle = open_node(path, FILE_WRITE_ATTRIBUTES, Links::followed);
        FILETIME times[2] = {};
        if (accessed)
            times[0] = system_time(*accessed);
        if (modified)
            times[1] = system_time(*modified);
        return (handle && ::SetFileTime(handle.get(), nullptr, accessed ? times : nullptr,
                                        modified ? times + 1 : nullptr) != 0) ||
               fail();
    });
}

FileSpace disk_space(const std::string& path, const wstring& url) {
    // The system asks for a folder, which a file is not.
    const auto node = disk_node(path, Links::followed);
    const bool isFolder = node && node->kind == DiskNode::Kind::folder;
    ULARGE_INTEGER available{};
    ULARGE_INTEGER total{};
    const std::wstring folder = system_path(isFolder ? path : folder_of(path));
    if (!node ||
        ::GetDiskFreeSpaceExW(folder.empty() ? nullptr : folder.c_str(), &available, &total, nullptr) == 0)
        throw_file_error(messages::kFileRead, url, node ? windows::last_error_number() : errno);
    return {.total = total.QuadPart, .available = available.QuadPart};
}

// To flush a whole disk is a right of administrators, so files are flushed one by one.
OpenDisk::OpenDisk(const std::string&) : folder_(-1) {}

OpenDisk::~OpenDisk() = default;

bool OpenDisk::flushesFiles() const noexcept {
    return folder_ >= 0;
}

int OpenDisk::flush() const noexcept {
    return 0;
}

} // namespace core
