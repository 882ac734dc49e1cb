// SPDX-License-Identifier: Apache-2.0
#include "core/locales/format_items.h"
#include "core/strings/table_hash.h"

#include <core/locales/errors.h>
#include <core/locales/local_wstring.h>
#include <core/locales/settings.h>
#include <core/runtime/threads/thread.h>
#include <core/runtime/utf8.h>
#include <core/strings/trim.h>

#include <algorithm>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace core {
namespace {

/// The locale without the order and the digits that its key asks for, which are all that its parent lacks.
Locale language_of(const Locale& locale) {
    return locale.key().find('@') == std::string::npos ? locale : locale.parent();
}

void append_item(wstring& written, wstring_view key, wstring_view text) {
    if (!written.empty())
        written += u"; ";
    written.append(key) += u"='";
    for (const wchar unit : text)
        written.append(unit == u'\'' ? 2 : 1, unit);
    written += u'\'';
}

/// Where a language stands, or would stand, among entries in the order of their keys.
template <class Entries>
auto place_of(Entries& entries, const Locale& language) {
    return std::ranges::lower_bound(entries, language.key(), {}, [](const auto& entry) -> const std::string& {
        return entry.language.key();
    });
}

} // namespace

LocalWString LocalWString::fromString(wstring_view written) {
    LocalWString string;
    wstring_view rest = trim_left(written);
    const auto refuse = [&] {
        throw_error<CtorException>(messages::kLocalText,
                                   {from_utf8(std::to_string(written.size() - rest.size() + 1))});
    };
    while (!rest.empty()) {
        const std::size_t end = rest.find(u'=');
        const wstring_view key = trim_right(rest.substr(0, end));
        if (end == wstring_view::npos || key.empty())
            refuse();
        const Locale language(to_utf8(key));
        if (string.find(language) != nullptr)
            refuse();
        rest = trim_left(rest.substr(end + 1));
        std::optional<wstring> text;
        if (!rest.starts_with(u'\'') || !(text = take_quoted(rest)))
            refuse();
        string.set(language, std::move(*text));
        rest = trim_left(rest);
        if (rest.empty())
            break;
        if (rest.front() != u';')
            refuse();
        rest = trim_left(rest.substr(1));
    }
    return string;
}

wstring LocalWString::toString() const {
    wstring written;
    if (!text_.empty())
        append_item(written, u"root", text_);
    for (const Entry& entry : texts_)
        append_item(written, from_utf8(entry.language.key()), entry.text);
    return written;
}

void LocalWString::set(const Locale& locale, wstring text) {
    Locale language = language_of(locale);
    if (language == Locale()) {
        text_ = std::move(text);
        return;
    }
    const auto place = place_of(texts_, language);
    if (place != texts_.end() && place->language == language)
        place->text = std::move(text);
    else
        texts_.insert(place, {std::move(language), std::move(text)});
}

bool LocalWString::remove(const Locale& locale) {
    const Locale language = language_of(locale);
    if (language == Locale()) {
        const bool had = !text_.empty();
        text_.clear();
        return had;
    }
    const auto place = place_of(texts_, language);
    if (place == texts_.end() || place->language != language)
        return false;
    texts_.erase(place);
    return true;
}

std::vector<Locale> LocalWString::languages() const {
    std::vector<Locale> languages;
    if (!text_.empty())
        languages.emplace_back();
    for (const Entry& entry : texts_)
        languages.push_back(entry.language);
    return languages;
}

const wstring* LocalWString::find(const Locale& locale) const {
    const Locale language = language_of(locale);
    if (language == Locale())
        return text_.empty() ? nullptr : &text_;
    const auto place = place_of(texts_, language);
    return place != texts_.end() && place->language == language ? &place->text : nullptr;
}

const wstring* LocalWString::nearest(const Locale& language) const {
    for (Locale at = language; at != Locale(); at = at.parent()) {
        if (const wstring* const found = find(at))
            return found;
    }
    return find(Locale());
}

const wstring& LocalWString::text(const Locale& language, const Locale& byDefault) const {
    if (isPlain())
        return text_;
    const wstring* found = nearest(language);
    if (found == nullptr)
        found = nearest(byDefault);
    return found != nullptr ? *found : text_;
}

const wstring& LocalWString::text() const {
    if (isPlain())
        return text_;
    return text(Thread::getResourceLocale(), current_settings().part<LanguageSettings>().byDefault);
}

std::size_t LocalWString::hash() const noexcept {
    std::uint64_t hash = table_hash(text_);
    for (const Entry& entry : texts_) {
        hash = table_hash_step(hash, table_hash(std::as_bytes(std::span(entry.language.key()))));
        hash = table_hash_step(hash, table_hash(entry.text));
    }
    return static_cast<std::size_t>(hash);
}

} // namespace core
