// SPDX-License-Identifier: Apache-2.0
// Any bytes as the compact form of a value, in place and in pieces. What is read is written and read back the
// same, in this form and as a brace list.
#include <core/persistence/stream_storage.h>
#include <core/runtime/exception.h>
#include <core/values/generic_value.h>
#include <host/host_process.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <vector>

namespace {

using namespace core;

/// The value behind a head of the right version; nothing for bytes that are malformed, or of a class that is
/// not here.
std::optional<GenericValue> read(std::span<const std::byte> bytes, std::size_t piece) {
    try {
        StreamInStorage storage([bytes, piece](std::span<std::byte> room) mutable {
            const std::size_t count = std::min({room.size(), bytes.size(), piece});
            std::copy_n(bytes.begin(), count, room.begin());
            bytes = bytes.subspan(count);
            return count;
        });
        GenericValue value = GenericValue::deserialize(&storage);
        storage.finish();
        return value;
    } catch (const Exception&) {
        return std::nullopt;
    }
}

wstring text_of(const GenericValue& value) {
    wstring text;
    value.toString(text);
    return text;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const host::HostProcess process;
    static constexpr std::byte kHead[] = {std::byte{0xC1}, std::byte{'c'}, std::byte{'f'}, std::byte{1}};
    std::vector<std::byte> bytes(std::begin(kHead), std::end(kHead));
    const auto input = std::as_bytes(std::span(data, size));
    bytes.insert(bytes.end(), input.begin(), input.end());
    const auto value = read(bytes, size + 4);
    if (value.has_value() != read(bytes, 1 + size % 9).has_value())
        std::abort();
    if (!value)
        return 0;
    const wstring text = text_of(*value);
    if (text_of(GenericValue::fromBytes(value->toBytes())) != text)
        std::abort();
    // Text drops parts of a second, and a map then has fewer keys.
    const wstring dropped = text_of(GenericValue::fromString(text));
    if (text_of(GenericValue::fromString(dropped)) != dropped)
        std::abort();
    return 0;
}
