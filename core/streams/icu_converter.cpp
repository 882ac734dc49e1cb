// SPDX-License-Identifier: Apache-2.0
#include "core/streams/converters.h"
#include "core/streams/icu_handles.h"

#include <core/runtime/errors.h>
#include <core/streams/errors.h>

#include <algorithm>
#include <array>
#include <new>

namespace core::detail {
namespace {

IcuConverter open_converter(const CodePage& page) {
    IcuConverter converter = open_strict_converter(page.icuName.c_str());
    if (converter == nullptr)
        throw_error<ConverterException>(messages::kEncodingUnknown, {page.name});
    return converter;
}

/// Any other failure than bytes or characters that do not fit is one of memory.
[[noreturn]] void fail() {
    throw std::bad_alloc();
}

/// What ICU reads a control as, where it moves controls, back to the control.
wchar control_of(wchar unit) noexcept {
    return unit == 0x1C ? wchar{0x1A} : unit == 0x7F ? wchar{0x1C} : unit == 0x1A ? wchar{0x7F} : unit;
}
/// The other way round.
wchar moved_control(wchar unit) noexcept {
    return control_of(control_of(unit));
}

/// Every other encoding. ICU keeps characters that are cut, and shifts between sets.
class IcuDecoder final : public ByteDecoder {
  public:
    explicit IcuDecoder(const CodePage& page)
        : converter_(open_converter(page)), movesControls_(page.movesControls) {}

    bool run(const std::uint8_t*& at, const std::uint8_t* end, wchar*& out, const wchar* outEnd, bool last,
             ByteFault& fault) override {
        const auto* from = reinterpret_cast<const char*>(at);
        const std::uint8_t* const start = at;
        wchar* const begin = out;
        UErrorCode status = U_ZERO_ERROR;
        ucnv_toUnicode(converter_.get(), &out, outEnd, &from, reinterpret_cast<const char*>(end), nullptr,
                       static_cast<UBool>(last), &status);
        at = reinterpret_cast<const std::uint8_t*>(from);
        if (movesControls_)
            std::transform(begin, out, begin, control_of);
        if (status == U_BUFFER_OVERFLOW_ERROR || U_SUCCESS(status))
            return false;
        if (status != U_INVALID_CHAR_FOUND && status != U_ILLEGAL_CHAR_FOUND &&
            status != U_TRUNCATED_CHAR_FOUND && status != U_ILLEGAL_ESCAPE_SEQUENCE &&
            status != U_UNSUPPORTED_ESCAPE_SEQUENCE)
            fail();
        char bytes[32];
        auto size = static_cast<std::int8_t>(sizeof bytes);
        UErrorCode known = U_ZERO_ERROR;
        ucnv_getInvalidChars(converter_.get(), bytes, &size, &known);
        fault.size = U_SUCCESS(known) ? static_cast<std::size_t>(size) : 0;
        std::copy_n(bytes, fault.size, fault.bytes.begin());
        if (fault.size == 0 && at != start) { // BOCU-1 forgets bytes that came in an earlier piece
            fault.bytes[0] = at[-1];
            fault.size = 1;
        }
        known = U_ZERO_ERROR;
        fault.ahead = static_cast<std::size_t>(std::max(ucnv_toUCountPending(converter_.get(), &known), 0));
        return true;
    }

  private:
    IcuConverter converter_;
    bool movesControls_;
};

class IcuEncoder final : public UnitEncoder {
  public:
    explicit IcuEncoder(const CodePage& page)
        : converter_(open_converter(page)), movesControls_(page.movesControls) {}

    bool run(const wchar*& at, const wchar* end, std::uint8_t*& out, const std::uint8_t* outEnd, bool last,
             UnitFault& fault) override {
        if (!movesControls_)
            return runAsIs(at, end, out, outEnd, last, fault);
        std::array<wchar, 256> moved;
        for (;;) { // until a piece is not taken whole
            const auto size = std::min<std::ptrdiff_t>(end - at, std::ssize(moved));
            std::transform(at, at + size, moved.begin(), moved_control);
            const wchar* from = moved.data();
            const bool isFault = runAsIs(from, from + size, out, outEnd, last && at + size == end, fault);
            const auto taken = from - moved.data();
            at += taken;
            if (isFault || taken < size || at == end)
                return isFault;
        }
    }

  private:
    bool runAsIs(const wchar*& at, const wchar* end, std::uint8_t*& out, const std::uint8_t* outEnd,
                 bool last, UnitFault& fault) {
        auto* to = reinterpret_cast<char*>(out);
        UErrorCode status = U_ZERO_ERROR;
        ucnv_fromUnicode(converter_.get(), &to, reinterpret_cast<const char*>(outEnd), &at, end, nullptr,
                         static_cast<UBool>(last), &status);
        out = reinterpret_cast<std::uint8_t*>(to);
        if (status == U_BUFFER_OVERFLOW_ERROR || U_SUCCESS(status))
            return false;
        if (status != U_INVALID_CHAR_FOUND && status != U_ILLEGAL_CHAR_FOUND &&
            status != U_TRUNCATED_CHAR_FOUND)
            fail();
        wchar units[32];
        auto size = static_cast<std::int8_t>(std::size(units));
        UErrorCode known = U_ZERO_ERROR;
        ucnv_getInvalidUChars(converter_.get(), units, &size, &known);
        const wchar* unit = units;
        if (U_SUCCESS(known) && size > 0)
            static_cast<void>(take_character(unit, units + size, true, fault.character));
        return true;
    }

    IcuConverter converter_;
    bool movesControls_;
};

} // namespace

std::unique_ptr<ByteDecoder> make_icu_decoder(const CodePage& page) {
    return std::make_unique<IcuDecoder>(page);
}

std::unique_ptr<UnitEncoder> make_icu_encoder(const CodePage& page) {
    return std::make_unique<IcuEncoder>(page);
}

std::unique_ptr<ByteDecoder> make_decoder(const CodePage& page) {
    switch (page.kind) {
    case PageKind::utf8:
        return make_utf8_decoder();
    case PageKind::utf16le:
    case PageKind::utf16be:
        return make_utf16_decoder(page.kind == PageKind::utf16be);
    case PageKind::table:
        return make_table_decoder(*page.table);
    case PageKind::icu:
        break;
    }
    return make_icu_decoder(page);
}

std::unique_ptr<UnitEncoder> make_encoder(const CodePage& page) {
    switch (page.kind) {
    case PageKind::utf8:
        return make_utf8_encoder();
    case PageKind::utf16le:
    case PageKind::utf16be:
        return make_utf16_encoder(page.kind == PageKind::utf16be);
    case PageKind::table:
        return make_table_encoder(*page.table);
    case PageKind::icu:
        break;
    }
    return make_icu_encoder(page);
}

} // namespace core::detail
