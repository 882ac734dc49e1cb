// SPDX-License-Identifier: Apache-2.0
#include <core/streams/text_info.h>

#include <algorithm>

namespace core {
namespace {

/// Counts lines while units come in pieces.
class LineCounter {
  public:
    explicit LineCounter(TextInfo& info) noexcept : info_(info) {}

    void add(wstring_view units) noexcept {
        info_.units += units.size();
        for (;;) {
            const std::size_t plain = std::min(units.find_first_of(u"\r\n"), units.size());
            length_ += plain;
            endedWithCr_ = endedWithCr_ && plain == 0;
            units.remove_prefix(plain);
            if (units.empty())
                return;
            addEnd(units.front());
            units.remove_prefix(1);
        }
    }
    void finish() noexcept {
        if (length_ != 0)
            endLine();
    }

  private:
    void addEnd(wchar unit) noexcept {
        if (unit == u'\n' && endedWithCr_) { // the line has ended already
            --info_.cr;
            ++info_.crlf;
        } else {
            ++(unit == u'\r' ? info_.cr : info_.lf);
            endLine();
        }
        endedWithCr_ = unit == u'\r';
    }
    void endLine() noexcept {
        ++info_.lines;
        if (length_ > info_.longest || info_.longestLine == 0) {
            info_.longest = length_;
            info_.longestLine = info_.lines;
        }
        length_ = 0;
    }

    TextInfo& info_;
    std::uint64_t length_ = 0;
    bool endedWithCr_ = false;
};

} // namespace

TextInfo examine_text(TextReader& text) {
    TextInfo info;
    LineCounter lines(info);
    for (wstring_view units; !(units = text.look()).empty(); text.consume(units.size()))
        lines.add(units);
    lines.finish();
    info.encoding = text.encoding();
    info.bytes = text.bytesRead();
    info.faults = text.faults();
    info.firstFault = text.firstFault();
    return info;
}

void copy_text(TextReader& from, TextWriter& to) {
    for (wstring_view units; !(units = from.look()).empty(); from.consume(units.size()))
        to.write(units);
}

} // namespace core
