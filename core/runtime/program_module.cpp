// SPDX-License-Identifier: Apache-2.0
#include "core/runtime/program_module.h"

#include "core/runtime/native_path.h"
#include "core/runtime/shared_object.h"

#include <core/runtime/errors.h>
#include <core/runtime/module.h>
#include <core/runtime/utf8.h>

#include <optional>
#include <string>
#include <string_view>

namespace core {
namespace {

bool is_good_name(std::string_view name) {
    return !name.empty() && name.front() != '.' &&
           name.find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_-.") ==
               std::string_view::npos;
}

/// What stands beside the declaration of the program.
struct ProgramModule {
    ProgramModule(const ModuleDeclaration& declaration, const std::filesystem::path& file)
        : anchor(*declaration.anchor), entries(detail::joined_entries(declaration)),
          bundle(path_text(file.parent_path() / declaration.name).c_str()),
          module(entries, bundle,
                 {.name = declaration.name,
                  .version = declaration.version,
                  .file = path_text(file),
                  .interfaceVersion = declaration.interfaceVersion}) {}

    ModuleAnchor& anchor;
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
            {from_utf8(path_text(file)), text_of(declaration.interfaceVersion), text_of(kInterfaceVersion)});
    if (!is_good_name(declaration.name))
        throw_error<ModuleException>(messages::kModuleName,
                                     {from_utf8(path_text(file)), from_utf8(declaration.name)});
}

ClassEntry* detail::joined_entries(const ModuleDeclaration& declaration) noexcept {
    for (std::uint32_t i = 0; i < declaration.count; ++i) {
        declaration.classes[i].next =
            i + 1 < declaration.count ? &declaration.classes[i + 1] : *declaration.declared;
    }
    return declaration.count > 0 ? declaration.classes : *declaration.declared;
}

void detail::begin_program_module() {
    const ModuleDeclaration* const declaration = declaration_of_program();
    if (declaration == nullptr)
        return;
    const std::filesystem::path file = file_of(declaration);
    check_declaration(*declaration, file);
    ProgramModule& program = program_module().emplace(*declaration, file);
    program.module.init(declaration);
    program.anchor.bundle.store(&program.bundle, std::memory_order_release);
}

void detail::end_program_module() noexcept {
    if (!program_module())
        return;
    program_module()->anchor.bundle.store(nullptr, std::memory_order_release);
    program_module().reset();
}

} // namespace core
