// SPDX-License-Identifier: Apache-2.0
#pragma once

// What all code for Windows needs of the system: its functions, its texts and its errors.

#include <windows.h>

#include <filesystem>
#include <string>
#include <string_view>
#include <utility>

namespace core::windows {

/// The number of <cerrno> that means what an error of the system means; EIO for one without such a number.
[[nodiscard]] int error_number(DWORD error) noexcept;
/// The same for the latest failure of the calling thread.
[[nodiscard]] int last_error_number() noexcept;
/// Puts it into errno, and returns false.
bool fail() noexcept;
/// The same for a call with a path. A name that is longer than disks take is ENAMETOOLONG, which the system
/// tells as one that is missing or as one that cannot be.
bool fail_at(std::string_view path);

/// A text in UTF-8 in the system's units, which are UTF-16, and back.
[[nodiscard]] std::wstring to_system(std::string_view text);
[[nodiscard]] std::string from_system(std::wstring_view text);

/// A path as the functions of the system take it: one that is too long for their plain form is made absolute
/// and marked.
[[nodiscard]] std::wstring system_path(const std::string& path);

/// A handle of the system, closed at the end; null and INVALID_HANDLE_VALUE stand for none.
class Handle {
  public:
    explicit Handle(HANDLE handle = nullptr) noexcept : handle_(handle) {}
    Handle(Handle&& other) noexcept : handle_(other.take()) {}
    Handle& operator=(Handle&& other) noexcept {
        std::swap(handle_, other.handle_);
        return *this;
    }
    ~Handle() {
        if (*this)
            ::CloseHandle(handle_);
    }

    explicit operator bool() const noexcept { return handle_ != nullptr && handle_ != INVALID_HANDLE_VALUE; }
    [[nodiscard]] HANDLE get() const noexcept { return handle_; }
    [[nodiscard]] HANDLE take() noexcept {
        const HANDLE handle = handle_;
        handle_ = nullptr;
        return handle;
    }

  private:
    HANDLE handle_;
};

} // namespace core::windows
