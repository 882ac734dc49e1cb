// SPDX-License-Identifier: Apache-2.0
#include "core/collections/stored_count.h"

#include <core/collections/native_values.h>
#include <core/context/arguments.h>
#include <core/context/script_object.h>
#include <core/locales/settings.h>
#include <core/objects/locale_values.h>
#include <core/runtime/utf8.h>

namespace core {

void put(ListOutStream& out, const LocalWString& string) {
    const std::vector<Locale> languages = string.languages();
    out.putBeginOfList();
    out.put(static_cast<std::int64_t>(languages.size()));
    for (const Locale& language : languages) {
        out.put(from_utf8(language.key()));
        out.put(*string.find(language));
    }
    out.putEndOfList();
}

LocalWString get_local_wstring(ListInStream& in) {
    LocalWString string;
    in.getBeginOfList();
    for (std::int64_t left = get_count(in); left > 0; --left) {
        wstring key;
        wstring text;
        in.get(key);
        in.get(text);
        const Locale language(to_utf8(key));
        if (string.find(language) != nullptr)
            throw_malformed();
        string.set(language, std::move(text));
    }
    in.getEndOfList();
    return string;
}

namespace {

/// It never changes, so that it can be a key of a map, and a title that was read is not somebody else's.
class LocalWStringObject : public ScriptObject<LocalWStringObject, IPersistableObject> {
  public:
    static constexpr ScriptClass script = {
        .names = {u"LocalWString", u"МногоязычнаяСтрока"},
        .type = kLocalWStringType,
        .object = kLocalWStringClass,
        .presentation = "IDS_TYPE_PRESENTATION_LOCALWSTRING",
        .arguments = {0, 1},
    };

    explicit LocalWStringObject(LocalWString string = {}) noexcept : string_(std::move(string)) {}

    /// New LocalWString(Written).
    static GenericValue construct(std::span<GenericValue> arguments) {
        return arguments.empty() ? made({}) : made(LocalWString::fromString(text_argument(arguments[0], 0)));
    }
    static auto members() {
        using T = LocalWStringObject;
        constexpr Parameter kLanguage{u"Language", u"Язык"};
        return core::members(
            property(u"Written", u"Запись", &T::written), method(u"Languages", u"Языки", &T::languages),
            method(u"Text", u"Текст", &T::text, kLanguage), method(u"Find", u"Найти", &T::find, kLanguage),
            method(u"With", u"Дополнить", &T::with, kLanguage, {u"Text", u"Текст"}),
            method(u"Without", u"Исключить", &T::without, kLanguage));
    }

    wstring written() const { return string_.toString(); }
    std::vector<Locale> languages() const { return string_.languages(); }
    /// The text for a reader of a language, by default for the user.
    wstring text(const std::optional<Locale>& language) const {
        return language ? string_.text(*language, current_settings().part<LanguageSettings>().byDefault)
                        : string_.text();
    }
    /// The text of just that language, or Undefined.
    std::optional<wstring> find(const Locale& language) const {
        const wstring* const found = string_.find(language);
        return found != nullptr ? std::optional(*found) : std::nullopt;
    }
    Value with(const Locale& language, wstring text) const {
        LocalWString changed = string_;
        changed.set(language, std::move(text));
        return made(std::move(changed));
    }
    Value without(const Locale& language) const {
        LocalWString changed = string_;
        changed.remove(language);
        return made(std::move(changed));
    }

    // IValue
    bool getString(wstring& out) const override {
        out = string_.text();
        return true;
    }
    bool isEqual(const IValue* other) const noexcept override {
        const LocalWStringObject* const same = of(other);
        return same != nullptr && same->string_ == string_;
    }
    std::int32_t hashCode() const noexcept override {
        return static_cast<std::int32_t>(static_cast<std::uint32_t>(string_.hash()));
    }

    // IPersistableObject
    void serialize(IOutPersistenceStorage* storage) const override { put(storage->listStream(), string_); }
    void deserialize(IInPersistenceStorage* storage) override {
        string_ = get_local_wstring(storage->listStream());
    }

    [[nodiscard]] const LocalWString& string() const noexcept { return string_; }

    static Value made(LocalWString string) { return make_object<LocalWStringObject>(std::move(string)); }

  private:
    LocalWString string_;
};

const ScriptClassEntry<LocalWStringObject> kLocalWstringObjectEntry;

} // namespace

LocalWString detail::local_wstring_from(const Value& value, ValueReceiver receiver) {
    if (const LocalWStringObject* const object = LocalWStringObject::of(value))
        return object->string();
    return text_from(value, receiver);
}

Value detail::value_of_local_wstring(const LocalWString& string) {
    return string.isPlain() ? Value(string.text()) : LocalWStringObject::made(string);
}

} // namespace core
