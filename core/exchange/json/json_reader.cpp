// SPDX-License-Identifier: Apache-2.0
#include <core/exchange/errors.h>
#include <core/exchange/json_reader.h>
#include <core/runtime/threads/thread.h>
#include <core/runtime/utf8.h>
#include <core/strings/integer_text.h>
#include <core/values/errors.h>

#include <boost/config.hpp>

// Nothing of the parser is to be seen outside of the library.
#undef BOOST_SYMBOL_VISIBLE
#define BOOST_SYMBOL_VISIBLE

#include <boost/json/basic_parser_impl.hpp>
#include <boost/json/src.hpp> // the parser's own sources, so that no library has to be linked

#include <limits>
#include <optional>
#include <string>
#include <utility>

namespace core {
namespace {

namespace json = boost::json;
using Error = json::error_code;
using Text = json::string_view;

std::string_view view(Text text) {
    return {text.data(), text.size()};
}

/// Passes the parser's events on; numbers and names are made whole.
class Handler {
  public:
    static constexpr std::size_t kNoLimit = std::numeric_limits<std::size_t>::max();
    static constexpr std::size_t max_array_size = kNoLimit;
    static constexpr std::size_t max_object_size = kNoLimit;
    static constexpr std::size_t max_string_size = kNoLimit;
    static constexpr std::size_t max_key_size = kNoLimit;

    explicit Handler(JsonEvents& events) : events_(events) {}

    /// Why an event refused what it was told, if one did.
    [[nodiscard]] const std::optional<wstring>& refusal() const noexcept { return refusal_; }

    static bool on_document_begin(Error&) { return true; }
    static bool on_document_end(Error&) { return true; }
    bool on_array_begin(Error& error) {
        return tell(error, [&] { events_.onArrayBegin(); });
    }
    bool on_array_end(std::size_t, Error& error) {
        return tell(error, [&] { events_.onArrayEnd(); });
    }
    bool on_object_begin(Error& error) {
        return tell(error, [&] { events_.onObjectBegin(); });
    }
    bool on_object_end(std::size_t, Error& error) {
        return tell(error, [&] { events_.onObjectEnd(); });
    }
    bool on_string_part(Text text, std::size_t, Error& error) {
        return tell(error, [&] { events_.onString(view(text), false); });
    }
    bool on_string(Text text, std::size_t, Error& error) {
        return tell(error, [&] { events_.onString(view(text), true); });
    }
    bool on_key_part(Text text, std::size_t, Error&) { return keep(text); }
    bool on_key(Text text, std::size_t, Error& error) {
        return keep(text) && tell(error, [&] { events_.onName(std::exchange(whole_, {})); });
    }
    bool on_number_part(Text text, Error&) { return keep(text); }
    bool on_int64(std::int64_t, Text text, Error& error) { return number(text, error); }
    bool on_uint64(std::uint64_t, Text text, Error& error) { return number(text, error); }
    bool on_double(double, Text text, Error& error) { return number(text, error); }
    bool on_bool(bool value, Error& error) {
        return tell(error, [&] { events_.onBoolean(value); });
    }
    bool on_null(Error& error) {
        return tell(error, [&] { events_.onNull(); });
    }
    static bool on_comment_part(Text, Error&) { return true; }
    static bool on_comment(Text, Error&) { return true; }

  private:
    bool keep(Text text) {
        whole_ += view(text);
        return true;
    }
    bool number(Text text, Error& error) {
        return keep(text) && tell(error, [&] { events_.onNumber(std::exchange(whole_, {})); });
    }
    /// A refusal ends the reading as a fault of the text does, so that it gets a place, too.
    template <class Tell>
    bool tell(Error& error, Tell event) {
        try {
            event();
            return true;
        } catch (const ContextException& refusal) {
            refusal_ = refusal.description();
            error = json::error::syntax;
            return false;
        }
    }

    JsonEvents& events_;
    std::string whole_;
    std::optional<wstring> refusal_;
};

/// The id of the message that says why a text is malformed.
const char* reason_of(const Error& error) noexcept {
    if (error == json::error::incomplete)
        return "IDS_JSON_WHY_END";
    if (error == json::error::extra_data)
        return "IDS_JSON_WHY_BEHIND";
    for (const json::error escape :
         {json::error::illegal_leading_surrogate, json::error::illegal_trailing_surrogate,
          json::error::expected_hex_digit, json::error::expected_utf16_escape}) {
        if (error == escape)
            return "IDS_JSON_WHY_ESCAPE";
    }
    return "IDS_JSON_WHY_SYNTAX";
}

json::parse_options options(std::size_t maxDepth) {
    json::parse_options result;
    result.max_depth = maxDepth;
    return result;
}

} // namespace

class JsonReader::Parser : public json::basic_parser<Handler> {
  public:
    Parser(JsonEvents& events, std::size_t maxDepth) : basic_parser(options(maxDepth), events) {}
};

JsonReader::JsonReader(JsonEvents& events, std::size_t maxDepth, std::uint64_t firstLine, wstring_view name)
    : parser_(std::make_unique<Parser>(events, maxDepth)), maxDepth_(maxDepth), name_(name),
      line_(firstLine) {}

JsonReader::~JsonReader() = default;

/// A byte order mark may stand in front of the text, and may be cut between two pieces.
std::string_view JsonReader::behindMark(std::string_view piece) {
    constexpr std::string_view kMark = "\xEF\xBB\xBF";
    while (mark_ < kMark.size() && !piece.empty()) {
        if (piece.front() != kMark[mark_]) {
            if (const std::size_t begun = std::exchange(mark_, kMark.size()); begun != 0)
                read(kMark.substr(0, begun)); // says where it is malformed
            break;
        }
        ++mark_;
        piece.remove_prefix(1);
    }
    return piece;
}

void JsonReader::read(std::string_view piece) {
    constexpr std::size_t kAtOnce = std::size_t{1} << 20; // from one look whether to stop to the next
    std::string_view rest = behindMark(piece);
    do {
        Thread::check();
        const std::string_view part = rest.substr(0, kAtOnce);
        Error error;
        const std::size_t count = parser_->write_some(true, part.data(), part.size(), error);
        advance(part.substr(0, count));
        if (error == json::error::too_deep)
            throw_error<ContextException>(messages::kJsonTooDeep, {string_intto(maxDepth_)});
        if (error)
            fail(reason_of(error));
        if (count < part.size())
            fail("IDS_JSON_WHY_BEHIND");
        rest.remove_prefix(count);
    } while (!rest.empty());
}

void JsonReader::finish() {
    Error error;
    parser_->write_some(false, nullptr, 0, error);
    if (error)
        fail(reason_of(error));
}

void JsonReader::advance(std::string_view read) noexcept {
    for (const char c : read) {
        if (c == '\n') {
            ++line_;
            column_ = 1;
        } else if ((static_cast<unsigned char>(c) & 0xC0U) != 0x80) { // not the middle of a character
            ++column_;
        }
    }
}

void JsonReader::fail(const char* reason) const {
    const auto& refusal = parser_->handler().refusal();
    const wstring line = string_intto(line_);
    const wstring column = string_intto(column_);
    const wstring why = refusal ? *refusal : message_text(reason);
    if (name_.empty())
        throw_error<ContextException>(refusal ? messages::kJsonRefused : messages::kJsonMalformed,
                                      {line, column, why});
    throw_error<ContextException>(refusal ? messages::kJsonRefusedInFile : messages::kJsonMalformedInFile,
                                  {name_, line, column, why});
}

} // namespace core
