// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/locale.h>
#include <core/runtime/types.h>

#include <unicode/plurrule.h>
#include <unicode/rbnf.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace core {

/// ICU's rules for the words of one language. They cost much to open and may not be shared, so each thread
/// keeps those that it has used last.
class Speller {
  public:
    /// The calling thread's, borrowed until it asks for another one. LocaleException for a language without
    /// rules.
    [[nodiscard]] static const Speller& of(const Locale& locale);

    explicit Speller(const Locale& locale);

    [[nodiscard]] bool has(wstring_view rules) const;
    /// A number by one of the language's sets of rules. LocaleException for one that has digits in its words.
    [[nodiscard]] wstring spell(std::int64_t number, wstring_view rules) const;
    [[nodiscard]] wstring spell(double number, wstring_view rules) const;

    /// How many forms a noun has behind whole numbers, and which of them stands behind `number`.
    [[nodiscard]] std::size_t nounForms() const noexcept { return categories_.size(); }
    [[nodiscard]] std::size_t nounForm(std::uint64_t number) const;

  private:
    template <class Number>
    [[nodiscard]] wstring spelled(Number number, wstring_view rules) const;

    std::unique_ptr<icu::RuleBasedNumberFormat> rules_;
    std::unique_ptr<icu::PluralRules> plurals_;
    std::vector<icu::UnicodeString> categories_; // those of whole numbers, in the CLDR's order
    Locale locale_;
};

} // namespace core
