// SPDX-License-Identifier: Apache-2.0
// Any bytes as CSV: a table that is written and read back equal, or an error with a line. The first byte says
// how the text is read.
#include <core/exchange/csv.h>
#include <core/exchange/json.h>
#include <core/values/errors.h>
#include <host/host_process.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <string>
#include <string_view>

namespace {

core::InterfacePtr<core::IValueTable> read(std::string_view text, const core::CsvReadOptions& options,
                                           std::size_t piece) {
    return core::read_csv(
        [text, piece](std::span<std::byte> into) mutable {
            const std::size_t count = std::min({piece, into.size(), text.size()});
            std::copy_n(std::as_bytes(std::span(text)).begin(), count, into.begin());
            text.remove_prefix(count);
            return count;
        },
        u"fuzz", options);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const host::HostProcess process;
    if (size == 0)
        return 0;
    const std::string_view text(reinterpret_cast<const char*>(data) + 1, size - 1);
    core::Losses losses;
    core::CsvReadOptions options;
    if ((data[0] & 1U) != 0)
        options.encoding = core::Encoding();
    if ((data[0] & 2U) != 0)
        options.locale = core::Locale((data[0] & 4U) != 0 ? "de" : "ru");
    if ((data[0] & 8U) != 0)
        options.columns = u"A Number(5,2), B Date, C Boolean, D String(3)";
    if ((data[0] & 16U) != 0)
        options.headers = false;
    options.strict = (data[0] & 32U) != 0;
    if ((data[0] & 64U) != 0)
        options.losses = &losses;
    try {
        const auto table = read(text, options, text.size() + 1);
        std::ostringstream written;
        core::save_csv(written, table);
        // What is written has the comma and UTF-8, and types are found again. A text that was cut to a length
        // may look like a number with zeros behind it then.
        const bool cut = (data[0] & 8U) != 0;
        const auto again =
            read(written.str(), {.delimiter = ',', .encoding = core::Encoding()}, 1 + size % 7);
        std::ostringstream twice;
        core::save_csv(twice, again);
        if (again->rowCount() != table->rowCount() || again->columnCount() != table->columnCount() ||
            (!cut && twice.str() != written.str()))
            std::abort();
    } catch (const core::Exception& e) {
        if (e.description().empty() || e.description().starts_with(u"IDS_"))
            std::abort();
    }
    return 0;
}
