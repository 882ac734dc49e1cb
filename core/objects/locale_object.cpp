// SPDX-License-Identifier: Apache-2.0
#include "core/strings/table_hash.h"

#include <core/context/script_object.h>
#include <core/lists/list_in_stream.h>
#include <core/lists/list_out_stream.h>
#include <core/objects/locale_values.h>
#include <core/runtime/settings.h>
#include <core/runtime/threads/thread.h>
#include <core/runtime/utf8.h>

#include <optional>

namespace core {
namespace {

class LocaleObject : public ScriptObject<LocaleObject, IPersistableObject> {
  public:
    static constexpr ScriptClass script = {
        .names = {u"Locale", u"Локаль"},
        .type = kLocaleType,
        .object = kLocaleClass,
        .presentation = "IDS_TYPE_PRESENTATION_LOCALE",
        .arguments = {0, 1},
    };

    explicit LocaleObject(Locale locale = {}) noexcept : locale_(std::move(locale)) {}

    /// New Locale(Key), or the locale of the process.
    static GenericValue construct(std::span<GenericValue> arguments) {
        return to_value(arguments.empty() ? current_settings().locale : from_value<Locale>(arguments[0]));
    }
    static auto members() {
        using T = LocaleObject;
        return core::members(property(u"Key", u"Ключ", &T::key), property(u"Language", u"Язык", &T::language),
                             property(u"Region", u"Регион", &T::region),
                             property(u"Parent", u"Родитель", &T::parent),
                             property(u"OwnName", u"СобственноеИмя", &T::ownName),
                             property(u"RightToLeft", u"СправаНалево", &T::isRightToLeft),
                             property(u"FirstDayOfWeek", u"ПервыйДеньНедели", &T::firstDayOfWeek),
                             method(u"Name", u"Имя", &T::name, {u"Reader", u"Читатель"}));
    }

    // properties
    std::string key() const { return locale_.key(); }
    std::string language() const { return locale_.language(); }
    std::string region() const { return locale_.region(); }
    /// Undefined for the root locale.
    std::optional<Locale> parent() const {
        return locale_ == Locale() ? std::nullopt : std::optional(locale_.parent());
    }
    wstring ownName() const { return locale_.ownName(); }
    bool isRightToLeft() const { return locale_.isRightToLeft(); }
    int firstDayOfWeek() const { return locale_.firstDayOfWeek(); }

    /// In the language of a reader, by default in that of the user.
    wstring name(const std::optional<Locale>& reader) const {
        return locale_.name(reader ? *reader : Thread::getResourceLocale());
    }

    // IValue
    bool getString(wstring& out) const override {
        out = name({});
        return true;
    }
    bool isEqual(const IValue* other) const noexcept override {
        const LocaleObject* const same = of(other);
        return same != nullptr && same->locale_ == locale_;
    }
    std::int32_t hashCode() const noexcept override {
        const auto bytes = std::as_bytes(std::span(locale_.key()));
        return static_cast<std::int32_t>(static_cast<std::uint32_t>(table_hash(bytes)));
    }

    // IPersistableObject
    void serialize(IOutPersistenceStorage* storage) const override {
        storage->listStream().put(from_utf8(locale_.key()));
    }
    void deserialize(IInPersistenceStorage* storage) override {
        wstring key;
        storage->listStream().get(key);
        locale_ = Locale(to_utf8(key));
    }

    [[nodiscard]] const Locale& locale() const noexcept { return locale_; }

  private:
    Locale locale_;
};

const ScriptClassEntry<LocaleObject> kLocaleObjectEntry;

} // namespace

Locale detail::locale_from(const Value& value, ValueReceiver receiver) {
    if (const LocaleObject* const object = LocaleObject::of(value))
        return object->locale();
    return Locale(to_utf8(text_from(value, receiver)));
}

Value detail::value_of_locale(const Locale& locale) {
    return make_object<LocaleObject>(locale);
}

} // namespace core
