// SPDX-License-Identifier: Apache-2.0
#include "core/runtime/immortal.h"
#include "core/runtime/module_code.h"
#include "core/runtime/modules_lock.h"
#include "core/runtime/native_path.h"
#include "core/runtime/program_module.h"
#include "core/runtime/shared_object.h"
#include "core/runtime/system_reason.h"

#include <core/runtime/errors.h>
#include <core/runtime/live_counter.h>
#include <core/runtime/loaded_module.h>
#include <core/runtime/utf8.h>

#include <algorithm>
#include <mutex>
#include <new>
#include <string>
#include <utility>

namespace core {
namespace {

/// Gives the system's handle back unless it is kept.
class Handle {
  public:
    explicit Handle(void* handle) noexcept : handle_(handle) {}
    Handle(Handle&& other) noexcept : handle_(other.keep()) {}
    Handle& operator=(Handle&&) = delete;
    ~Handle() {
        if (handle_ != nullptr)
            detail::unload_object(handle_);
    }
    [[nodiscard]] void* get() const noexcept { return handle_; }
    void* keep() noexcept { return std::exchange(handle_, nullptr); }

  private:
    void* handle_;
};

wstring text_of(const std::filesystem::path& path) {
    return from_utf8(path_text(path));
}

/// Loads a file. One that the system refuses may be a module for another version of the library, whose
/// functions are not here: then that is what the error says.
Handle open_file(const std::filesystem::path& file) {
    std::string reason;
    if (void* const handle = detail::load_object(file, reason))
        return Handle(handle);
    const Handle incomplete(detail::load_incomplete_object(file));
    if (incomplete.get() != nullptr) {
        if (const auto* const declaration = detail::declaration_in(incomplete.get()))
            detail::check_declaration(*declaration, file);
    }
    throw_error<ModuleException>(messages::kModuleNotLoadable, {text_of(file), from_utf8(reason)});
}

} // namespace

/// The modules that are loaded. The lock is held while the system loads and unloads.
struct LoadedModule::All {
    std::mutex lock;
    std::vector<Use> modules;
};

LoadedModule::All& LoadedModule::all() noexcept {
    static detail::Immortal<All> modules; // processes may end after the library's statics
    return *modules;
}

LoadedModule::LoadedModule(const ModuleDeclaration& declaration, const std::filesystem::path& file,
                           void* handle)
    : declaration_(declaration), file_(file), handle_(handle), entries_(detail::joined_entries(declaration)),
      bundle_(path_text(file.parent_path() / declaration.name).c_str()),
      module_(entries_, bundle_,
              {.name = declaration.name,
               .version = declaration.version,
               .file = path_text(file),
               .interfaceVersion = declaration.interfaceVersion,
               .leaves = true}),
      code_(std::make_unique<detail::ModuleCode>(*declaration.anchor)) {
    module_.init(handle);
    declaration.anchor->leaves.store(true);
    declaration.anchor->bundle.store(&bundle_, std::memory_order_release);
}

LoadedModule::~LoadedModule() {
    const std::lock_guard alone(detail::modules_lock());
    declaration_.anchor->bundle.store(nullptr, std::memory_order_release);
    module_.term();
    const ModuleAnchor& anchor = *declaration_.anchor;
    bool isFree = false;
    try {
        isFree = live_report(anchor).empty();
    } catch (const std::bad_alloc&) {
    }
    if (!isFree) {                          // what lives would run code that is not there
        static_cast<void>(code_.release()); // callables go on counting
        return;
    }
    detail::unload_object(handle_);
    detail::forget_live_counters(anchor, !detail::is_object_loaded(file_));
}

LoadedModule::Use LoadedModule::load(const std::filesystem::path& file) {
    std::error_code error;
    const std::filesystem::path path = std::filesystem::canonical(file, error);
    if (error)
        throw_error<ModuleException>(messages::kModuleMissing,
                                     {text_of(file), system_reason(error.default_error_condition().value())});
    const std::lock_guard guard(all().lock);
    Handle handle = open_file(path);
    const ModuleDeclaration* const declaration = detail::declaration_in(handle.get());
    if (declaration == nullptr)
        throw_error<ModuleException>(messages::kModuleNone, {text_of(path)});
    std::vector<Use>& modules = all().modules;
    const auto place =
        std::ranges::find(modules, declaration, [](const Use& use) { return &use->declaration_; });
    if (place != modules.end())
        return *place;
    detail::check_declaration(*declaration, path);
    modules.reserve(modules.size() + 1);
    std::unique_ptr<LoadedModule> made(new LoadedModule(*declaration, path, handle.get()));
    handle.keep(); // the module has it from here on
    modules.push_back(std::move(made));
    return modules.back();
}

void LoadedModule::unload(Use use) noexcept {
    const std::lock_guard guard(all().lock);
    const bool last = use.use_count() == 2; // this one and that of the list
    LoadedModule* const module = use.get();
    use.reset();
    if (last)
        std::erase_if(all().modules, [module](const Use& held) { return held.get() == module; });
}

bool LoadedModule::isLast(const Use& use) noexcept {
    const std::lock_guard guard(all().lock);
    return use.use_count() == 2;
}

std::vector<LiveClass> LoadedModule::living() const {
    const std::lock_guard alone(detail::modules_lock()); // who goes through the modules holds their types
    return live_report(*declaration_.anchor);
}

} // namespace core
