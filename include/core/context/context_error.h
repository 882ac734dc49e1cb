// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/error.h>

/// How wrong calls are reported; all throw ContextException. Parameters are numbered from 0 here and from 1
/// in the messages that users read.
namespace core {

/// "IDS_PARAMETER_N_TYPE_MISMATCH": the argument is of a type that the parameter does not take.
[[noreturn]] CORE_API void parameter_type_mismatch(int param);
/// "IDS_PARAMETER_N_VALUE_MISMATCH": the argument is of the right type, but such a value makes no sense.
[[noreturn]] CORE_API void parameter_value_mismatch(int param);

} // namespace core
