// SPDX-License-Identifier: Apache-2.0
#include "core/exchange/csv/csv_scanner.h"

#include <core/exchange/errors.h>
#include <core/strings/integer_text.h>
#include <core/values/errors.h>

#include <algorithm>
#include <cstring>
#include <utility>

namespace core {
namespace {

constexpr std::size_t kBlock = std::size_t{256} << 10U;

} // namespace

CsvScanner::CsvScanner(ByteReader bytes, wstring_view name) : bytes_(std::move(bytes)), name_(name) {}

std::string_view CsvScanner::look() {
    if (!started_) {
        started_ = true;
        while (!ended_ && size_ < kBlock)
            more();
        constexpr std::string_view kMark = "\xEF\xBB\xBF";
        if (std::string_view(buffer_.get(), size_).starts_with(kMark))
            at_ += kMark.size();
    }
    return {at_, static_cast<std::size_t>(end() - at_)};
}

void CsvScanner::setRules(const CsvRules& rules) {
    rules_ = rules;
    specials_ = Specials(rules.delimiter);
}

/// Reads on behind what is there, which moves to the beginning of the buffer. False at the end of the text.
bool CsvScanner::more() {
    const auto kept = static_cast<std::size_t>(at_ == nullptr ? 0 : end() - at_);
    if (kept + kBlock > capacity_ || buffer_ == nullptr) {
        const std::size_t capacity = std::max(2 * kept, kept + kBlock);
        std::unique_ptr<char[]> larger(new char[capacity + Specials::kBehind]{});
        if (kept != 0)
            std::memcpy(larger.get(), at_, kept);
        buffer_ = std::move(larger);
        capacity_ = capacity;
    } else if (kept != 0) {
        std::memmove(buffer_.get(), at_, kept);
    }
    at_ = buffer_.get();
    size_ = kept;
    marked_ = false;
    while (size_ < capacity_) {
        const std::size_t got =
            bytes_(std::as_writable_bytes(std::span(buffer_.get() + size_, capacity_ - size_)));
        size_ += got;
        ended_ = got == 0;
        if (ended_ || size_ >= kept + kBlock)
            break;
    }
    return size_ > kept;
}

bool CsvScanner::next(CsvRow& row) {
    static_cast<void>(look());
    for (;;) {
        if (!marked_) {
            specials_.start(at_, end());
            marked_ = true;
        }
        if (at_ == end() && ended_)
            return false;
        const char* const begin = at_;
        const Outcome outcome = at_ == end() ? Outcome::cut : scan();
        if (outcome == Outcome::cut) {
            more();
            continue;
        }
        taken_ += static_cast<std::uint64_t>(at_ - begin);
        row.line = line_;
        line_ += breaks_ + 1;
        if (outcome == Outcome::blank)
            continue;
        unfold();
        row.fields = fields_;
        return true;
    }
}

/// Takes the next row apart, in which nothing is changed yet: a row that is cut comes again with more behind.
CsvScanner::Outcome CsvScanner::scan() {
    found_.clear();
    breaks_ = 0;
    for (const char* begin = at_;;) {
        const char* const at = *begin == '"' && begin != end() ? scanQuoted(begin) : scanField(begin);
        if (at == nullptr)
            return Outcome::cut;
        if (at != end() && *at == rules_.delimiter) {
            begin = at + 1;
            continue;
        }
        const char* const behind = rowEnd(at);
        if (behind == nullptr)
            return Outcome::cut;
        const bool blank = found_.size() == 1 && at == at_;
        at_ = behind;
        return blank ? Outcome::blank : Outcome::whole;
    }
}

/// Returns what ends a field without quotes; null where the text may go on.
const char* CsvScanner::scanField(const char* begin) {
    const char* at = specials_.next();
    while (at != end() && *at == '"' && rules_.delimiter != '"') {
        if (rules_.strict)
            fail();
        at = specials_.next();
    }
    if (at == end() && !ended_)
        return nullptr;
    found_.push_back({begin, at, false});
    return at;
}

/// The same for a field that begins with a quote.
const char* CsvScanner::scanQuoted(const char* begin) {
    static_cast<void>(specials_.next()); // the quote itself
    bool doubled = false;
    for (;;) {
        const char* const at = specials_.next();
        if (at == end()) {
            if (ended_)
                fail();
            return nullptr;
        }
        if (*at == '\n' || *at == '\r')
            breaks_ += *at == '\n' && at[-1] == '\r' && at - 1 > begin ? 0U : 1U;
        if (*at != '"')
            continue;
        const char* const behind = at + 1;
        if (behind == end() && !ended_)
            return nullptr;
        if (behind != end() && *behind == '"') {
            static_cast<void>(specials_.next());
            doubled = true;
            continue;
        }
        if (behind != end()) {
            if (*behind != rules_.delimiter && *behind != '\n' && *behind != '\r')
                fail();
            static_cast<void>(specials_.next());
        }
        found_.push_back({begin + 1, at, doubled});
        return behind;
    }
}

/// Returns where the next row begins; null where the second half of a line end may follow.
const char* CsvScanner::rowEnd(const char* at) {
    if (at == end())
        return at;
    if (*at != '\r')
        return at + 1;
    if (at + 1 == end())
        return ended_ ? at + 1 : nullptr;
    if (at[1] != '\n')
        return at + 1;
    static_cast<void>(specials_.next());
    return at + 2;
}

/// Makes the fields of a row that is whole; of quotes that stand twice one stays.
void CsvScanner::unfold() {
    fields_.clear();
    for (const Field& field : found_) {
        char* out = buffer_.get() + (field.begin - buffer_.get());
        const char* last = field.end;
        if (field.doubled) {
            for (const char* at = field.begin; at != field.end; ++at) {
                *out++ = *at;
                at += *at == '"' ? 1 : 0;
            }
            last = out;
        }
        fields_.emplace_back(field.begin, static_cast<std::size_t>(last - field.begin));
    }
}

void CsvScanner::fail() const {
    throw_error<ContextException>(messages::kCsvQuote, {wstring(name_), string_intto(line_)});
}

} // namespace core
