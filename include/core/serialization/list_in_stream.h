// SPDX-License-Identifier: Apache-2.0
#pragma once
#include <core/dates/date.h>
#include <core/numbers/numeric.h>
#include <core/runtime/error.h>
#include <core/strings/char_class.h>

#include <istream>
namespace core {
inline void skip_spaces(wistream& in) {
    for (;;) {
        auto c = in.rdbuf()->sgetc();
        if (c == 0xFFFF || !is_space(static_cast<wchar>(c)))
            return;
        in.rdbuf()->sbumpc();
    }
}
class ListInStream {
  public:
    explicit ListInStream(wistream& in) : in_(in) {}
    void getBeginOfList() {
        gap();
        need(u'{');
    }
    void getEndOfList() {
        skip_spaces(in_);
        need(u'}');
        comma_ = true;
    }
    bool getComma() {
        skip_spaces(in_);
        if (peek() != u',')
            return false;
        bump();
        comma_ = false;
        return true;
    }
    void skipListContent() { bad(); }
    void get(bool& b) { b = word() == u"1"; }
    void get(std::int32_t& v) { v = static_cast<std::int32_t>(Numeric::fromString(word())); }
    void get(std::uint32_t& v) { v = static_cast<std::uint32_t>(Numeric::fromString(word())); }
    void get(std::int64_t& v) { v = static_cast<std::int64_t>(Numeric::fromString(word())); }
    void get(Numeric& v) { v = Numeric::fromString(word()); }
    void get(Date& v) { v = Date::fromString(word()); }
    void get(GUID& v) {
        if (!from_string(word(), v))
            bad();
    }
    void get(wstring& v) {
        gap();
        need(u'"');
        v.clear();
        for (;;) {
            auto c = in_.rdbuf()->sbumpc();
            if (c == 0xFFFF)
                bad();
            if (c == u'"') {
                if (peek() != u'"')
                    break;
                bump();
            }
            v += static_cast<wchar>(c);
        }
        comma_ = true;
    }
    void get(wchar* b, unsigned n) {
        wstring t;
        get(t);
        if (t.size() >= n)
            bad();
        for (std::size_t i = 0; i <= t.size(); ++i)
            b[i] = t.c_str()[i];
    }

  private:
    [[noreturn]] void bad() { throw_error<ListStreamException>("IDS_LISTSTREAMERROR"); }
    int peek() { return in_.rdbuf()->sgetc(); }
    void bump() { in_.rdbuf()->sbumpc(); }
    void need(wchar c) {
        if (peek() != c)
            bad();
        bump();
    }
    void gap() {
        if (comma_) {
            skip_spaces(in_);
            need(u',');
            comma_ = false;
        }
        skip_spaces(in_);
    }
    wstring word() {
        gap();
        wstring t;
        while (peek() != u',' && peek() != u'}' && peek() != 0xFFFF) {
            t += static_cast<wchar>(peek());
            bump();
        }
        if (t.empty())
            bad();
        comma_ = true;
        return t;
    }
    wistream& in_;
    bool comma_ = false;
};
} // namespace core
