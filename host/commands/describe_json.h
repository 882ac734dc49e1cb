// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/commands/describe_report.h"

#include <nlohmann/json_fwd.hpp>

/// What is known of types and functions as JSON. Texts are in both languages, under "en" and "ru".
namespace host::describe {

[[nodiscard]] nlohmann::ordered_json to_json(const Names& names);
[[nodiscard]] nlohmann::ordered_json to_json(const Method& method);
[[nodiscard]] nlohmann::ordered_json to_json(const std::vector<Method>& methods);
[[nodiscard]] nlohmann::ordered_json to_json(const TypeReport& report);
/// A member alone, with what kind of member it is and the type that it belongs to, if it belongs to one.
[[nodiscard]] nlohmann::ordered_json to_json(const Names& owner, const Member& member);

} // namespace host::describe
