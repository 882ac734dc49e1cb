// SPDX-License-Identifier: Apache-2.0
#pragma once
#include <core/dates/date.h>
#include <core/numbers/numeric.h>
#include <core/runtime/guid.h>

#include <ostream>
namespace core {
class ListOutStream {
  public:
    explicit ListOutStream(wostream& out) : out_(out) {}
    void putBeginOfList() {
        comma();
        comma_ = closed_ = false;
        if (!start_)
            raw(u"\n");
        raw(u"{");
        start_ = false;
    }
    void putEndOfList() {
        if (closed_)
            raw(u"\n");
        raw(u"}");
        closed_ = comma_ = true;
        start_ = false;
    }
    void put(bool b) { token(b ? u"1" : u"0"); }
    void put(std::int32_t v) { token(Numeric(v).toString()); }
    void put(std::uint32_t v) { token(Numeric(v).toString()); }
    void put(std::int64_t v) { token(Numeric(v).toString()); }
    void put(const Numeric& v) { token(v.toString()); }
    void put(const Date& v) { token(v.toString()); }
    void put(const GUID& v) { token(to_string(v)); }
    void put(const wstring& v) { put(v.data(), static_cast<unsigned>(v.size())); }
    void put(const wchar* v) { put(wstring(v)); }
    void put(const wchar* v, unsigned n) {
        wstring t = u"\"";
        for (unsigned i = 0; i < n; ++i) {
            if (v[i] == u'"')
                t += u'"';
            t += v[i];
        }
        token(t + u"\"");
    }

  private:
    void raw(wstring_view t) { out_.rdbuf()->sputn(t.data(), static_cast<std::streamsize>(t.size())); }
    void comma() {
        if (comma_)
            raw(u",");
        comma_ = false;
    }
    void token(const wstring& t) {
        comma();
        raw(t);
        comma_ = true;
        closed_ = start_ = false;
    }
    wostream& out_;
    bool comma_ = false, closed_ = false, start_ = true;
};
} // namespace core
