// SPDX-License-Identifier: Apache-2.0
#include "core/streams/converter_state.h"
#include "core/streams/converters.h"

#include <core/files/url.h>
#include <core/runtime/errors.h>
#include <core/streams/errors.h>
#include <core/strings/integer_text.h>

namespace core {
namespace detail {

wstring hex_text(std::uint32_t number, std::size_t digits) {
    wstring text;
    for (; number != 0 || text.size() < digits; number >>= 4)
        text.insert(text.begin(), u"0123456789ABCDEF"[number & 0xF]);
    return text;
}

} // namespace detail

struct Decoder::State final
    : detail::ConverterState<detail::ByteDecoder, std::uint8_t, wchar, detail::ByteFault> {
    State(Encoding used, CodingErrorAction wanted, wstring text, std::uint64_t offset)
        : ConverterState(detail::make_decoder(used.page()), wanted), encoding(used), name(std::move(text)),
          begin(offset) {}

    [[nodiscard]] std::span<const std::uint8_t> misfits() const noexcept {
        return std::span(fault().bytes).first(fault().size);
    }
    [[nodiscard]] std::uint64_t faultOffset() const noexcept {
        return begin + taken() - fault().ahead - fault().size;
    }
    bool reword() {
        if (faults() == 0)
            firstFault = faultOffset();
        if (action() == CodingErrorAction::replace || misfits().empty()) { // never without a trace
            put(wchar{0xFFFD});
            return true;
        }
        for (const std::uint8_t byte : misfits())
            for (const wchar unit : u"\\x" + detail::hex_text(byte, 2))
                put(unit);
        return true;
    }
    [[noreturn]] void raise() const {
        wstring bytes;
        for (const std::uint8_t byte : misfits())
            bytes += (bytes.empty() ? u"" : u" ") + detail::hex_text(byte, 2);
        throw_error<ConverterException>(messages::kTextNotDecodable, {shown_url(name), encoding.name(), bytes,
                                                                      string_intto(faultOffset())});
    }

    Encoding encoding;
    wstring name;
    std::uint64_t begin;
    std::uint64_t firstFault = 0;
};

Decoder::Decoder(Encoding encoding, CodingErrorAction action, wstring name, std::uint64_t offset)
    : state_(std::make_unique<State>(encoding, action, std::move(name), offset)) {}
Decoder::~Decoder() = default;
Decoder::Decoder(Decoder&&) noexcept = default;
Decoder& Decoder::operator=(Decoder&&) noexcept = default;

ConvertStep Decoder::decode(std::span<const std::byte> bytes, std::span<wchar> units, bool last) {
    State& state = *state_;
    return state.convert(
        {reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()}, units, last,
        [&] { return state.reword(); }, [&] { state.raise(); });
}

std::uint64_t Decoder::offset() const noexcept {
    return state_->begin + state_->taken();
}
std::uint64_t Decoder::faults() const noexcept {
    return state_->faults();
}
std::uint64_t Decoder::firstFault() const noexcept {
    return state_->firstFault;
}

struct Encoder::State final
    : detail::ConverterState<detail::UnitEncoder, wchar, std::uint8_t, detail::UnitFault> {
    State(Encoding used, CodingErrorAction wanted, wstring text)
        : ConverterState(detail::make_encoder(used.page()), wanted), encoding(used), name(std::move(text)) {}

    bool reword() {
        const std::uint32_t character = fault().character;
        if (action() == CodingErrorAction::replace)
            return putConverted(wstring_view(u"?"));
        return putConverted(character > 0xFFFF ? u"\\U" + detail::hex_text(character, 8)
                                               : u"\\u" + detail::hex_text(character, 4));
    }
    [[noreturn]] void raise() const {
        const wstring place = string_intto(made());
        const std::uint32_t character = fault().character;
        if ((character & 0xFFFFF800) == 0xD800)
            throw_error<ConverterException>(messages::kTextNotUtf16, {shown_url(name), place});
        throw_error<ConverterException>(
            messages::kTextNotEncodable,
            {shown_url(name), encoding.name(), u"U+" + detail::hex_text(character, 4), place});
    }

    Encoding encoding;
    wstring name;
};

Encoder::Encoder(Encoding encoding, CodingErrorAction action, wstring name)
    : state_(std::make_unique<State>(encoding, action, std::move(name))) {}
Encoder::~Encoder() = default;
Encoder::Encoder(Encoder&&) noexcept = default;
Encoder& Encoder::operator=(Encoder&&) noexcept = default;

ConvertStep Encoder::encode(wstring_view units, std::span<std::byte> bytes, bool last) {
    State& state = *state_;
    return state.convert(
        std::span(units), {reinterpret_cast<std::uint8_t*>(bytes.data()), bytes.size()}, last,
        [&] { return state.reword(); }, [&] { state.raise(); });
}

std::uint64_t Encoder::offset() const noexcept {
    return state_->made();
}
std::uint64_t Encoder::faults() const noexcept {
    return state_->faults();
}

wstring decode_text(std::span<const std::byte> bytes, Encoding encoding, CodingErrorAction action) {
    Decoder decoder(encoding, action);
    wstring text;
    text.resize(bytes.size() + 64); // as many as most encodings need, and one step that finds the end
    std::size_t size = 0;
    for (ConvertStep step{1, 0}; step.taken + step.made != 0;) {
        if (text.size() - size < 64)
            text.resize(text.size() + text.size() / 2);
        step = decoder.decode(bytes, std::span(text).subspan(size), true);
        bytes = bytes.subspan(step.taken);
        size += step.made;
    }
    text.resize(size);
    return text;
}

std::string encode_text(wstring_view text, Encoding encoding, CodingErrorAction action) {
    Encoder encoder(encoding, action);
    std::string bytes;
    bytes.resize(text.size() + text.size() / 2 + 64);
    std::size_t size = 0;
    for (ConvertStep step{1, 0}; step.taken + step.made != 0;) {
        if (bytes.size() - size < 64)
            bytes.resize(bytes.size() + bytes.size() / 2);
        step = encoder.encode(text, std::as_writable_bytes(std::span(bytes)).subspan(size), true);
        text.remove_prefix(step.taken);
        size += step.made;
    }
    bytes.resize(size);
    return bytes;
}

} // namespace core
