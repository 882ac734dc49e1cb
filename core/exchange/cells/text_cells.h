// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/tables/data/cell_column.h"

#include <string>
#include <string_view>
#include <vector>

namespace core {

/// Returns a text that is UTF-8 as a value. `scratch` is used on the way. Throws ConverterException for bytes
/// that are not UTF-8.
[[nodiscard]] Value text_value(std::string_view text, wstring& scratch);

/// The cells of a column of texts, each different text once as long as that saves memory. Whether it does is
/// asked again whenever the column has doubled: a hundred thousand names in a million rows look all different
/// at first.
class TextCells {
  public:
    void reserve(std::size_t rows) { codes_.reserve(rows); }
    /// Throws ConverterException for bytes that are not UTF-8.
    void add(std::string_view text);
    /// An Undefined cell.
    void addEmpty();
    /// Whatever value stands in a cell of this column.
    void addValue(const Value& value);
    [[nodiscard]] CellColumn finish();

  private:
    using Code = ValueDictionary::Code;

    [[nodiscard]] static std::uint64_t hash(std::string_view text) noexcept;
    [[nodiscard]] std::string_view known(Code code) const noexcept {
        const std::size_t begin = ends_[code - 1];
        return std::string_view(bytes_).substr(begin, ends_[code] - begin);
    }
    void addNew(std::string_view text, std::uint64_t hash);
    void giveDictionaryUp();

    std::vector<Code> codes_;          // by row, as long as there is a dictionary
    std::string bytes_;                // the different texts, one behind the other
    std::vector<std::size_t> ends_{0}; // of each in bytes_, by its code; code 0 is Undefined
    HashIndex index_;
    ValueDictionary dictionary_;
    std::size_t nextLook_ = std::size_t{1} << 16U; // at as many rows
    bool coded_ = true;
    std::vector<Value> values_; // by row, without a dictionary
    wstring scratch_;
};

} // namespace core
