// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/profiles/record.h"

#include <functional>
#include <map>
#include <set>
#include <span>
#include <string>

namespace core {

/// What has changed since the sorted part of a file was written, by keys; or all that a layer in memory
/// holds.
class Overlay {
  public:
    using Keys = std::map<wstring, std::string, std::less<>>;

    /// Takes the changes over, all of them or none. `overBase` says whether a key can also stand below, so
    /// that its removal has to be remembered.
    void apply(std::span<const KeyChange> changes, bool overBase);
    /// Returns the text of a key, empty for one that was removed; null where nothing is known. Borrowed until
    /// the next change.
    [[nodiscard]] const std::string* find(wstring_view key) const;
    /// Returns whether a key that stands below was removed with its folder.
    [[nodiscard]] bool hides(wstring_view key) const;
    [[nodiscard]] const Keys& keys() const noexcept { return keys_; }
    /// Returns the first key that is not before `from`.
    [[nodiscard]] Keys::const_iterator keysFrom(wstring_view from) const { return keys_.lower_bound(from); }
    [[nodiscard]] bool isEmpty() const noexcept { return keys_.empty() && folders_.empty(); }

  private:
    using Folders = std::set<wstring, std::less<>>;
    void removeFolder(wstring_view folder, Folders::node_type& node) noexcept;

    Keys keys_;
    Folders folders_; // removed, with "/" at the end
};

} // namespace core
