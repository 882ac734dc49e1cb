// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/reports/report_view.h"

#include <string>

namespace core {

/// The style sheet of a page: what it sets for all reports, and the classes of the looks in `looks`, "k1"
/// for the second and so on; the first has none. Each colour is said for a light and for a dark page.
[[nodiscard]] std::string page_styles(const Style& style, const std::vector<CellLook>& looks);

} // namespace core
