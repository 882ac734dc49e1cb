// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/collections/terms.h>
#include <core/context/context_table.h>

/// The parameters that methods of several collections have, by name.
namespace core {

inline constexpr Param kIndexParam = named_param({u"Index", u"Индекс"});
inline constexpr Param kKeyParam = named_param(kKeyTerm);
inline constexpr Param kValueParam = named_param(kValueTerm);

inline constexpr Param kOfIndex[] = {kIndexParam};
inline constexpr Param kOfKey[] = {kKeyParam};
inline constexpr Param kOfValue[] = {kValueParam};
inline constexpr Param kOfIndexAndValue[] = {kIndexParam, kValueParam};
inline constexpr Param kOfKeyAndValue[] = {kKeyParam, kValueParam};

} // namespace core
