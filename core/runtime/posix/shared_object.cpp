// SPDX-License-Identifier: Apache-2.0
#include "core/runtime/shared_object.h"

#include <dlfcn.h>
#include <link.h>

// The linker finds the declaration of the program, or null when it declares no module.
// NOLINTNEXTLINE(readability-redundant-declaration): weak, as it is nowhere else
extern "C" __attribute__((weak)) const core::ModuleDeclaration core_module_declaration;

namespace core {

void* detail::load_object(const std::filesystem::path& file, std::string& reason) {
    void* const handle = ::dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (handle == nullptr) {
        const char* const text = ::dlerror();
        reason = text != nullptr ? text : "";
    }
    return handle;
}

void* detail::load_incomplete_object(const std::filesystem::path& file) noexcept {
    return ::dlopen(file.c_str(), RTLD_LAZY | RTLD_LOCAL);
}

void detail::unload_object(void* handle) noexcept {
    ::dlclose(handle);
}

bool detail::is_object_loaded(const std::filesystem::path& file) noexcept {
    void* const still = ::dlopen(file.c_str(), RTLD_LAZY | RTLD_NOLOAD);
    if (still != nullptr)
        ::dlclose(still);
    return still != nullptr;
}

const ModuleDeclaration* detail::declaration_in(void* handle) noexcept {
    const void* const found = ::dlsym(handle, "core_module_declaration");
    ::link_map* own = nullptr;
    void* holder = nullptr;
    Dl_info info{};
    if (found == nullptr || ::dlinfo(handle, RTLD_DI_LINKMAP, &own) != 0 ||
        ::dladdr1(found, &info, &holder, RTLD_DL_LINKMAP) == 0 || holder != own)
        return nullptr;
    return static_cast<const ModuleDeclaration*>(found);
}

const ModuleDeclaration* detail::declaration_of_program() noexcept {
    return &core_module_declaration;
}

const void* detail::object_at(const void* address) noexcept {
    Dl_info info{};
    return ::dladdr(address, &info) != 0 ? info.dli_fbase : nullptr;
}

std::filesystem::path detail::file_of(const void* address) {
    Dl_info info{};
    if (::dladdr(address, &info) == 0 || info.dli_fname == nullptr)
        return {};
    std::error_code error;
    auto path = std::filesystem::canonical(info.dli_fname, error);
    return error ? std::filesystem::path(info.dli_fname) : path;
}

} // namespace core
