// SPDX-License-Identifier: Apache-2.0
#include "core/numbers/digit_text.h"

#include <core/numbers/numeric.h>

#include <istream>
#include <ostream>
#include <streambuf>

namespace core {
namespace {

using Traits = wistream::traits_type;

/// Reads one number's characters, one ahead and no further. Streams of char16_t have no number facets, so the
/// stream buffer is read directly.
class NumberReader {
  public:
    explicit NumberReader(wistream& in) : buffer_(*in.rdbuf()), next_(buffer_.sgetc()) {}

    void read() {
        while (at(u' ') || at(u'\t') || at(u'\n') || at(u'\r')) {
            advance();
        }
        if (at(u'-') || at(u'+')) {
            take();
        }
        takeDigits();
        if (at(u'.')) {
            take();
            takeDigits();
        }
    }
    [[nodiscard]] bool atEnd() const { return Traits::eq_int_type(next_, Traits::eof()); }
    [[nodiscard]] bool hasDigits() const { return digits_; }
    [[nodiscard]] const wstring& text() const { return text_; }

  private:
    [[nodiscard]] bool at(wchar c) const { return !atEnd() && Traits::to_char_type(next_) == c; }
    void advance() { next_ = buffer_.snextc(); }
    void take() {
        text_.push_back(Traits::to_char_type(next_));
        advance();
    }
    void takeDigits() {
        while (!atEnd() && limbs::is_decimal(Traits::to_char_type(next_))) {
            digits_ = true;
            take();
        }
    }

    std::basic_streambuf<wchar>& buffer_;
    Traits::int_type next_;
    wstring text_;
    bool digits_ = false;
};

} // namespace

bool Numeric::fromStream(wistream& in) {
    if (!in.good() || in.rdbuf() == nullptr) {
        return false;
    }
    NumberReader reader(in);
    reader.read();
    if (reader.atEnd()) {
        in.setstate(std::ios_base::eofbit);
    }
    if (!reader.hasDigits()) {
        return false;
    }
    *this = fromString(reader.text());
    return true;
}

wostream& Numeric::toStream(wostream& out) const {
    const wstring text = toString();
    const auto size = static_cast<std::streamsize>(text.size());
    if (out.good() && out.rdbuf()->sputn(text.data(), size) != size) {
        out.setstate(std::ios_base::badbit);
    }
    return out;
}

wostream& operator<<(wostream& out, const Numeric& number) {
    return number.toStream(out);
}

wistream& operator>>(wistream& in, Numeric& number) {
    if (!number.fromStream(in)) {
        in.setstate(std::ios_base::failbit);
    }
    return in;
}

} // namespace core
