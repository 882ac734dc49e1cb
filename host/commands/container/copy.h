// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/terminal/interrupts.h"
#include "host/terminal/progress.h"

#include <core/files/file.h>

#include <cstddef>

namespace host::container {

/// Files are copied in pieces of this many bytes.
inline constexpr std::size_t kPiece = std::size_t{1} << 20;

/// Copies what is left of a file and tells how far it has come. Throws Interrupted as well as what the files
/// throw.
void copy(core::IFile& from, core::IFile& to, Progress& progress, const Interrupts& interrupts);

} // namespace host::container
