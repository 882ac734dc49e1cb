// SPDX-License-Identifier: Apache-2.0
// Conditions over a small table. The input is the text of one in UTF-8. What is read is written and read
// again as the same; the rows found are found by a copy of the filter, too, and kept by keep_rows().
#include <core/runtime/utf8.h>
#include <core/tables.h>
#include <host/host_process.h>

#include <cstdint>
#include <cstdlib>
#include <string_view>

namespace {

core::InterfacePtr<core::IValueTable> make_table() {
    using core::Value;
    auto table = core::create_value_table();
    for (const core::wchar* name : {u"Key", u"Price", u"Name", u"Day", u"Flag", u"Any"})
        table->addColumn(name);
    for (int i = 0; i < 20; ++i) {
        const Value any[] = {Value(i), Value(u"text"), Value(), Value::null()};
        const Value cells[] = {Value(i % 5),
                               i % 7 == 0 ? Value() : Value(core::Numeric::fromScaled(125 * i, 2)),
                               Value(i % 3 == 0 ? u"North" : u"Юг"),
                               Value(core::Date(2024, 1 + i % 12, 1 + i)),
                               Value(i % 2 == 0),
                               any[i % 4]};
        table->appendRow(cells);
    }
    return table;
}

void require(bool holds) {
    if (!holds)
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const host::HostProcess process;
    static const auto table = make_table();
    try {
        const core::Filter filter(std::string_view(reinterpret_cast<const char*>(data), size));
        require(core::Filter(core::wstring_view(filter.text())) == filter);
        const auto rows = core::find_rows(*table, filter);
        const auto copy = core::copy_rows(*table, {});
        require(core::keep_rows(*copy, filter) + rows.size() == table->rowCount());
        require(core::find_rows(*copy, filter).size() == rows.size());
        require(core::find_rows(*table, !filter || filter).size() <= table->rowCount());
    } catch (const core::ExpressionException&) {
    } catch (const core::ConverterException&) {
    }
    return 0;
}
