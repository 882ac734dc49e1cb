// SPDX-License-Identifier: Apache-2.0
#include "core/lists/compact_reader.h"

#include <core/lists/errors.h>
#include <core/strings/integer_text.h>

#include <bit>
#include <limits>
#include <string>

namespace core::detail {

CompactReader::CompactReader(ByteReader read)
    : read_(std::move(read)), piece_(new std::byte[kPiece]), begin_(piece_.get()), at_(begin_), end_(begin_) {
}

void CompactReader::fail() const {
    const std::uint64_t offset = passed_ + static_cast<std::uint64_t>(at_ - begin_);
    throw_error<ListStreamException>(messages::kMalformedCompact, {string_intto(offset)});
}

/// Brings more bytes behind the end of those at hand, all of which have been read; false at the end.
bool CompactReader::fill() {
    if (!read_)
        return false;
    passed_ += static_cast<std::uint64_t>(end_ - begin_);
    begin_ = at_ = end_ = piece_.get();
    end_ += read_(std::span(piece_.get(), kPiece));
    return at_ != end_;
}

/// Makes `count` bytes, far fewer than a piece, lie side by side.
void CompactReader::gather(std::size_t count) {
    if (!read_)
        fail();
    passed_ += static_cast<std::uint64_t>(at_ - begin_);
    std::size_t size = static_cast<std::size_t>(end_ - at_);
    std::copy_n(at_, size, piece_.get()); // to the front
    begin_ = at_ = piece_.get();
    while (size < count) {
        const std::size_t more = read_(std::span(piece_.get() + size, kPiece - size));
        size += more;
        end_ = at_ + size;
        if (more == 0)
            fail();
    }
}

bool CompactReader::skipIf(CompactToken token) {
    const bool here = isNext(token);
    at_ += here ? 1 : 0;
    return here;
}

void CompactReader::expect(CompactToken token) {
    if (!skipIf(token))
        fail();
}

void CompactReader::expectNothing() {
    if (peek() != kNone)
        fail();
}

std::uint64_t CompactReader::takeVarint() {
    std::uint64_t number = 0;
    for (unsigned shift = 0; shift < 64; shift += 7) {
        const auto byte = std::to_integer<std::uint64_t>(take());
        if (shift == 63 && byte > 1)
            break;
        number |= (byte & 0x7F) << shift;
        if (byte < 0x80)
            return number;
    }
    fail();
}

/// Returns a number of things of `width` bytes whose size does not overflow.
std::uint64_t CompactReader::takeCount(std::size_t width) {
    const std::uint64_t count = takeVarint();
    if (count > std::numeric_limits<std::uint64_t>::max() / width)
        fail();
    return count;
}

Numeric CompactReader::Whole::number() const {
    return negative ? -Numeric(bits) - Numeric(1) : Numeric(bits);
}

std::optional<CompactReader::Whole> CompactReader::takeWhole() {
    const int token = peek();
    if (token >= 0 && token < static_cast<int>(CompactToken::shortString))
        return Whole{.negative = false, .bits = std::to_integer<std::uint64_t>(take())};
    if (skipIf(CompactToken::positive))
        return Whole{.negative = false, .bits = takeVarint()};
    if (skipIf(CompactToken::negative))
        return Whole{.negative = true, .bits = takeVarint()};
    return std::nullopt;
}

bool CompactReader::getBoolean() {
    const std::uint64_t number = getInteger(false);
    if (number > 1)
        fail();
    return number == 1;
}

std::uint64_t CompactReader::getInteger(bool withSign) {
    if (withSign || !isNext(CompactToken::negative)) {
        if (const auto whole = takeWhole())
            return whole->negative ? ~whole->bits : whole->bits;
    }
    if (skipIf(CompactToken::no))
        return 0;
    expect(CompactToken::yes);
    return 1;
}

Numeric CompactReader::getNumber() {
    if (const auto whole = takeWhole())
        return whole->number();
    if (skipIf(CompactToken::decimal)) {
        const auto scale = std::to_integer<std::uint32_t>(take());
        if (scale == 0 || scale > Numeric::kMaxScale)
            fail();
        return Numeric::fromScaled(unzigzag(takeVarint()), scale);
    }
    expect(CompactToken::digits);
    std::string text;
    takeBytes(takeVarint(), 1, [&](std::span<const std::byte> run) {
        text.append(reinterpret_cast<const char*>(run.data()), run.size());
    });
    auto number = Numeric::parse(text);
    if (!number)
        fail();
    return std::move(*number);
}

double CompactReader::getReal() {
    if (!skipIf(CompactToken::real))
        return static_cast<double>(getNumber());
    return std::bit_cast<double>(load_word(need(sizeof(double))));
}

Date CompactReader::getDate() {
    const auto date = [&](std::int64_t unit) {
        const std::uint64_t count = takeVarint();
        if (count > std::numeric_limits<std::uint64_t>::max() / static_cast<std::uint64_t>(unit))
            fail();
        return Date(count * static_cast<std::uint64_t>(unit));
    };
    if (skipIf(CompactToken::days))
        return date(kTicksPerDay);
    if (skipIf(CompactToken::seconds))
        return date(kTicksPerSecond);
    expect(CompactToken::ticks);
    return date(1);
}

wstring_view CompactReader::getText() {
    const int token = peek();
    std::uint64_t size = 0;
    bool wide = false;
    if (token >= static_cast<int>(CompactToken::shortString) && token < static_cast<int>(CompactToken::end)) {
        size = std::to_integer<std::uint64_t>(take()) - static_cast<std::uint64_t>(CompactToken::shortString);
    } else {
        wide = skipIf(CompactToken::wideString);
        if (!wide)
            expect(CompactToken::narrowString);
        size = takeCount(sizeof(wchar));
    }
    const bool isShort = size <= kShortText;
    std::size_t read = 0;
    longText_.clear();
    takeBytes(wide ? size * sizeof(wchar) : size, wide ? sizeof(wchar) : 1,
              [&](std::span<const std::byte> run) {
                  const std::size_t units = wide ? run.size() / sizeof(wchar) : run.size();
                  if (!isShort)
                      longText_.resize(read + units);
                  wchar* const to = (isShort ? shortText_.data() : longText_.data()) + read;
                  for (std::size_t i = 0; i < units; ++i)
                      to[i] = wide ? load_unit(run.data() + 2 * i) : std::to_integer<wchar>(run[i]);
                  read += units;
              });
    return {isShort ? shortText_.data() : longText_.data(), read};
}

std::vector<std::byte> CompactReader::getBytes() {
    expect(CompactToken::bytes);
    const std::uint64_t size = takeVarint();
    std::vector<std::byte> bytes;
    bytes.reserve(believed(size, 1));
    takeBytes(size, 1,
              [&](std::span<const std::byte> run) { bytes.insert(bytes.end(), run.begin(), run.end()); });
    return bytes;
}

GUID CompactReader::getId() {
    if (skipIf(CompactToken::knownId)) {
        const auto index = std::to_integer<std::size_t>(take());
        if (index >= ids_.size())
            fail();
        return ids_[index];
    }
    expect(CompactToken::newId);
    const GUID id = load_id(need(kIdBytes));
    if (ids_.size() < kKnownIds)
        ids_.push_back(id);
    return id;
}

CompactReader::Packed CompactReader::beginPacked() {
    expect(CompactToken::packed);
    Packed packed{};
    packed.count = takeCount(sizeof(std::uint64_t));
    packed.width = std::to_integer<std::size_t>(take());
    if (packed.width == 0 || packed.width > sizeof(std::uint64_t))
        fail();
    return packed;
}

std::size_t CompactReader::believed(std::uint64_t count, std::size_t width) const noexcept {
    const auto here = static_cast<std::size_t>(end_ - at_);
    return static_cast<std::size_t>(std::min<std::uint64_t>(count, here / width));
}

void CompactReader::skipBytes(std::uint64_t count) {
    takeBytes(count, 1, [](std::span<const std::byte>) {});
}

/// Skips one token. Ids are remembered all the same: later ones count from them.
void CompactReader::skipToken() {
    const int token = peek();
    if (token >= static_cast<int>(CompactToken::shortString) && token < static_cast<int>(CompactToken::end)) {
        static_cast<void>(getText());
        return;
    }
    switch (static_cast<CompactToken>(token)) {
    case CompactToken::undefined:
    case CompactToken::null:
    case CompactToken::type:   // an id follows,
    case CompactToken::object: // and behind it a body
        ++at_;
        break;
    case CompactToken::narrowString:
    case CompactToken::bytes:
    case CompactToken::digits:
        ++at_;
        skipBytes(takeVarint());
        break;
    case CompactToken::wideString:
        ++at_;
        skipBytes(takeCount(sizeof(wchar)) * sizeof(wchar));
        break;
    case CompactToken::days:
    case CompactToken::seconds:
    case CompactToken::ticks:
        ++at_;
        static_cast<void>(takeVarint());
        break;
    case CompactToken::newId:
    case CompactToken::knownId:
        static_cast<void>(getId());
        break;
    case CompactToken::packed: {
        const Packed packed = beginPacked();
        skipBytes(packed.count * packed.width);
        break;
    }
    case CompactToken::no:
    case CompactToken::yes:
        static_cast<void>(getBoolean());
        break;
    default:
        static_cast<void>(getReal());
    }
}

void CompactReader::skipContent() {
    for (std::uint64_t depth = 0;;) {
        if (isNext(CompactToken::end)) {
            if (depth == 0)
                return;
            --depth;
            ++at_;
        } else if (skipIf(CompactToken::begin)) {
            ++depth;
        } else if (peek() == kNone) {
            fail();
        } else {
            skipToken();
        }
    }
}

} // namespace core::detail
