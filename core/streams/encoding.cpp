// SPDX-License-Identifier: Apache-2.0
#include "core/streams/code_page.h"
#include "core/streams/icu_handles.h"

#include <core/runtime/errors.h>
#include <core/runtime/utf8.h>
#include <core/streams/encoding.h>
#include <core/streams/errors.h>

#include <algorithm>
#include <cctype>
#include <initializer_list>
#include <map>
#include <mutex>
#include <new>

namespace core {
namespace detail {
namespace {

constexpr std::byte kUtf8Mark[] = {std::byte{0xEF}, std::byte{0xBB}, std::byte{0xBF}};
constexpr std::byte kUtf16leMark[] = {std::byte{0xFF}, std::byte{0xFE}};
constexpr std::byte kUtf16beMark[] = {std::byte{0xFE}, std::byte{0xFF}};
constexpr std::byte kUtf32leMark[] = {std::byte{0xFF}, std::byte{0xFE}, std::byte{0}, std::byte{0}};
constexpr std::byte kUtf32beMark[] = {std::byte{0}, std::byte{0}, std::byte{0xFE}, std::byte{0xFF}};
constexpr std::byte kGb18030Mark[] = {std::byte{0x84}, std::byte{0x31}, std::byte{0x95}, std::byte{0x33}};

struct Unicode {
    std::string_view icuName;
    PageKind kind;
    std::span<const std::byte> mark;
};
constexpr Unicode kUnicodes[] = {
    {"UTF-16LE", PageKind::utf16le, kUtf16leMark}, {"UTF-16BE", PageKind::utf16be, kUtf16beMark},
    {"UTF-32LE", PageKind::icu, kUtf32leMark},     {"UTF-32BE", PageKind::icu, kUtf32beMark},
    {"gb18030", PageKind::icu, kGb18030Mark},
};

/// The name that people write: the one for mail and the web, else that of the register, else ICU's own.
std::string usual_name(const char* icuName) {
    for (const char* const standard : {"MIME", "IANA"}) {
        UErrorCode status = U_ZERO_ERROR;
        if (const char* const name = ucnv_getStandardName(icuName, standard, &status);
            name != nullptr && U_SUCCESS(status))
            return name;
    }
    return icuName;
}

/// Whether ICU reads three of the control characters as each other, as old machines showed them: 1A as
/// U+001C, 1C as U+007F, 7F as U+001A. Elsewhere, and here, they stand for themselves, so that no byte of a
/// text changes its meaning on the way to another page.
bool has_moved_controls(UConverter& converter) {
    const char source = 0x1A;
    wchar units[2] = {};
    UErrorCode status = U_ZERO_ERROR;
    ucnv_resetToUnicode(&converter);
    return ucnv_toUChars(&converter, units, 2, &source, 1, &status) == 1 && U_SUCCESS(status) &&
           units[0] == 0x1C;
}

void put_controls_back(PageTable& table) {
    for (const std::uint8_t control : std::initializer_list<std::uint8_t>{0x1A, 0x1C, 0x7F}) {
        table.units[control] = control;
        table.bytes[table.rows[0]][control] = control;
    }
}

/// The table of a page with one byte a character, as ICU converts it; null for any other page.
std::unique_ptr<PageTable> table_of(UConverter& converter) {
    const UConverterType type = ucnv_getType(&converter);
    if (type != UCNV_SBCS && type != UCNV_LATIN_1 && type != UCNV_US_ASCII)
        return nullptr;
    auto table = std::make_unique<PageTable>();
    for (unsigned byte = 0; byte < 256; ++byte) {
        const char source = static_cast<char>(byte);
        wchar units[2] = {};
        UErrorCode status = U_ZERO_ERROR;
        ucnv_resetToUnicode(&converter);
        const std::int32_t count = ucnv_toUChars(&converter, units, 2, &source, 1, &status);
        if (U_SUCCESS(status) && count != 1)
            return nullptr;
        table->units[byte] = U_SUCCESS(status) ? units[0] : PageTable::kNoUnit;
        table->hasHoles |= U_FAILURE(status);
        if (U_FAILURE(status))
            continue;
        char back[4] = {}; // which need not be the same byte: a character may stand in a page twice
        ucnv_resetFromUnicode(&converter);
        const std::int32_t size = ucnv_fromUChars(&converter, back, 4, units, 1, &status);
        if (U_FAILURE(status) || size != 1)
            continue;
        std::uint8_t& row = table->rows[units[0] >> 8];
        if (row == 0) {
            row = static_cast<std::uint8_t>(table->bytes.size());
            table->bytes.emplace_back();
        }
        table->bytes[row][units[0] & 0xFF] = static_cast<std::uint8_t>(back[0]);
    }
    return table;
}

CodePage make_page(std::string icuName, UConverter& converter) {
    CodePage page{.icuName = std::move(icuName)};
    page.name = from_utf8(usual_name(page.icuName.c_str()));
    page.movesControls = has_moved_controls(converter);
    const auto* const unicode = std::ranges::find(kUnicodes, page.icuName, &Unicode::icuName);
    if (unicode != std::end(kUnicodes)) {
        page.kind = unicode->kind;
        page.mark = unicode->mark;
    } else if (auto table = table_of(converter)) {
        if (page.movesControls)
            put_controls_back(*table);
        page.kind = PageKind::table;
        page.table = std::move(table);
    }
    return page;
}

/// All that has been asked for, by the name that was asked and by ICU's.
struct Pages {
    std::mutex mutex;
    std::map<std::string, const CodePage*, std::less<>> byName;
    std::map<std::string, CodePage, std::less<>> byIcuName;
};

Pages& pages() {
    static auto& all = *new Pages; // encodings are used until the very end
    return all;
}

/// ICU takes an empty name for the encoding of the environment, and looks for others among files.
bool may_be_name(wstring_view name) noexcept {
    constexpr std::size_t kMost = 60;
    return !name.empty() && name.size() <= kMost && std::ranges::all_of(name, [](wchar unit) {
        return unit < 0x80 && (std::isalnum(static_cast<int>(unit)) != 0 ||
                               wstring_view(u" -_.:,=+()").find(unit) != wstring_view::npos);
    });
}

} // namespace

const CodePage* find_code_page(wstring_view name) {
    if (!may_be_name(name))
        return nullptr;
    const std::string asked(name.begin(), name.end());
    Pages& all = pages();
    const std::scoped_lock lock(all.mutex);
    if (const auto known = all.byName.find(asked); known != all.byName.end())
        return known->second;
    const IcuConverter converter = open_strict_converter(asked.c_str());
    if (converter == nullptr)
        return nullptr;
    UErrorCode status = U_ZERO_ERROR;
    std::string icuName = ucnv_getName(converter.get(), &status);
    const CodePage* page = &utf8_page();
    if (icuName != page->icuName) {
        auto found = all.byIcuName.find(icuName);
        if (found == all.byIcuName.end())
            found = all.byIcuName.emplace(icuName, make_page(icuName, *converter)).first;
        page = &found->second;
    }
    constexpr std::size_t kMostNames = 4096; // so that a program which tries names does not fill memory
    if (all.byName.size() < kMostNames)
        all.byName.emplace(asked, page);
    return page;
}

const CodePage& utf8_page() noexcept {
    // Needs no memory, and is used until the very end.
    alignas(CodePage) static std::byte room[sizeof(CodePage)];
    static const CodePage& page =
        *new (room) CodePage{.icuName = "UTF-8", .name = u"UTF-8", .kind = PageKind::utf8, .mark = kUtf8Mark};
    return page;
}

} // namespace detail

Encoding::Encoding() noexcept : Encoding(detail::utf8_page()) {}

Encoding::Encoding(wstring_view name) : page_(detail::find_code_page(name)) {
    if (page_ == nullptr)
        throw_error<ConverterException>(messages::kEncodingUnknown, {wstring(name)});
}

std::optional<Encoding> Encoding::find(wstring_view name) {
    const detail::CodePage* const page = detail::find_code_page(name);
    return page != nullptr ? std::optional(Encoding(*page)) : std::nullopt;
}

std::vector<wstring> Encoding::names() {
    const std::int32_t count = ucnv_countAvailable();
    std::vector<wstring> names;
    names.reserve(static_cast<std::size_t>(count));
    for (std::int32_t i = 0; i < count; ++i)
        names.push_back(from_utf8(detail::usual_name(ucnv_getAvailableName(i))));
    std::ranges::sort(names);
    names.erase(std::unique(names.begin(), names.end()), names.end());
    return names;
}

const wstring& Encoding::name() const noexcept {
    return page_->name;
}

std::vector<wstring> Encoding::aliases() const {
    std::vector<wstring> names;
    UErrorCode status = U_ZERO_ERROR;
    const std::uint16_t count = ucnv_countAliases(page_->icuName.c_str(), &status);
    for (std::uint16_t i = 0; i < count; ++i)
        names.push_back(from_utf8(ucnv_getAlias(page_->icuName.c_str(), i, &status)));
    if (names.empty())
        names.push_back(page_->name);
    return names;
}

std::span<const std::byte> Encoding::mark() const noexcept {
    return page_->mark;
}

} // namespace core
