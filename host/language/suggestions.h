// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/context/context_def.h>
#include <core/strings/nearest.h>

/// Names that were probably meant, for messages about names that nothing has.
namespace core::script {

/// Offers the names of all properties, in both languages.
void add_properties(NearestName& near, const IContext_& context);
/// Offers the names of all methods, in both languages.
void add_methods(NearestName& near, const IContext_& context);

[[nodiscard]] NearestName nearest_property(const IContext_& context, wstring_view name);
[[nodiscard]] NearestName nearest_method(const IContext_& context, wstring_view name);
/// The nearest of the types that scripts can make.
[[nodiscard]] NearestName nearest_type(wstring_view name);

} // namespace core::script
