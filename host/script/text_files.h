// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/types.h>

namespace host::script {

/// The text of a UTF-8 file. FileException when it cannot be read, ConverterException when it is not UTF-8.
[[nodiscard]] core::wstring load_text(core::wstring_view file);
/// Replaces a file by a text in UTF-8: the old content or the new one, whole, stays on the disk.
void save_text(core::wstring_view file, core::wstring_view text);

} // namespace host::script
