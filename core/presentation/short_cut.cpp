// SPDX-License-Identifier: Apache-2.0
#include "core/lists/malformed.h"

#include <core/lists/list_in_stream.h>
#include <core/lists/list_out_stream.h>
#include <core/presentation/short_cut.h>
#include <core/runtime/exception.h>
#include <core/strings/compare.h>
#include <core/strings/integer_text.h>
#include <core/strings/trim.h>

#include <algorithm>
#include <iterator>

namespace core {
namespace {

/// A key that types no character of its own.
struct NamedKey {
    std::uint32_t number;
    wstring_view name;
    const char* shown; // message id
};

constexpr NamedKey kKeys[] = {
    {32, u"Space", "IDS_KEY_SPACE"},
    {256, u"Backspace", "IDS_KEY_BACKSPACE"},
    {257, u"Tab", "IDS_KEY_TAB"},
    {258, u"Enter", "IDS_KEY_ENTER"},
    {259, u"Escape", "IDS_KEY_ESCAPE"},
    {260, u"Insert", "IDS_KEY_INSERT"},
    {261, u"Delete", "IDS_KEY_DELETE"},
    {262, u"Home", "IDS_KEY_HOME"},
    {263, u"End", "IDS_KEY_END"},
    {264, u"PageUp", "IDS_KEY_PAGE_UP"},
    {265, u"PageDown", "IDS_KEY_PAGE_DOWN"},
    {266, u"Left", "IDS_KEY_LEFT"},
    {267, u"Up", "IDS_KEY_UP"},
    {268, u"Right", "IDS_KEY_RIGHT"},
    {269, u"Down", "IDS_KEY_DOWN"},
    {270, u"PrintScreen", "IDS_KEY_PRINT_SCREEN"},
    {271, u"Pause", "IDS_KEY_PAUSE"},
    {272, u"Menu", "IDS_KEY_MENU"},
};
constexpr std::uint32_t kFirstFunctionKey = 512; // F1
constexpr std::uint32_t kFunctionKeys = 24;

struct NamedModifier {
    KeyModifiers bit;
    wstring_view name;
    const char* shown; // message id
};
constexpr NamedModifier kModifiers[] = {
    {KeyModifiers::ctrl, u"Ctrl", "IDS_KEY_CTRL"},
    {KeyModifiers::alt, u"Alt", "IDS_KEY_ALT"},
    {KeyModifiers::shift, u"Shift", "IDS_KEY_SHIFT"},
    {KeyModifiers::meta, u"Meta", "IDS_KEY_META"},
};
constexpr std::uint32_t kAllModifiers = 15;

/// Whether the key types this character, which the shift key does not change: no small letters, no space.
constexpr bool is_character(std::uint32_t key) noexcept {
    return key > u' ' && key < 0x7F && !(key >= u'a' && key <= u'z');
}

const NamedKey* named_key(std::uint32_t key) noexcept {
    const auto* const found = std::ranges::find(kKeys, key, &NamedKey::number);
    return found != std::end(kKeys) ? found : nullptr;
}

bool is_function_key(std::uint32_t key) noexcept {
    return key >= kFirstFunctionKey && key < kFirstFunctionKey + kFunctionKeys;
}

/// Takes the modifier in front of another part off the text.
const NamedModifier* take_modifier(wstring_view& text) noexcept {
    const std::size_t plus = text.find(u'+');
    if (plus == wstring_view::npos)
        return nullptr;
    const wstring_view rest = trim_left(text.substr(plus + 1));
    if (rest.empty()) // the "+" is a key, or nothing follows
        return nullptr;
    const wstring_view name = trim_all(text.substr(0, plus));
    const auto* const found = std::ranges::find_if(
        kModifiers, [&](const NamedModifier& modifier) { return compare_nocase(modifier.name, name) == 0; });
    if (found == std::end(kModifiers))
        return nullptr;
    text = rest;
    return found;
}

wstring joined(const ShortCut& shortCut, bool forPeople) {
    if (shortCut.isEmpty())
        return {};
    wstring text;
    for (const NamedModifier& modifier : kModifiers) {
        if (shortCut.has(modifier.bit))
            text.append(forPeople ? message_text(modifier.shown) : wstring(modifier.name)).append(u"+");
    }
    const NamedKey* const named = named_key(shortCut.key());
    return text.append(forPeople && named != nullptr ? message_text(named->shown) : key_name(shortCut.key()));
}

} // namespace

std::optional<std::uint32_t> key_number(wstring_view name) noexcept {
    if (name.size() == 1) {
        const wchar unit = name[0];
        const std::uint32_t key = unit >= u'a' && unit <= u'z' ? unit - 32U : unit;
        return is_character(key) ? std::optional(key) : std::nullopt;
    }
    for (const NamedKey& key : kKeys) {
        if (compare_nocase(key.name, name) == 0)
            return key.number;
    }
    // "F1" to "F24", without zeros in front and in ASCII alone, so that each key has one name.
    if ((name.size() != 2 && name.size() != 3) || (name[0] != u'F' && name[0] != u'f') || name[1] == u'0')
        return std::nullopt;
    std::uint32_t number = 0;
    for (const wchar unit : name.substr(1)) {
        if (unit < u'0' || unit > u'9')
            return std::nullopt;
        number = number * 10 + (unit - u'0');
    }
    return number <= kFunctionKeys ? std::optional(kFirstFunctionKey + number - 1) : std::nullopt;
}

wstring key_name(std::uint32_t key) {
    if (const NamedKey* const named = named_key(key))
        return wstring(named->name);
    if (is_function_key(key))
        return u"F" + string_intto(key - kFirstFunctionKey + 1);
    return is_character(key) ? wstring(1, static_cast<wchar>(key)) : wstring();
}

wstring ShortCut::toText() const {
    return joined(*this, false);
}

wstring ShortCut::presentation() const {
    return joined(*this, true);
}

std::optional<ShortCut> ShortCut::fromText(wstring_view text) noexcept {
    text = trim_all(text);
    if (text.empty())
        return ShortCut();
    KeyModifiers modifiers = KeyModifiers::none;
    while (const NamedModifier* const modifier = take_modifier(text)) {
        if ((modifiers & modifier->bit) != KeyModifiers::none)
            return std::nullopt;
        modifiers = modifiers | modifier->bit;
    }
    const auto key = key_number(text);
    return key ? std::optional(ShortCut(*key, modifiers)) : std::nullopt;
}

void to_stream(ListOutStream& out, const ShortCut& shortCut) {
    out.putBeginOfList();
    out.put(shortCut.key());
    out.put(static_cast<std::uint32_t>(shortCut.modifiers()));
    out.putEndOfList();
}

void from_stream(ListInStream& in, ShortCut& shortCut) {
    std::uint32_t key = 0;
    std::uint32_t modifiers = 0;
    in.getBeginOfList();
    in.get(key);
    in.get(modifiers);
    in.getEndOfList();
    const bool isKey = key == 0 || named_key(key) != nullptr || is_function_key(key) || is_character(key);
    if (!isKey || modifiers > kAllModifiers)
        throw_malformed();
    shortCut = ShortCut(key, static_cast<KeyModifiers>(modifiers));
}

} // namespace core
