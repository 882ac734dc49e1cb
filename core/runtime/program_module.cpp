// SPDX-License-Identifier: Apache-2.0
#include "core/runtime/program_module.h"

#include <core/runtime/errors.h>
#include <core/runtime/module.h>
#include <core/runtime/utf8.h>

#include <dlfcn.h>

#include <optional>
#include <string>
#include <string_view>

// The linker finds the declaration of the program, or null when it declares no module.
extern "C" __attribute__((weak)) const core::ModuleDeclaration core_module_declaration;

namespace core {
namespace {

bool is_good_name(std::string_view name) {
    return !name.empty() && name.front() != '.' &&
           name.find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_-.") ==
               std::string_view::npos;
}

/// What stands beside the declaration of the program.
struct ProgramModule {
    explicit ProgramModule(const std::filesystem::path& file)
        : entries(detail::joined_entries(core_module_declaration)),
          bundle((file.parent_path() / core_module_declaration.name).c_str()),
          module(entries, bundle,
                 {.name = core_module_declaration.name,
                  .version = core_module_declaration.version,
                  .file = file.string(),
                  .interfaceVersion = core_module_declaration.interfaceVersion}) {}

    ClassEntry* entries;
    SCOM_ResourceBundle bundle;
    SCOM_Module module;
};

std::optional<ProgramModule>& program_module() noexcept {
    static std::optional<ProgramModule> module;
    return module;
}

wstring text_of(std::uint32_t number) {
    return from_utf8(std::to_string(number));
}

} // namespace

void detail::check_declaration(const ModuleDeclaration& declaration, const std::filesystem::path& file) {
    if (declaration.interfaceVersion != kInterfaceVersion)
        throw_error<ModuleException>(
            messages::kModuleInterface,
            {from_utf8(file.string()), text_of(declaration.interfaceVersion), text_of(kInterfaceVersion)});
    if (!is_good_name(declaration.name))
        throw_error<ModuleException>(messages::kModuleName,
                                     {from_utf8(file.string()), from_utf8(declaration.name)});
}

ClassEntry* detail::joined_entries(const ModuleDeclaration& declaration) noexcept {
    for (std::uint32_t i = 0; i < declaration.count; ++i) {
        declaration.classes[i].next =
            i + 1 < declaration.count ? &declaration.classes[i + 1] : *declaration.declared;
    }
    return declaration.count > 0 ? declaration.classes : *declaration.declared;
}

std::filesystem::path detail::file_of(const void* address) {
    Dl_info info{};
    if (::dladdr(address, &info) == 0 || info.dli_fname == nullptr)
        return {};
    std::error_code error;
    auto path = std::filesystem::canonical(info.dli_fname, error);
    return error ? std::filesystem::path(info.dli_fname) : path;
}

void detail::begin_program_module() {
    if (&core_module_declaration == nullptr)
        return;
    const std::filesystem::path file = file_of(&core_module_declaration);
    check_declaration(core_module_declaration, file);
    ProgramModule& program = program_module().emplace(file);
    program.module.init(&core_module_declaration);
    core_module_declaration.anchor->bundle.store(&program.bundle, std::memory_order_release);
}

void detail::end_program_module() noexcept {
    if (!program_module())
        return;
    core_module_declaration.anchor->bundle.store(nullptr, std::memory_order_release);
    program_module().reset();
}

} // namespace core
