// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

/// Folders of the disk, by path. Each of these throws FileException.
namespace core {

/// Makes a folder with those above it; none when it is there, and none when anything fails.
void make_folder(const std::string& path);
/// Removes a folder with everything in it. The root is refused.
void remove_folder(const std::string& path);
/// Copies a folder with everything in it: all of it stands at `to`, or nothing does.
void copy_folder(const std::string& from, const std::string& to);
/// Gives a folder another path, on another disk by a copy.
void move_folder(const std::string& from, const std::string& to);

} // namespace core
