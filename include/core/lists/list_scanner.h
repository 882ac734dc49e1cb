// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/lists/nesting.h>
#include <core/runtime/api.h>
#include <core/streams/unit_source.h>

#include <array>
#include <cstdint>
#include <istream>
#include <memory>

namespace core {

namespace detail {
class BareToken;
}

/// Takes brace-list text of any size apart without knowing what it holds: for tools that check, format and
/// convert. Accepts exactly one element with white space around it. Nothing is thrown for malformed text: the
/// scanner tells the place and what was expected there.
///
/// Memory does not grow with the text: a long string or token comes in pieces. The stream must outlive the
/// scanner. One thread at a time.
class CORE_API ListScanner {
  public:
    enum class Token : std::uint8_t { beginOfList, endOfList, string, bare, endOfText, error };
    enum class Expected : std::uint8_t {
        element,
        separator,
        endOfText,
        quote,
        hexDigit,
        bareToken,
        lessDepth
    };

    /// A position in the text; lines end with line feeds, line and column count from
    /// 1. All count UTF-16 units.
    struct Place {
        std::uint64_t offset = 0;
        std::uint64_t line = 1;
        std::uint64_t column = 1;
    };

    /// Lists inside lists; no value that can be written has as many.
    static constexpr std::uint32_t kMaxDepth = 4 * Nesting::kMaxDepth;
    static constexpr std::size_t kPieceUnits = 4096;

    explicit ListScanner(wistream& in);
    ListScanner(const ListScanner&) = delete;
    ListScanner& operator=(const ListScanner&) = delete;
    ~ListScanner();

    /// Goes to the next token and returns it. A string or bare token that is not whole comes again, with more
    /// of its text. After endOfText or error nothing else comes.
    Token next();

    [[nodiscard]] Token token() const noexcept { return token_; }
    /// The characters of a string, quotes and escapes resolved, or of a bare token; valid until next().
    [[nodiscard]] wstring_view text() const noexcept { return {piece_.data(), size_}; }
    /// Whether text() ends the string or bare token.
    [[nodiscard]] bool isWhole() const noexcept {
        return phase_ != Phase::inString && phase_ != Phase::inBare;
    }
    /// Where the token begins; of an error, the first unit that does not fit.
    [[nodiscard]] const Place& place() const noexcept { return place_; }
    /// How many lists stand around what comes next.
    [[nodiscard]] std::uint32_t depth() const noexcept { return depth_; }
    /// What an error missed.
    [[nodiscard]] Expected expected() const noexcept { return expected_; }
    /// The same as a text in the user's language; says nothing of the place.
    [[nodiscard]] wstring message() const;

  private:
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

    UnitSource source_;
    std::uint64_t offset_ = 0;
    std::uint64_t line_ = 1;
    std::uint64_t lineStart_ = 0;
    std::uint32_t depth_ = 0;
    Token token_ = Token::endOfText;
    Phase phase_ = Phase::element;
    Expected expected_ = Expected::element;
    Place place_;
    std::unique_ptr<detail::BareToken> bare_;
    std::size_t size_ = 0;
    std::array<wchar, kPieceUnits> piece_;
};

} // namespace core
