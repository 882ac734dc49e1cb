// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/files/file.h>

#include <string>

namespace core {

/// A new file that is to take the place of another one, whole or not at all. Where the system can, it has no
/// name until then, so that nothing of it stays behind however the program ends. One moment is left: a kill
/// just before it replaces a file leaves it whole beside that, until the next one takes the same place.
class FileBeside {
  public:
    /// Makes it in the folder of `target`. Throws FileException.
    FileBeside(const std::string& target, unsigned permissions);
    FileBeside(const FileBeside&) = delete;
    FileBeside& operator=(const FileBeside&) = delete;
    /// Removes what has not taken a place.
    ~FileBeside();

    [[nodiscard]] IFile& content() noexcept { return *content_; }
    /// A file system without permissions does not matter.
    void setPermissions(unsigned permissions) noexcept;
    /// Flushes it and puts it in the place of `target`, durably. Returns false when the system refuses the
    /// place, with its reason in errno. Throws FileException for bytes that could not be kept.
    [[nodiscard]] bool replace(const std::string& target);

  private:
    [[nodiscard]] bool takePlace(const std::string& target, std::string known);

    std::string path_; // its name, or one that it may get on its way to the target
    int nameless_;     // the descriptor of a file without a name, -1 for one that has its name
    InterfacePtr<IFile> content_;
};

} // namespace core
