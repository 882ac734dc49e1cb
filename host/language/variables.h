// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/strings/names.h>

#include <cstddef>
#include <optional>
#include <unordered_map>
#include <vector>

namespace core::script {

/// Names of variables, each with a slot number: found without regard to case, kept as first written. A
/// program has one for the names that stand in it, an engine one for the variables that it holds.
class Variables {
  public:
    /// The slot of a name, a new one if need be.
    std::size_t slot(wstring_view name) {
        if (const auto known = find(name))
            return *known;
        names_.emplace_back(name);
        try {
            return slots_.emplace(name, names_.size() - 1).first->second;
        } catch (...) {
            names_.pop_back(); // or two names would get one slot
            throw;
        }
    }
    [[nodiscard]] std::optional<std::size_t> find(wstring_view name) const {
        const auto found = slots_.find(wstring(name));
        return found != slots_.end() ? std::optional(found->second) : std::nullopt;
    }
    [[nodiscard]] std::size_t size() const noexcept { return names_.size(); }
    [[nodiscard]] const wstring& name(std::size_t slot) const noexcept { return names_[slot]; }

  private:
    std::unordered_map<wstring, std::size_t, NocaseHash, NocaseEqual> slots_;
    std::vector<wstring> names_;
};

} // namespace core::script
