// SPDX-License-Identifier: Apache-2.0
#include <core/strings/split.h>

namespace core {
namespace {

template <CodeUnit C, class View = std::basic_string_view<C>>
std::basic_string<C> replaced(View text, View from, View to) {
    std::basic_string<C> result;
    std::size_t copied = 0;
    const std::size_t first = from.empty() ? View::npos : text.find(from);
    for (std::size_t at = first; at != View::npos; at = text.find(from, copied)) {
        result.append(text.substr(copied, at - copied)).append(to);
        copied = at + from.size();
    }
    return result.append(text.substr(copied));
}

template <CodeUnit C, class View = std::basic_string_view<C>>
std::vector<View> tokens(View text, View delimiters, EmptyTokens empty) {
    std::vector<View> result;
    for (std::size_t start = 0;;) {
        const std::size_t end = std::min(text.find_first_of(delimiters, start), text.size());
        if (end > start || empty == EmptyTokens::keep)
            result.push_back(text.substr(start, end - start));
        if (end == text.size())
            return result;
        start = end + 1;
    }
}

} // namespace

wstring replace_all(wstring_view text, wstring_view from, wstring_view to) {
    return replaced<wchar>(text, from, to);
}

std::string replace_all(std::string_view text, std::string_view from, std::string_view to) {
    return replaced<char>(text, from, to);
}

std::vector<wstring_view> string_tokenize(wstring_view text, wstring_view delimiters, EmptyTokens empty) {
    return tokens<wchar>(text, delimiters, empty);
}

std::vector<std::string_view> string_tokenize(std::string_view text, std::string_view delimiters,
                                              EmptyTokens empty) {
    return tokens<char>(text, delimiters, empty);
}

} // namespace core
