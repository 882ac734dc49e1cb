// SPDX-License-Identifier: Apache-2.0
#include "core/strings/class_table.h"

#include <core/strings/char_class.h>

#include <unicode/uchar.h>

namespace core {
namespace {

std::uint8_t classes_of(UChar32 c) noexcept {
    unsigned classes = 0;
    if (u_isspace(c))
        classes |= ClassTable::kSpace;
    if (u_isalpha(c))
        classes |= ClassTable::kAlpha;
    if (u_isdigit(c))
        classes |= ClassTable::kDigit | static_cast<unsigned>(u_charDigitValue(c)) << 4;
    if (u_isalnum(c) || c == '_')
        classes |= ClassTable::kNamePart;
    return static_cast<std::uint8_t>(classes);
}

} // namespace

ClassTable::ClassTable() noexcept {
    for (std::size_t c = 0; c < classes_.size(); ++c)
        classes_[c] = classes_of(static_cast<UChar32>(c));
}

namespace detail {

bool is_wide_space(wchar c) noexcept {
    return ClassTable::instance().has(c, ClassTable::kSpace);
}

bool is_wide_alpha(wchar c) noexcept {
    return ClassTable::instance().has(c, ClassTable::kAlpha);
}

bool is_wide_alnum(wchar c) noexcept {
    return ClassTable::instance().has(c, ClassTable::kAlpha | ClassTable::kDigit);
}

int wide_digit(wchar c) noexcept {
    const ClassTable& table = ClassTable::instance();
    return table.has(c, ClassTable::kDigit) ? table.digitValue(c) : -1;
}

} // namespace detail
} // namespace core
