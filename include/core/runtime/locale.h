// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/api.h>
#include <core/runtime/types.h>

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace core {

/// A language, as it is written and used in a region: "en", "de_AT", "sr_Latn_RS". What a locale means (its
/// data, names, parents) is what ICU and the CLDR know; a locale that they do not know cannot be made.
///
/// A value type; equal locales have equal keys. Threads: any.
class Locale {
  public:
    /// Makes the root locale, whose key is empty: no language, and what holds where a language says nothing.
    Locale() noexcept = default;
    /// Makes the locale with a key. Case does not matter, "-" stands for "_", an outdated key becomes the one
    /// in use ("iw" is "he"), and so does one of several that mean the same ("zh_TW" is "zh_Hant_TW"). The
    /// key may say which order and digits are wanted: "de@collation=phonebook", "ar-u-nu-latn". "", "root"
    /// and "und" are the root locale. Throws LocaleException for a key with a language, script, region,
    /// variant, order or digits that are not known, and std::bad_alloc.
    CORE_API explicit Locale(std::string_view key);

    /// Returns the key in its one form, borrowed: valid as long as this locale.
    [[nodiscard]] const std::string& key() const noexcept { return key_; }
    /// Returns the code of the language: "sr". Empty for the root locale. Throws std::bad_alloc.
    [[nodiscard]] CORE_API std::string language() const;
    /// Returns the code of the region: "RS", "419". Empty where the key names none. Throws std::bad_alloc.
    [[nodiscard]] CORE_API std::string region() const;
    /// Returns the locale whose data hold where this one has none of its own: "es_419" for "es_MX", and the
    /// root locale in the end, which is its own parent. Throws std::bad_alloc.
    [[nodiscard]] CORE_API Locale parent() const;
    /// Returns the name as readers of another locale know it: "немецкий (Австрия)". Throws std::bad_alloc.
    [[nodiscard]] CORE_API wstring name(const Locale& reader) const;
    /// Returns the name in the locale's own language: "Deutsch (Österreich)". Throws std::bad_alloc.
    [[nodiscard]] wstring ownName() const { return name(*this); }
    /// Returns whether the language is written from right to left.
    [[nodiscard]] CORE_API bool isRightToLeft() const noexcept;
    /// Returns the day that weeks begin with: 1 Monday ... 7 Sunday.
    [[nodiscard]] CORE_API int firstDayOfWeek() const;
    /// Whether the language is Russian, in whichever region.
    [[nodiscard]] bool isRussian() const noexcept {
        return key_.starts_with("ru") && (key_.size() == 2 || key_[2] == '_' || key_[2] == '@');
    }

    /// Returns the locales that there are data for, in the order of their keys, without the root locale.
    /// Throws std::bad_alloc.
    [[nodiscard]] CORE_API static std::vector<Locale> all();

    /// Whether both are the same locale.
    friend bool operator==(const Locale&, const Locale&) = default;

  private:
    std::string key_;
};

/// Returns the locale of `available` that fits one of the `wishes` best, the first wish being the dearest, by
/// the CLDR's distances between languages: who wishes es_MX gets es_419 before es, and es before en. None
/// when nothing is near enough. Throws std::bad_alloc.
[[nodiscard]] CORE_API std::optional<Locale> best_match(std::span<const Locale> wishes,
                                                        std::span<const Locale> available);

} // namespace core
