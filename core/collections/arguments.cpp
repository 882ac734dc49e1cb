// SPDX-License-Identifier: Apache-2.0
#include "core/collections/arguments.h"

#include "core/lists/malformed.h"

#include <core/collections/collect_error.h>
#include <core/context/context_error.h>

#include <limits>

namespace core {

std::int64_t unusual_index_argument(const Value& argument, int param) {
    const auto number = argument.asNumeric();
    if (!number)
        parameter_type_mismatch(param);
    using Wide = std::numeric_limits<std::int64_t>;
    const auto wholeLimbs = static_cast<std::int64_t>(number->limbs().size()) - number->fractionLimbs();
    if (wholeLimbs <= 2) { // below 10^18
        const auto index = static_cast<std::int64_t>(*number);
        if (index == static_cast<std::int32_t>(index))
            return index;
    }
    return number->sign() < 0 ? Wide::min() : Wide::max();
}

void throw_bad_index() {
    throw ContextException(collect_error_bad_index());
}

std::int64_t get_count(ListInStream& in) {
    std::int64_t count = 0;
    in.get(count);
    if (count < 0)
        throw_malformed();
    return count;
}

} // namespace core
