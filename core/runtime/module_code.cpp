// SPDX-License-Identifier: Apache-2.0
#include "core/runtime/module_code.h"

#include "core/runtime/immortal.h"
#include "core/runtime/shared_object.h"

#include <core/runtime/code_hold.h>

#include <algorithm>
#include <atomic>
#include <mutex>
#include <vector>

namespace core {
namespace detail {
namespace {

struct Codes {
    std::mutex lock;
    std::vector<ModuleCode*> modules;
    std::atomic<std::size_t> count{0};
};

Codes& codes() noexcept {
    static Immortal<Codes> all; // processes may end after the library's statics
    return *all;
}

} // namespace

ModuleCode::ModuleCode(const ModuleAnchor& anchor)
    : file_(fileAt(&anchor)), holds_(u"std::function", anchor) {
    Codes& all = codes();
    const std::lock_guard guard(all.lock);
    all.modules.push_back(this);
    all.count.store(all.modules.size());
}

ModuleCode::~ModuleCode() {
    Codes& all = codes();
    const std::lock_guard guard(all.lock);
    std::erase(all.modules, this);
    all.count.store(all.modules.size());
}

const void* ModuleCode::fileAt(const void* address) noexcept {
    return object_at(address);
}

LiveCounter* ModuleCode::counterOf(const void* file) noexcept {
    Codes& all = codes();
    const std::lock_guard guard(all.lock);
    const auto found =
        std::ranges::find(all.modules, file, [](const ModuleCode* code) { return code->file_; });
    return found != all.modules.end() ? &(*found)->holds_ : nullptr;
}

bool ModuleCode::any() noexcept {
    return codes().count.load(std::memory_order_relaxed) != 0;
}

} // namespace detail

CodeHold::CodeHold(const void* address) noexcept {
    if (!detail::ModuleCode::any())
        return;
    // Before the lock: the system holds a lock of its own while it runs the constructors of a module, and
    // these may come here.
    const void* const file = detail::ModuleCode::fileAt(address);
    counter_ = file != nullptr ? detail::ModuleCode::counterOf(file) : nullptr;
    count();
}

} // namespace core
