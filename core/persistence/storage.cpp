// SPDX-License-Identifier: Apache-2.0
#include "core/persistence/failures.h"

#include <core/persistence/persistence.h>

namespace core {

void ListOutStorage::putFailure(const Exception& failure, std::span<const FailureField> fields) {
    detail::put_failure(*this, failure, fields);
}

StoredFailure ListInStorage::getFailure(std::span<FailureField> fields) {
    return detail::get_failure(*this, fields);
}

} // namespace core
