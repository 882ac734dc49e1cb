// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/language/token.h"

namespace host::script {

/// Follows an entry that grows line by line, and says when it is worth parsing: an entry of many lines is
/// then parsed a few times and not once a line.
class EntryScan {
  public:
    /// `entry` is what it was the last time and one line more, with its end. False when the entry is
    /// certainly not complete; now and then true all the same, so that an error in a long entry is found
    /// before its end.
    bool mayBeComplete(core::wstring_view entry);

  private:
    [[nodiscard]] bool staysInString(core::wstring_view line) const;
    void follow(const Token& token);

    std::size_t seen_ = 0;    // of the entry
    std::size_t scanned_ = 0; // of the entry, cut into tokens
    std::size_t tried_ = 0;   // the size at which it was parsed
    bool inString_ = false;   // what is not scanned begins with a string without an end
    int nesting_ = 0;         // brackets, If, For and While that wait for their end
    TokenKind last_ = TokenKind::semicolon;
};

} // namespace host::script
