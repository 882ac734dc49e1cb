// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/values/generic_value.h>

namespace core::script {

/// Writes a value, as a brace list in UTF-8, to an inner file of the container in `file`, which is made when
/// it does not exist. A lumstg64 URL stands for a container of the 64-bit layout. The inner file has its old
/// content or the new one: FileException and StorageException with the URL, ConverterException for a text
/// that UTF-8 cannot hold.
void save_to_container(wstring_view file, wstring_view name, const GenericValue& value);
/// Reads such a value back.
[[nodiscard]] GenericValue load_from_container(wstring_view file, wstring_view name);

} // namespace core::script
