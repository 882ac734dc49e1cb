// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/api.h>
#include <core/runtime/locale.h>
#include <core/runtime/types.h>

#include <cstddef>
#include <utility>
#include <vector>

namespace core {

/// One text in several languages: a title, a name, a note. A reader gets it in his language, else in a parent
/// of that, else in a default language.
///
/// A text under the root locale holds for all languages that have none of their own; a plain string converts
/// to that. Texts are found by what a locale says of the language: the order and the digits that its key may
/// ask for do not count. A value type; one object may be read by many threads.
class LocalWString {
  public:
    /// Makes an empty string, which has no text in any language.
    LocalWString() noexcept = default;
    /// Makes a string with one text for all languages; an empty text makes an empty string.
    LocalWString(wstring text) noexcept : text_(std::move(text)) {}
    /// Makes a string with a copy of one text for all languages. Throws std::bad_alloc.
    LocalWString(wstring_view text) : text_(text) {}
    /// Makes a string with a copy of one text for all languages, which ends with a null unit. Throws
    /// std::bad_alloc.
    LocalWString(const wchar* text) : text_(text) {}

    /// Reads the form that toString() writes, "en='Price'; ru='Цена'": for each language its key and the text
    /// between "'", in any order. "root" stands for all languages, and "''" in a text for one "'". Throws
    /// CtorException for a malformed form and a language that comes twice, LocaleException for a language
    /// that is not known, and std::bad_alloc.
    [[nodiscard]] CORE_API static LocalWString fromString(wstring_view written);
    /// Returns the one written form of this content, with the languages in the order of their keys. Throws
    /// std::bad_alloc.
    [[nodiscard]] CORE_API wstring toString() const;

    /// Sets the text of a language. An empty text for all languages takes that away. Throws std::bad_alloc.
    CORE_API void set(const Locale& language, wstring text);
    /// Takes the text of just this language away. Returns false when there was none. Throws std::bad_alloc.
    CORE_API bool remove(const Locale& language);
    /// Returns the languages that have a text, in the order of their keys; the root locale stands for all
    /// languages. Throws std::bad_alloc.
    [[nodiscard]] CORE_API std::vector<Locale> languages() const;
    /// Returns the text of just this language, borrowed until the string changes; null when it has no text in
    /// it. Throws std::bad_alloc.
    [[nodiscard]] CORE_API const wstring* find(const Locale& language) const;

    /// Returns the text for a reader of `language`: in that language or the nearest of its parents, else
    /// likewise for `byDefault`, else an empty text. Borrowed until the string changes. Throws
    /// std::bad_alloc.
    [[nodiscard]] CORE_API const wstring& text(const Locale& language, const Locale& byDefault) const;
    /// Returns the text for the user of the calling thread, whose language is that of its messages; the
    /// default language is that of the process's LanguageSettings. Borrowed until the string changes. Throws
    /// std::bad_alloc.
    [[nodiscard]] CORE_API const wstring& text() const;

    /// Returns whether no language has a text.
    [[nodiscard]] bool empty() const noexcept { return text_.empty() && texts_.empty(); }
    /// Returns whether the text is the same for all languages, as that of a plain string.
    [[nodiscard]] bool isPlain() const noexcept { return texts_.empty(); }

    /// Returns a hash; equal strings have equal ones. It differs from run to run.
    [[nodiscard]] CORE_API std::size_t hash() const noexcept;
    /// Whether both have the same languages with the same texts.
    friend bool operator==(const LocalWString&, const LocalWString&) = default;

  private:
    struct Entry {
        Locale language;
        wstring text;
        friend bool operator==(const Entry&, const Entry&) = default;
    };

    [[nodiscard]] const wstring* nearest(const Locale& language) const;

    wstring text_;             // for all languages; empty: none
    std::vector<Entry> texts_; // in the order of the keys
};

} // namespace core
