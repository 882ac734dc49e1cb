// SPDX-License-Identifier: Apache-2.0
#include "core/runtime/shared_object.h"

#include "core/runtime/windows/system.h"

#include <memory>

namespace core {
namespace {

constexpr DWORD kLongestPath = 32768;

::HMODULE module_of(void* handle) noexcept {
    return static_cast<::HMODULE>(handle);
}

/// What the system says of an error, without the line end that it adds.
std::string message_of(DWORD error) {
    wchar_t* text = nullptr;
    const DWORD size = ::FormatMessageW(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM |
                                            FORMAT_MESSAGE_IGNORE_INSERTS,
                                        nullptr, error, 0, reinterpret_cast<wchar_t*>(&text), 0, nullptr);
    const std::unique_ptr<wchar_t, decltype(&::LocalFree)> owned(text, &::LocalFree);
    std::string message = windows::from_system(std::wstring_view(text, size));
    while (!message.empty() && (message.back() == '\n' || message.back() == '\r'))
        message.pop_back();
    return message;
}

} // namespace

void* detail::load_object(const std::filesystem::path& file, std::string& reason) {
    // What it is linked with is looked for beside it, not beside the program.
    const ::HMODULE handle = ::LoadLibraryExW(file.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
    if (handle == nullptr)
        reason = message_of(::GetLastError());
    return handle;
}

void* detail::load_incomplete_object(const std::filesystem::path& file) noexcept {
    // As data: its constants can be read, and nothing of it runs.
    return ::LoadLibraryExW(file.c_str(), nullptr, DONT_RESOLVE_DLL_REFERENCES);
}

void detail::unload_object(void* handle) noexcept {
    ::FreeLibrary(module_of(handle));
}

bool detail::is_object_loaded(const std::filesystem::path& file) noexcept {
    ::HMODULE found = nullptr;
    return ::GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT, file.c_str(), &found) != 0;
}

const ModuleDeclaration* detail::declaration_in(void* handle) noexcept {
    // The system looks into the file itself alone.
    return reinterpret_cast<const ModuleDeclaration*>(
        ::GetProcAddress(module_of(handle), "core_module_declaration"));
}

const ModuleDeclaration* detail::declaration_of_program() noexcept {
    return declaration_in(::GetModuleHandleW(nullptr));
}

const void* detail::object_at(const void* address) noexcept {
    ::HMODULE found = nullptr;
    ::GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS |
                             GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                         static_cast<const wchar_t*>(address), &found);
    return found;
}

std::filesystem::path detail::file_of(const void* address) {
    auto* const object = const_cast<void*>(object_at(address));
    if (object == nullptr)
        return {};
    std::wstring path(kLongestPath, L'\0');
    path.resize(::GetModuleFileNameW(module_of(object), path.data(), kLongestPath));
    return path;
}

} // namespace core
