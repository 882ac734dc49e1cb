// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace core {

/// Throws ListStreamException, "IDS_LISTSTREAMERROR": what was read is not what it should be.
[[noreturn]] void throw_malformed();

} // namespace core
