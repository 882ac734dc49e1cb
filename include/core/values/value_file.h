// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/persistence/stream_storage.h>
#include <core/values/generic_value.h>

/// Values in files, written and read in pieces: no piece is larger than what a list keeps of one token.
namespace core {

/// Writes a value from the current position of `file` on. Throws as serialize_value() and what the file
/// throws; the pieces written before that stay.
CORE_API void write_value(IFile& file, const Value& value, StoredForm form = StoredForm::compact);
/// Reads one value, which the rest of `file` must be; the first byte tells the form. Throws as
/// GenericValue::fromBytes(), and what the file throws.
[[nodiscard]] CORE_API GenericValue read_value(IFile& file);

} // namespace core
