// SPDX-License-Identifier: Apache-2.0
#include "core/runtime/folder_entries.h"

#include "core/runtime/windows/system.h"

#include <array>
#include <cerrno>
#include <cwchar>
#include <memory>
#include <new>

namespace core {

struct FolderEntries::Walk {
    std::wstring folder; // with "\" at its end
    HANDLE found = INVALID_HANDLE_VALUE;
    WIN32_FIND_DATAW entry{};
    bool first = true; // the first entry comes with the handle
    std::array<char, MAX_PATH * 3 + 1> name{};
};

namespace {

/// Why the system lists nothing. What it says of a file depends on its version.
int reason_without_entries(std::string folder) {
    const int reason = windows::last_error_number();
    while (folder.ends_with('/')) // it finds no file behind such a name
        folder.pop_back();
    const DWORD found = ::GetFileAttributesW(windows::system_path(folder).c_str());
    return found != INVALID_FILE_ATTRIBUTES && (found & FILE_ATTRIBUTE_DIRECTORY) == 0 ? ENOTDIR : reason;
}

} // namespace

FolderEntries::FolderEntries(const std::string& folder) noexcept : walk_(nullptr), error_(0) {
    try {
        auto walk = std::make_unique<Walk>();
        walk->folder = windows::system_path(folder.empty() ? "." : folder) + L'\\';
        walk->found = ::FindFirstFileW((walk->folder + L'*').c_str(), &walk->entry);
        if (walk->found == INVALID_HANDLE_VALUE)
            error_ = reason_without_entries(folder);
        else
            walk_ = walk.release();
    } catch (const std::bad_alloc&) {
        error_ = ENOMEM;
    }
}

FolderEntries::~FolderEntries() {
    if (walk_ == nullptr)
        return;
    ::FindClose(walk_->found);
    delete walk_;
}

const char* FolderEntries::next() noexcept {
    if (walk_ == nullptr)
        return nullptr;
    while (walk_->first || ::FindNextFileW(walk_->found, &walk_->entry) != 0) {
        walk_->first = false;
        const wchar_t* const name = walk_->entry.cFileName;
        if (std::wcscmp(name, L".") == 0 || std::wcscmp(name, L"..") == 0)
            continue;
        ::WideCharToMultiByte(CP_UTF8, 0, name, -1, walk_->name.data(), static_cast<int>(walk_->name.size()),
                              nullptr, nullptr);
        return walk_->name.data();
    }
    error_ = ::GetLastError() == ERROR_NO_MORE_FILES ? 0 : windows::last_error_number();
    return nullptr;
}

void FolderEntries::remove(const char* name) noexcept {
    try {
        if (walk_ != nullptr)
            (void)::DeleteFileW((walk_->folder + windows::to_system(name)).c_str());
    } catch (const std::bad_alloc&) { // it stays
    }
}

} // namespace core
