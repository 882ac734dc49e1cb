// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/streams/encoding.h>

#include <memory>
#include <string>

/// Conversion between bytes and UTF-16 units, in pieces of any size: how a text is cut changes nothing.
namespace core {

/// How far one call of a converter came.
struct ConvertStep {
    std::size_t taken = 0; ///< of what was given: bytes to a Decoder, units to an Encoder
    std::size_t made = 0;  ///< of what it was to fill
};

/// Bytes to units. One thread at a time.
class CORE_API Decoder {
  public:
    /// Decodes `encoding`; messages call the text `name` and count its bytes from `offset`. Throws
    /// ConverterException when ICU cannot open the encoding.
    explicit Decoder(Encoding encoding = {}, CodingErrorAction action = CodingErrorAction::report,
                     wstring name = {}, std::uint64_t offset = 0);
    ~Decoder();
    /// Takes the text over in the middle; `other` may then only be destroyed.
    Decoder(Decoder&& other) noexcept;
    /// Takes the text over in the middle; `other` may then only be destroyed.
    Decoder& operator=(Decoder&& other) noexcept;

    /// Decodes until `units` is full or all of `bytes` are taken; a character that is cut at the end of
    /// `bytes` is kept for the next call. With `last` no bytes follow, and the text has ended with the first
    /// call that takes nothing and makes nothing. Throws ConverterException for bytes that do not fit, unless
    /// they are replaced or escaped: what stands before them is handed out first, and the next call throws.
    ConvertStep decode(std::span<const std::byte> bytes, std::span<wchar> units, bool last);

    /// Returns the offset behind the bytes that were decoded.
    [[nodiscard]] std::uint64_t offset() const noexcept;
    /// Returns how many sequences of bytes were replaced or escaped.
    [[nodiscard]] std::uint64_t faults() const noexcept;
    /// Returns the offset of the first sequence that did not fit, 0 when faults() is 0.
    [[nodiscard]] std::uint64_t firstFault() const noexcept;

  private:
    struct State;
    std::unique_ptr<State> state_;
};

/// Units to bytes. It writes no byte order mark, except that "UTF-16" and "UTF-32" begin with one. One thread
/// at a time.
class CORE_API Encoder {
  public:
    /// Encodes in `encoding`; messages call the text `name`. Throws ConverterException when ICU cannot open
    /// the encoding.
    explicit Encoder(Encoding encoding = {}, CodingErrorAction action = CodingErrorAction::report,
                     wstring name = {});
    ~Encoder();
    /// Takes the text over in the middle; `other` may then only be destroyed.
    Encoder(Encoder&& other) noexcept;
    /// Takes the text over in the middle; `other` may then only be destroyed.
    Encoder& operator=(Encoder&& other) noexcept;

    /// Encodes until `bytes` is full or all of `units` are taken; half a surrogate pair at the end of `units`
    /// is kept for the next call. With `last` no units follow, and the text has ended with the first call
    /// that takes nothing and makes nothing. Throws ConverterException for what does not fit, as
    /// Decoder::decode() does.
    ConvertStep encode(wstring_view units, std::span<std::byte> bytes, bool last);

    /// Returns how many bytes were made.
    [[nodiscard]] std::uint64_t offset() const noexcept;
    /// Returns how many characters were replaced or escaped.
    [[nodiscard]] std::uint64_t faults() const noexcept;

  private:
    struct State;
    std::unique_ptr<State> state_;
};

/// Returns a whole text in UTF-16. A byte order mark stays, as U+FEFF. Throws ConverterException as Decoder
/// does.
[[nodiscard]] CORE_API wstring decode_text(std::span<const std::byte> bytes, Encoding encoding,
                                           CodingErrorAction action = CodingErrorAction::report);
/// Returns a whole text in an encoding. Throws ConverterException as Encoder does.
[[nodiscard]] CORE_API std::string encode_text(wstring_view text, Encoding encoding,
                                               CodingErrorAction action = CodingErrorAction::report);

} // namespace core
