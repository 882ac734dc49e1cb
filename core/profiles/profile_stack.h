// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/profiles/places.h"
#include "core/profiles/profile_file.h"

#include <core/profiles/profile.h>

#include <array>
#include <optional>
#include <string>
#include <vector>

namespace core {

/// The four layers of a profile, one over the other. Not for several threads at once.
class ProfileStack {
  public:
    /// A text and the layer that it comes from.
    struct Found {
        std::string text;
        ProfileLayer layer;
    };
    /// A path and what the layers say about it, the one that counts first.
    struct Listed {
        wstring path;
        std::vector<Found> found;
    };

    ProfileStack(InterfacePtr<IFileSystem> files, ProfilePlaces places, ProfileFile::Report report);

    /// Returns what the layers say about a path, the one that counts first.
    [[nodiscard]] std::vector<Found> find(wstring_view path);
    /// Returns the last layer that counts at a path: the first one that locks it, or that of the run.
    [[nodiscard]] ProfileLayer lastOf(wstring_view path);
    /// Returns the paths at and below a folder that have a value, in their order.
    [[nodiscard]] std::vector<Listed> entries(wstring_view folder);
    /// Returns the names in a folder, in their order.
    [[nodiscard]] std::vector<ProfileItem> list(wstring_view folder);

    /// Reads the files that were not read yet.
    void read();
    /// Changes one layer, all of it or nothing; appends what has changed.
    void change(ProfileLayer layer, std::span<const KeyChange> changes, ProfileFile::Changed& changed);
    /// Takes over what others have changed; appends those keys. A file that cannot be read is reported.
    void refresh(ProfileFile::Changed& changed);
    /// Sets damaged files aside.
    void mend(ProfileFile::Changed& changed);
    [[nodiscard]] wstring fileOf(ProfileLayer layer) const;
    [[nodiscard]] IFileSystem& files() noexcept { return *files_; }

  private:
    [[nodiscard]] LayerState& state(ProfileLayer layer);

    InterfacePtr<IFileSystem> files_;
    ProfileFile::Report report_;
    LayerState builtIn_;
    ProfileFile system_;
    ProfileFile user_;
    LayerState run_;
};

} // namespace core
