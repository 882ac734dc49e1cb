// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/tables/losses.h>
#include <core/types/type_domain.h>

#include <optional>

namespace core {

/// What a cell of a described column holds in place of a value.
struct FittedCell {
    GenericValue value;
    std::optional<LossReason> loss; ///< why that is less than what was given; nothing where it is all of it
};

/// Returns what a column with this description holds in place of a value: what TypeDomain::adjust() makes of
/// it, with dates also read in the ISO forms. Undefined, Null and a blank text bring nothing that could be
/// lost. Throws what the description throws.
[[nodiscard]] FittedCell fit_cell(const TypeDomain& domain, const Value& value);

} // namespace core
