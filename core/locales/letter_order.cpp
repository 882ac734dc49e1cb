// SPDX-License-Identifier: Apache-2.0
#include "core/locales/letter_order.h"

#include <unicode/uset.h>

#include <algorithm>
#include <map>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

namespace core::detail {
namespace {

constexpr char kEndOfRanks = 1; // below all ranks
constexpr unsigned kFirstRank = 2;
constexpr unsigned kLastRank = 0xFF;
constexpr unsigned kFormBits = 2;
constexpr unsigned kFormsPerByte = 3;
constexpr unsigned kFirstForms = 2; // so many forms of 0, and no byte of a key is zero

/// The parts of a unit's collation key.
struct Levels {
    std::string letter;
    std::string accent;
    std::string form;
};

/// None when the key has not just these, or no letter.
std::optional<Levels> levels_of(const UCollator* collator, wchar unit) {
    std::array<std::uint8_t, 64> key{};
    const std::int32_t size =
        ucol_getSortKey(collator, &unit, 1, key.data(), static_cast<std::int32_t>(key.size()));
    const std::string_view bytes(reinterpret_cast<const char*>(key.data()), key.size());
    constexpr char kSeparator = 1;
    const std::size_t first = bytes.find(kSeparator);
    const std::size_t second = bytes.find(kSeparator, first + 1);
    const std::size_t end = bytes.find('\0');
    if (size > static_cast<std::int32_t>(key.size()) || first == 0 || second > end ||
        bytes.find(kSeparator, second + 1) < end)
        return std::nullopt;
    return Levels{std::string(bytes.substr(0, first)),
                  std::string(bytes.substr(first + 1, second - first - 1)),
                  std::string(bytes.substr(second + 1, end - second - 1))};
}

/// The units that the rules take for several letters, or look at together with other units of this order.
class UnitsOfRules {
  public:
    UnitsOfRules(const UCollator* collator, wchar end) {
        const Set together(uset_openEmpty(), &uset_close);
        UErrorCode status = U_ZERO_ERROR;
        ucol_getContractionsAndExpansions(collator, together.get(), units_.get(), true, &status);
        for (std::int32_t i = 0; i < uset_getItemCount(together.get()); ++i) {
            std::array<wchar, 16> text{};
            UChar32 first = 0;
            UChar32 last = 0;
            const std::int32_t length = uset_getItem(together.get(), i, &first, &last, text.data(),
                                                     static_cast<std::int32_t>(text.size()), &status);
            const wstring_view units(text.data(), static_cast<std::size_t>(std::max(length, 0)));
            if (units.size() >= 2 && U_SUCCESS(status) && *std::max_element(units.begin(), units.end()) < end)
                uset_add(units_.get(), units.back()); // without it the others stand alone
        }
        known_ = U_SUCCESS(status) != 0;
    }
    [[nodiscard]] bool contains(wchar unit) const {
        return !known_ || uset_contains(units_.get(), unit) != 0;
    }

  private:
    using Set = std::unique_ptr<USet, decltype(&uset_close)>;
    Set units_{uset_openEmpty(), &uset_close};
    bool known_ = false;
};

bool counts_digits(const UCollator* collator) {
    UErrorCode status = U_ZERO_ERROR;
    return ucol_getAttribute(collator, UCOL_NUMERIC_COLLATION, &status) != UCOL_OFF;
}

} // namespace

LetterOrder::LetterOrder(const UCollator* collator) {
    const auto plain = levels_of(collator, u'a');
    if (!plain || counts_digits(collator))
        return;
    const UnitsOfRules rules(collator, kUnits);
    std::map<std::string, std::map<std::string, std::vector<wchar>>> alphabet; // letter, form
    const auto enter = [&](wchar first, wchar end) {
        for (wchar unit = first; unit != end; ++unit) {
            const auto levels = levels_of(collator, unit);
            if (levels && levels->accent == plain->accent && !rules.contains(unit))
                alphabet[levels->letter][levels->form].push_back(unit);
        }
    };
    enter(u' ', 0x180);   // Latin
    enter(0x400, kUnits); // Cyrillic
    unsigned rank = kFirstRank;
    for (const auto& [letter, units] : alphabet) {
        std::uint8_t form = 0;
        for (const auto& [name, same] : units) {
            for (const wchar unit : same)
                letters_[unit] = {static_cast<std::uint8_t>(rank), form};
            if (++form >> kFormBits != 0) // what is left needs the rules
                break;
        }
        if (++rank > kLastRank)
            break;
    }
}

bool LetterOrder::append(std::string& keys, wstring_view text) const {
    const std::size_t begin = keys.size();
    keys.resize(begin + text.size() + 1);
    char* at = keys.data() + begin;
    unsigned forms = 0;
    for (const wchar unit : text) {
        const Letter letter = unit < kUnits ? letters_[unit] : Letter();
        if (letter.rank == 0)
            return false;
        *at++ = static_cast<char>(letter.rank);
        forms |= letter.form;
    }
    *at = kEndOfRanks;
    if (forms == 0)
        return true;
    for (std::size_t i = 0; i < text.size(); i += kFormsPerByte) {
        forms = 0;
        for (std::size_t j = 0; j < kFormsPerByte; ++j)
            forms = forms << kFormBits | (i + j < text.size() ? letters_[text[i + j]].form : 0U);
        keys.push_back(static_cast<char>(kFirstForms + forms));
    }
    return true;
}

} // namespace core::detail
