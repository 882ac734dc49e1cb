// SPDX-License-Identifier: Apache-2.0
#include "host/terminal/disk_entry.h"

#include <windows.h>

#include <memory>

namespace host {
namespace {

struct Close {
    void operator()(void* handle) const noexcept {
        if (handle != INVALID_HANDLE_VALUE)
            ::CloseHandle(handle);
    }
};

std::uint64_t joined(DWORD high, DWORD low) noexcept {
    return std::uint64_t{high} << 32U | low;
}

} // namespace

std::optional<DiskEntry> disk_entry(const std::string& path) {
    constexpr std::uint64_t kTicksPerSecond = 10'000'000; // of times that count from 1601
    constexpr std::int64_t kSecondsBefore1970 = 11'644'473'600;
    const std::unique_ptr<void, Close> file(
        ::CreateFileW(native_path(path).c_str(), FILE_READ_ATTRIBUTES,
                      FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING,
                      FILE_FLAG_BACKUP_SEMANTICS, nullptr));
    if (file.get() == INVALID_HANDLE_VALUE)
        return std::nullopt;
    BY_HANDLE_FILE_INFORMATION found{};
    if (::GetFileType(file.get()) != FILE_TYPE_DISK || ::GetFileInformationByHandle(file.get(), &found) == 0)
        return DiskEntry{.keepsNothing = true};
    const bool isFolder = (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    const std::uint64_t changed =
        joined(found.ftLastWriteTime.dwHighDateTime, found.ftLastWriteTime.dwLowDateTime);
    return DiskEntry{.isFile = !isFolder,
                     .isFolder = isFolder,
                     .size = joined(found.nFileSizeHigh, found.nFileSizeLow),
                     .modified = static_cast<std::int64_t>(changed / kTicksPerSecond) - kSecondsBefore1970,
                     .id = {found.dwVolumeSerialNumber, joined(found.nFileIndexHigh, found.nFileIndexLow)}};
}

} // namespace host
