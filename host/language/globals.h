// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/context/context_def.h>

#include <cstdint>
#include <vector>

namespace core::script {

/// What scripts find without an object in front: the methods and properties of some contexts. Those that came
/// last are searched first.
///
/// A place is a context and the number of the member there, so that a context which grows does not move the
/// members of the others.
class Globals {
  public:
    struct Place {
        IContext_* context = nullptr; ///< borrowed; null when nothing has the name
        int number = -1;
    };

    void add(InterfacePtr<IContext_> context) {
        contexts_.push_back(std::move(context));
        ++version_;
    }
    /// Adds a context that is searched after the last one, and may get new names at any time.
    void addBelowLast(InterfacePtr<IContext_> context) {
        contexts_.insert(contexts_.end() - 1, std::move(context));
        changing_ = true;
    }
    /// Tells that a context has got a new name.
    void changed() noexcept { ++version_; }
    /// Changes whenever another method may have a name; 0 where nobody tells.
    [[nodiscard]] std::uint64_t version() const noexcept { return changing_ ? 0 : version_; }

    [[nodiscard]] Place findMethod(const wstring& name) const { return find(name, &IContextDef::findMethod); }
    [[nodiscard]] Place findProp(const wstring& name) const { return find(name, &IContextDef::findProp); }
    [[nodiscard]] const std::vector<InterfacePtr<IContext_>>& contexts() const noexcept { return contexts_; }

  private:
    [[nodiscard]] Place find(const wstring& name, int (IContextDef::*search)(const wchar*) const) const {
        for (std::size_t i = contexts_.size(); i-- > 0;) {
            if (const int number = (contexts_[i].get()->*search)(name.c_str()); number >= 0)
                return {contexts_[i].get(), number};
        }
        return {};
    }

    std::vector<InterfacePtr<IContext_>> contexts_;
    std::uint64_t version_ = 1;
    bool changing_ = false;
};

} // namespace core::script
