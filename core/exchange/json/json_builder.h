// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/exchange/json.h>
#include <core/exchange/json_reader.h>

#include <algorithm>
#include <utility>
#include <vector>

namespace core {

/// Builds values from the reader's events, without recursion.
class JsonBuilder : public JsonEvents {
  public:
    explicit JsonBuilder(Objects objects) : objects_(objects) {}

    /// Returns the value that is complete.
    [[nodiscard]] GenericValue take() { return std::move(result_); }
    /// Whether an array or an object is open.
    [[nodiscard]] bool isOpen() const noexcept { return !open_.empty(); }

    void onNull() override;
    void onBoolean(bool value) override;
    void onNumber(std::string_view text) override;
    void onString(std::string_view piece, bool isLast) override;
    void onName(std::string_view name) override;
    void onArrayBegin() override { open_.emplace_back(); }
    void onArrayEnd() override;
    void onObjectBegin() override { open_.emplace_back(); }
    void onObjectEnd() override;

  private:
    struct Container {
        std::vector<wstring> keys; // of an object
        std::vector<Value> values;
    };

    Container pop();
    [[nodiscard]] Value object(Container& container) const;
    void put(Value value);

    Objects objects_;
    std::vector<Container> open_;
    std::string string_; // as far as it has been read
    GenericValue result_;
};

/// Calls `work(line, number)` for each line that is not blank; numbers count from 1.
template <class Work>
void each_json_line(std::string_view text, Work work) {
    constexpr std::string_view kMark = "\xEF\xBB\xBF";
    if (text.starts_with(kMark))
        text.remove_prefix(kMark.size());
    for (std::uint64_t number = 1; !text.empty(); ++number) {
        const std::size_t length = std::min(text.find('\n'), text.size());
        const std::string_view line = text.substr(0, length);
        if (line.find_first_not_of(" \t\r") != std::string_view::npos)
            work(line, number);
        text.remove_prefix(std::min(length + 1, text.size()));
    }
}

} // namespace core
