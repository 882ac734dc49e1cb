// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <CLI/CLI.hpp>

#include <string>

namespace host {

/// Lays the help out by the columns that a terminal gives to characters; the base counts bytes, of which a
/// Russian letter has two.
class HelpFormatter : public CLI::Formatter {
  public:
    std::string make_option(const CLI::Option* option, bool isPositional) const override;
};

} // namespace host
