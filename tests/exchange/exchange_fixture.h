// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tests/support/folder_test.h"

#include <core/exchange/csv.h>
#include <core/exchange/errors.h>
#include <core/exchange/json.h>
#include <core/runtime/utf8.h>
#include <host/host_process.h>

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace core {

/// The bytes of a text, in pieces of some size.
inline ByteReader pieces(std::string text, std::size_t piece = std::size_t{1} << 20U) {
    return [text = std::move(text), piece, at = std::size_t{0}](std::span<std::byte> into) mutable {
        const std::size_t count = std::min({piece, into.size(), text.size() - at});
        std::copy_n(std::as_bytes(std::span(text)).begin() + static_cast<std::ptrdiff_t>(at), count,
                    into.begin());
        at += count;
        return count;
    };
}

using host::text_of;

class ExchangeTest : public host::FolderTest {
  protected:
    static InterfacePtr<IValueTable> read(const std::string& text, const CsvReadOptions& options = {}) {
        return read_csv(pieces(text), u"x.csv", options);
    }
    /// What reading throws, as its message; the table as JSON where it throws nothing.
    static std::string outcome(const std::string& text, const CsvReadOptions& options = {}) {
        return told([&] { return json(read(text, options)); });
    }
    template <class Work>
    static std::string told(Work work) {
        try {
            return work();
        } catch (const Exception& e) {
            return std::string("! ") + e.what();
        }
    }
    static std::string json(const InterfacePtr<IValueTable>& table) {
        return to_json(Value(table.query<IValue>()));
    }
    static GenericValue cell(const InterfacePtr<IValueTable>& table, std::size_t row,
                             std::size_t column = 0) {
        return table->get(row, table->column(column).id);
    }
    /// The types of a column, a letter each: Undefined, Boolean, Number, String, Date; "*" for any.
    static std::string types(const InterfacePtr<IValueTable>& table, std::size_t column = 0) {
        const TypeDomain domain = table->column(column).domain;
        std::string letters = domain.isEmpty() ? "*" : "";
        for (const auto& [type, letter] : {std::pair(kUndefinedType, 'U'),
                                           {kBooleanType, 'B'},
                                           {kNumberType, 'N'},
                                           {kStringType, 'S'},
                                           {kDateType, 'D'}})
            letters += domain.containsType(type) ? std::string(1, letter) : "";
        return letters;
    }

    const host::HostProcess process_;
};

} // namespace core
