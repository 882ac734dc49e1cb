// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/api.h>
#include <core/runtime/types.h>

#include <string>
#include <string_view>

namespace core {

/// A parameter that takes text in UTF-16, which it borrows, or in UTF-8, which it converts. It is for
/// parameters alone: what it borrows must outlive it.
class Text {
  public:
    /// Borrows `text`.
    Text(wstring_view text) noexcept : view_(text) {}
    /// Borrows `text`.
    Text(const wstring& text) noexcept : view_(text) {}
    /// Borrows the units before the null unit.
    Text(const wchar* text) noexcept : view_(text) {}
    /// Converts `text`. Throws ConverterException when it is not UTF-8.
    CORE_API Text(std::string_view text);
    /// Converts `text`. Throws ConverterException when it is not UTF-8.
    Text(const std::string& text) : Text(std::string_view(text)) {}
    /// Converts the bytes before the null byte. Throws ConverterException when they are not UTF-8.
    Text(const char* text) : Text(std::string_view(text)) {}
    Text(const Text&) = delete;
    Text& operator=(const Text&) = delete;

    /// Returns the text, borrowed: valid as long as this object and what it was made of.
    [[nodiscard]] wstring_view view() const noexcept { return view_; }

  private:
    wstring converted_;
    wstring_view view_;
};

} // namespace core
