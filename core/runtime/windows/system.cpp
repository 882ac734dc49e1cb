// SPDX-License-Identifier: Apache-2.0
#include "core/runtime/windows/system.h"

#include <algorithm>
#include <cerrno>
#include <iterator>

namespace core::windows {
namespace {

constexpr std::size_t kMostPlain =
    240; // units; a folder's path must leave room for a name of 8 and 3 letters

/// An error of the system and the number of <cerrno> that means the same.
struct Meaning {
    DWORD error;
    int number;
};

constexpr Meaning kMeanings[] = {
    {ERROR_FILE_NOT_FOUND, ENOENT},
    {ERROR_PATH_NOT_FOUND, ENOENT},
    {ERROR_INVALID_DRIVE, ENOENT},
    {ERROR_BAD_NETPATH, ENOENT},
    {ERROR_BAD_NET_NAME, ENOENT},
    {ERROR_MOD_NOT_FOUND, ENOENT},
    {ERROR_ACCESS_DENIED, EACCES},
    {ERROR_SHARING_VIOLATION, EACCES},
    {ERROR_LOCK_VIOLATION, EACCES},
    {ERROR_CANNOT_MAKE, EACCES},
    {ERROR_DELETE_PENDING, EACCES},
    {ERROR_FILE_EXISTS, EEXIST},
    {ERROR_ALREADY_EXISTS, EEXIST},
    {ERROR_DIR_NOT_EMPTY, ENOTEMPTY},
    {ERROR_DIRECTORY, ENOTDIR},
    {ERROR_NOT_SAME_DEVICE, EXDEV},
    {ERROR_DISK_FULL, ENOSPC},
    {ERROR_HANDLE_DISK_FULL, ENOSPC},
    {ERROR_FILE_TOO_LARGE, EFBIG},
    {ERROR_WRITE_PROTECT, EROFS},
    {ERROR_BUSY, EBUSY},
    {ERROR_CURRENT_DIRECTORY, EBUSY},
    {ERROR_TOO_MANY_OPEN_FILES, EMFILE},
    {ERROR_NOT_ENOUGH_MEMORY, ENOMEM},
    {ERROR_OUTOFMEMORY, ENOMEM},
    {ERROR_COMMITMENT_LIMIT, ENOMEM},
    {ERROR_BROKEN_PIPE, EPIPE},
    {ERROR_NO_DATA, EPIPE},
    {ERROR_FILENAME_EXCED_RANGE, ENAMETOOLONG},
    {ERROR_INVALID_HANDLE, EBADF},
    {ERROR_INVALID_NAME, EINVAL},
    {ERROR_BAD_PATHNAME, EINVAL},
    {ERROR_INVALID_PARAMETER, EINVAL},
    {ERROR_NEGATIVE_SEEK, EINVAL},
    {ERROR_NOT_SUPPORTED, ENOTSUP},
    {ERROR_CALL_NOT_IMPLEMENTED, ENOTSUP},
    {ERROR_INVALID_FUNCTION, ENOTSUP},
};

} // namespace

int error_number(DWORD error) noexcept {
    const auto* const meaning = std::ranges::find(kMeanings, error, &Meaning::error);
    return meaning != std::end(kMeanings) ? meaning->number : EIO;
}

int last_error_number() noexcept {
    return error_number(::GetLastError());
}

bool fail() noexcept {
    errno = last_error_number();
    return false;
}

bool fail_at(std::string_view path) {
    constexpr std::size_t kLongestName = 255; // units
    const int reason = last_error_number();
    bool isTooLong = false;
    std::size_t length = 0;
    for (const wchar_t unit : to_system(path)) {
        length = unit == L'/' || unit == L'\\' ? 0 : length + 1;
        isTooLong = isTooLong || length > kLongestName;
    }
    errno = isTooLong && (reason == ENOENT || reason == EINVAL) ? ENAMETOOLONG : reason;
    return false;
}

std::wstring to_system(std::string_view text) {
    const int size = static_cast<int>(text.size());
    std::wstring units(
        static_cast<std::size_t>(::MultiByteToWideChar(CP_UTF8, 0, text.data(), size, nullptr, 0)), L'\0');
    ::MultiByteToWideChar(CP_UTF8, 0, text.data(), size, units.data(), static_cast<int>(units.size()));
    return units;
}

std::string from_system(std::wstring_view text) {
    const int size = static_cast<int>(text.size());
    std::string bytes(static_cast<std::size_t>(
                          ::WideCharToMultiByte(CP_UTF8, 0, text.data(), size, nullptr, 0, nullptr, nullptr)),
                      '\0');
    ::WideCharToMultiByte(CP_UTF8, 0, text.data(), size, bytes.data(), static_cast<int>(bytes.size()),
                          nullptr, nullptr);
    return bytes;
}

std::wstring system_path(const std::string& path) {
    std::wstring units = to_system(path);
    if (units.size() < kMostPlain)
        return units;
    std::wstring whole(32768, L'\0'); // the longest that there is
    whole.resize(::GetFullPathNameW(units.c_str(), static_cast<DWORD>(whole.size()), whole.data(), nullptr));
    if (whole.empty() || whole.starts_with(L"\\\\?\\"))
        return units;
    return whole.starts_with(L"\\\\") ? L"\\\\?\\UNC" + whole.substr(1) : L"\\\\?\\" + whole;
}

} // namespace core::windows
