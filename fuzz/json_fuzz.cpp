// SPDX-License-Identifier: Apache-2.0
// Any bytes as JSON: a value, values by lines and a table, each of which is written and read back the same,
// or an error.
#include <core/exchange/json.h>
#include <core/values/errors.h>
#include <host/host_process.h>

#include <cstdint>
#include <cstdlib>
#include <string_view>

namespace {

template <class Work>
void refused_or(Work work) {
    try {
        work();
    } catch (const core::Exception& e) {
        if (e.description().empty() || e.description().starts_with(u"IDS_"))
            std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const host::HostProcess process;
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    refused_or([&] {
        const std::string once = core::to_json(core::from_json(text));
        if (core::to_json(core::from_json(once)) != once)
            std::abort();
    });
    refused_or([&] { static_cast<void>(core::to_json_lines(core::from_json_lines(text))); });
    refused_or([&] {
        core::Losses losses;
        const auto table =
            core::read_json_table(text, u"fuzz", {.columns = u"A Number, D Date", .losses = &losses});
        const std::string once = core::to_json(core::Value(table.query<core::IValue>()));
        const auto again = core::read_json_table(once, u"fuzz", {.columns = u"A Number, D Date"});
        if (core::to_json(core::Value(again.query<core::IValue>())) != once)
            std::abort();
    });
    return 0;
}
