// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/lists/nesting.h>
#include <core/runtime/api.h>
#include <core/runtime/types.h>

#include <array>
#include <cstdint>
#include <istream>
#include <memory>

namespace core {

/// Takes brace-list text of any size apart without knowing what it holds: for tools that check, format and
/// convert. Accepts exactly one element with white space around it. Malformed text throws nothing: the
/// scanner tells the place and what was expected there. What the stream's buffer throws passes through.
///
/// Memory does not grow with the text: a long string or token comes in pieces. One thread at a time.
class CORE_API ListScanner {
  public:
    /// What next() finds.
    enum class Token : std::uint8_t {
        beginOfList, ///< "{"
        endOfList,   ///< "}"
        string,      ///< a string in quotes, or a piece of it
        bare,        ///< a number, a date or an id, or a piece of it
        endOfText,   ///< the element is complete, and nothing follows
        error,       ///< the text is malformed; see expected()
    };
    /// What malformed text misses.
    enum class Expected : std::uint8_t {
        element,   ///< a list, a string or a bare token
        separator, ///< "," or "}"
        endOfText, ///< the end of the text
        quote,     ///< the quote that ends a string
        hexDigit,  ///< a hexadecimal digit of an escape
        bareToken, ///< the rest of a number, a date or an id
        lessDepth, ///< fewer lists inside each other
    };

    /// A place in the text, counted in UTF-16 units.
    struct Place {
        std::uint64_t offset = 0; ///< units before it
        std::uint64_t line = 1;   ///< from 1; lines end with line feeds
        std::uint64_t column = 1; ///< from 1
    };

    /// How many lists may stand inside each other. No value that can be written has as many.
    static constexpr std::uint32_t kMaxDepth = 4 * Nesting::kMaxDepth;
    /// How many units of a string or bare token come at a time.
    static constexpr std::size_t kPieceUnits = 4096;

    /// Reads from `in`, which must outlive the scanner.
    explicit ListScanner(wistream& in);
    ListScanner(const ListScanner&) = delete;
    ListScanner& operator=(const ListScanner&) = delete;
    ~ListScanner();

    /// Goes to the next token and returns it. A string or bare token that is not whole comes again, with more
    /// of its text. After endOfText or error nothing else comes.
    Token next();

    /// Returns what next() has returned.
    [[nodiscard]] Token token() const noexcept { return token_; }
    /// Returns the units of a string, with quotes and escapes resolved, or of a bare token; borrowed until
    /// next().
    [[nodiscard]] wstring_view text() const noexcept { return {piece_.data(), size_}; }
    /// Returns whether text() ends the string or bare token.
    [[nodiscard]] bool isWhole() const noexcept {
        return phase_ != Phase::inString && phase_ != Phase::inBare;
    }
    /// Returns where the token begins; for an error, where the first unit stands that does not fit.
    [[nodiscard]] const Place& place() const noexcept { return place_; }
    /// Returns how many lists stand around what comes next.
    [[nodiscard]] std::uint32_t depth() const noexcept { return depth_; }
    /// Returns what an error missed.
    [[nodiscard]] Expected expected() const noexcept { return expected_; }
    /// Returns what an error missed as a text in the user's language, without the place.
    [[nodiscard]] wstring message() const;

  private:
    struct Input;
    enum class Phase : std::uint8_t { element, first, afterElement, inString, inBare, ended };

    Token set(Token token, Phase phase) noexcept;
    Token fail(Expected expected) noexcept;
    Token scanAfterElement();
    Token scanElement();
    Token scanString();
    Token scanBare();
    void scanRun();

    void skipSpaces();
    void consume();
    void consumed(wstring_view units) noexcept;
    [[nodiscard]] Place here() const noexcept { return {offset_, line_, offset_ - lineStart_ + 1}; }

    std::unique_ptr<Input> input_;
    std::uint64_t offset_ = 0;
    std::uint64_t line_ = 1;
    std::uint64_t lineStart_ = 0;
    std::uint32_t depth_ = 0;
    Token token_ = Token::endOfText;
    Phase phase_ = Phase::element;
    Expected expected_ = Expected::element;
    Place place_;
    std::size_t size_ = 0;
    std::array<wchar, kPieceUnits> piece_;
};

} // namespace core
