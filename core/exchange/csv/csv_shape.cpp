// SPDX-License-Identifier: Apache-2.0
#include "core/exchange/csv/csv_shape.h"

#include <vector>

namespace core {
namespace {

constexpr std::size_t kRows = 100; // that a delimiter is tried on
constexpr std::size_t kShapeSample = std::size_t{64} << 10U;

/// How many fields each of the first rows has; the last one may be cut.
std::vector<std::size_t> field_counts(std::string_view text, char delimiter) {
    std::vector<std::size_t> counts;
    std::size_t fields = 1;
    bool quoted = false;
    bool begins = true; // a field
    bool blank = true;  // the row, so far
    for (std::size_t i = 0; i < text.size() && counts.size() < kRows; ++i) {
        const char c = text[i];
        if (quoted) {
            const bool doubled = c == '"' && i + 1 < text.size() && text[i + 1] == '"';
            i += doubled ? 1 : 0;
            quoted = c != '"' || doubled;
        } else if (c == '\n' || c == '\r') {
            if (!blank)
                counts.push_back(fields);
            fields = 1;
            begins = blank = true;
        } else {
            quoted = begins && c == '"';
            begins = c == delimiter;
            fields += begins ? 1 : 0;
            blank = false;
        }
    }
    if (!blank)
        counts.push_back(fields);
    return counts;
}

} // namespace

char find_delimiter(std::string_view text, bool isWhole, char otherwise) {
    const bool cut = !isWhole || text.size() > kShapeSample;
    text = text.substr(0, kShapeSample);
    std::size_t most = 1;
    for (const char delimiter : {',', ';', '\t', '|'}) {
        std::vector<std::size_t> counts = field_counts(text, delimiter);
        if (cut && counts.size() > 1 && counts.size() < kRows)
            counts.pop_back();
        bool even = !counts.empty() && counts.front() > 1;
        for (const std::size_t count : counts)
            even = even && count == counts.front();
        if (even)
            return delimiter;
        if (!counts.empty() && counts.front() > most) {
            most = counts.front();
            otherwise = delimiter;
        }
    }
    return otherwise;
}

} // namespace core
