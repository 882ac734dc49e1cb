// SPDX-License-Identifier: Apache-2.0
#include "host/commands/query_place.h"

#include <algorithm>

namespace host {
namespace {

using namespace core;

/// Where a line begins, which counts from 1; lines end with LF, as those that a shell passes do.
std::size_t begin_of_line(wstring_view text, std::int32_t line) {
    std::size_t begin = 0;
    for (; line > 1 && begin < text.size(); --line)
        begin = std::min(text.find(u'\n', begin), text.size() - 1) + 1;
    return begin;
}

script::Place place_in(wstring_view query, std::size_t at, std::size_t length) {
    script::Place place;
    place.file = u"query";
    place.line = 1;
    place.length = static_cast<std::int32_t>(length);
    std::size_t line = 0;
    for (std::size_t end = 0; (end = query.find(u'\n', line)) < at; line = end + 1)
        ++place.line;
    place.text = query.substr(line, query.find(u'\n', line) - line);
    place.offset = static_cast<std::int32_t>(at - line);
    const auto characters = std::ranges::count_if(query.substr(line, at - line), [](wchar unit) {
        return unit < 0xDC00 || unit > 0xDFFF; // the second half of a pair belongs to the first
    });
    place.column = static_cast<std::int32_t>(characters) + 1;
    return place;
}

} // namespace

script::Error failure_of_query(const script::Error& failure, wstring_view query, wstring_view step,
                               wstring_view script) {
    const script::Place& in = failure.place();
    const auto begin = static_cast<std::size_t>(step.data() - query.data());
    const std::size_t ours = script.ends_with(step) ? script.size() - step.size() : script.size();
    const std::size_t at = begin_of_line(script, in.line) + static_cast<std::size_t>(in.offset);
    const auto place = at >= ours && ours < script.size()
                           ? place_in(query, begin + at - ours, static_cast<std::size_t>(in.length))
                           : place_in(query, begin, std::min(step.find(u'('), step.size()));
    script::Error found(failure.description(), place, failure.cause());
    found.setMessage(failure.messageId(), failure.parameters());
    return found;
}

} // namespace host
