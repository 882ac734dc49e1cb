// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/persistable.h>

/// How every storage writes and reads a failure.
namespace core::detail {

void put_failure(IOutPersistenceStorage& storage, const Exception& failure,
                 std::span<const FailureField> fields);
[[nodiscard]] StoredFailure get_failure(IInPersistenceStorage& storage, std::span<FailureField> fields);

} // namespace core::detail
