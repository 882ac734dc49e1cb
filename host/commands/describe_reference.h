// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace host::describe {

/// Writes the pages of the reference into the folders "en" and "ru" of a folder, which are made where they
/// are missing: one for each type, one for what is used without an object, and a list of all. Pages that are
/// there are replaced. Throws what writing a file throws.
void write_reference(const std::string& folder);

} // namespace host::describe
