// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/context/context_def.h>
#include <core/context/native_value.h>
#include <core/presentation/border.h>
#include <core/presentation/font.h>
#include <core/presentation/picture.h>
#include <core/presentation/rect.h>
#include <core/presentation/short_cut.h>
#include <core/presentation/style.h>

#include <concepts>

/// Colours, fonts, lines, borders, rectangles, shortcuts, pictures and styles as script values: `New
/// Color("#4682B4")`, `WebColors.SteelBlue`. They never change once made, except Style; two are equal when
/// their content is. They convert by from_value() and to_value().
namespace core {

/// The type id of "Picture".
inline constexpr GUID kPictureType = "32590eee-206e-4a5b-af30-f5e8c9efb3cb"_guid;

/// A presentation value of C++ that scripts have an object for.
template <class C>
concept PresentationContent = std::same_as<C, Color> || std::same_as<C, Font> || std::same_as<C, LumLine> ||
    std::same_as<C, LumBorder> || std::same_as<C, Rect> || std::same_as<C, ShortCut> ||
    std::same_as<C, Picture> || std::same_as<C, Style>;

namespace detail {

CORE_API void read_content(const Value& value, ValueReceiver receiver, Color& content);
CORE_API void read_content(const Value& value, ValueReceiver receiver, Font& content);
CORE_API void read_content(const Value& value, ValueReceiver receiver, LumLine& content);
CORE_API void read_content(const Value& value, ValueReceiver receiver, LumBorder& content);
CORE_API void read_content(const Value& value, ValueReceiver receiver, Rect& content);
CORE_API void read_content(const Value& value, ValueReceiver receiver, ShortCut& content);
CORE_API void read_content(const Value& value, ValueReceiver receiver, Picture& content);
CORE_API void read_content(const Value& value, ValueReceiver receiver, Style& content);
[[nodiscard]] CORE_API Value value_of(const Color& content);
[[nodiscard]] CORE_API Value value_of(const Font& content);
[[nodiscard]] CORE_API Value value_of(const LumLine& content);
[[nodiscard]] CORE_API Value value_of(const LumBorder& content);
[[nodiscard]] CORE_API Value value_of(const Rect& content);
[[nodiscard]] CORE_API Value value_of(const ShortCut& content);
[[nodiscard]] CORE_API Value value_of(const Picture& content);
[[nodiscard]] CORE_API Value value_of(const Style& content);

} // namespace detail

/// A presentation value: the object of that name. A Color and a ShortCut may also be a String with their
/// text.
template <PresentationContent C>
struct NativeValue<C> {
    /// Returns the content; refuses the type of any other value, and the value of a String that is not such a
    /// text.
    static C from(const Value& value, ValueReceiver receiver) {
        C content;
        detail::read_content(value, receiver, content);
        return content;
    }
    /// Returns a new object with that content.
    static Value to(const C& value) { return detail::value_of(value); }
};

/// Returns what scripts find without an object in front: a context whose properties WebColors, WindowsColors
/// and StyleColors have a property for each colour of their tables, in both languages. Throws std::bad_alloc.
[[nodiscard]] CORE_API InterfacePtr<IContext_> create_presentation_functions();

} // namespace core
