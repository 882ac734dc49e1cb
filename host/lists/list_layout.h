// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/types.h>

#include <cstddef>
#include <ostream>

namespace host {

/// Lays nested lists out as the library's own writer does, with indentation: every list except the outermost
/// begins a line, and so does the end of a list behind another end.
class ListLayout {
  public:
    struct Style {
        core::wchar open = u'{';
        core::wchar close = u'}';
        std::size_t indent = 0; ///< blanks for each level
    };

    ListLayout(core::wostream& out, const Style& style) : out_(out), style_(style) {}

    /// Begins an element that is not a list; its text goes to the stream that this returns.
    core::wostream& element();
    void open();
    void close();
    /// Ends the last line.
    void finish();

    [[nodiscard]] core::wostream& stream() noexcept { return out_; }
    [[nodiscard]] std::size_t depth() const noexcept { return depth_; }

  private:
    enum class Last : unsigned char { nothing, open, element, close };

    void separate();
    void newLine();

    core::wostream& out_;
    Style style_;
    std::size_t depth_ = 0;
    Last last_ = Last::nothing;
};

} // namespace host
