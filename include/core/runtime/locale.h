// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/api.h>

#include <string>
#include <string_view>

namespace core {

/// A language and region, by its key: "en", "ru", "de_AT". The empty key is the root locale. A value type;
/// equal locales have equal keys.
class Locale {
  public:
    Locale() = default;
    /// Makes the locale with a key; it need not be one that the system knows.
    explicit Locale(std::string_view key) : key_(key) {}

    /// Returns the key, borrowed: valid as long as this locale.
    [[nodiscard]] const std::string& key() const noexcept { return key_; }
    /// Whether the language is Russian, in whichever region.
    [[nodiscard]] bool isRussian() const noexcept {
        return key_.starts_with("ru") && (key_.size() == 2 || key_[2] == '_' || key_[2] == '-');
    }
    friend bool operator==(const Locale&, const Locale&) = default;

  private:
    std::string key_;
};

} // namespace core
