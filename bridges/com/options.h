// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bridges/com/type_service.h"

/// What ICOMTypeService::forArguments() and forResults() lend, for the whole program.
namespace core::com {

inline constinit ComOptions for_arguments{.arrays = ComArrays::copies};
inline constinit ComOptions for_results{};

} // namespace core::com
