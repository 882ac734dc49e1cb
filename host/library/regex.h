// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/values/generic_value.h>

#include <memory>
#include <vector>

namespace core::script {

/// A regular expression over one text. Positions are offsets in units.
///
/// A pattern that would try for ever, such as (a*)*b on a long text, is given up after some seconds.
class Regex {
  public:
    /// Compiles the pattern. Throws ContextException that names the place where it is wrong. The text must
    /// outlive the object.
    Regex(wstring_view pattern, wstring_view text);
    ~Regex();
    Regex(const Regex&) = delete;
    Regex& operator=(const Regex&) = delete;

    /// Goes to the first match at or behind an offset; false where none exists. Throws ContextException for a
    /// pattern that takes too long.
    bool find(std::size_t from);
    /// Goes to the match behind the one before.
    bool next();
    /// The match, as TextMatch.
    [[nodiscard]] GenericValue match() const;
    /// The text with every match replaced; "$1" is the first group, "\$" a "$".
    [[nodiscard]] wstring replaced(wstring_view replacement);
    /// Where the match begins and ends.
    [[nodiscard]] std::size_t begin() const;
    [[nodiscard]] std::size_t end() const;

  private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

} // namespace core::script
