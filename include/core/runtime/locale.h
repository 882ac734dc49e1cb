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
    explicit Locale(std::string_view key) : key_(key) {}

    [[nodiscard]] const std::string& key() const noexcept { return key_; }
    [[nodiscard]] bool isRussian() const noexcept {
        return key_.starts_with("ru") && (key_.size() == 2 || key_[2] == '_' || key_[2] == '-');
    }
    friend bool operator==(const Locale&, const Locale&) = default;

  private:
    std::string key_;
};

} // namespace core
