// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/streams/unit_source.h"

#include <core/runtime/guid.h>

#include <cstdint>

/// The readers of single tokens. None of them skips white space; each returns whether its token was there,
/// and stops at the first unit that does not fit.
namespace core::detail {

[[nodiscard]] bool read_boolean(UnitSource& source, bool& value);
[[nodiscard]] bool read_integer(UnitSource& source, bool withSign, std::uint64_t& value);
[[nodiscard]] bool read_double(UnitSource& source, double& value);
[[nodiscard]] bool read_float(UnitSource& source, float& value);
[[nodiscard]] bool read_guid(UnitSource& source, GUID& id);
[[nodiscard]] bool read_string(UnitSource& source, wstring& text);
[[nodiscard]] bool read_string(UnitSource& source, wchar* buffer, std::size_t size);

} // namespace core::detail
