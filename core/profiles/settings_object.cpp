// SPDX-License-Identifier: Apache-2.0
#include <core/collections/native_values.h>
#include <core/context/events/event.h>
#include <core/context/script_object.h>
#include <core/objects/native_enumeration.h>
#include <core/profiles/profile.h>
#include <core/profiles/settings_functions.h>
#include <core/runtime/process.h>

#include <map>
#include <optional>
#include <utility>

namespace core {
namespace {

constexpr EnumerationItem kLayers[] = {
    {{u"BuiltIn", u"Встроенный"}, "IDS_SETTINGS_LAYERS_BUILT_IN", 0},
    {{u"System", u"Система"}, "IDS_SETTINGS_LAYERS_SYSTEM", 1},
    {{u"User", u"Пользователь"}, "IDS_SETTINGS_LAYERS_USER", 2},
    {{u"Run", u"Запуск"}, "IDS_SETTINGS_LAYERS_RUN", 3},
};
constexpr EnumerationInfo kLayersInfo = {
    .type = {.id = "bbbb794a-d537-4ab4-a5a0-85ef24e4c08f"_guid,
             .valueClass = "1038a7af-372b-45ba-9a4a-cb069d3a6ef9"_guid,
             .names = {u"SettingsLayers", u"СлоиНастроек"},
             .presentation = "IDS_SETTINGS_LAYERS"},
    .factory = "5486f472-a8c8-4ccc-8a54-6ed94c13c15b"_guid,
    .items = kLayers,
};
const EnumerationEntry<kLayersInfo> kLayersEntry("SettingsLayers");

using Layer = std::optional<ProfileLayer>;

ProfileLayer layer_or_user(const Layer& layer) {
    return layer.value_or(ProfileLayer::user);
}

constexpr Parameter kPath{u"Path", u"Путь"};
constexpr Parameter kValue{u"Value", u"Значение"};
constexpr Parameter kLayer{u"Layer", u"Слой"};
constexpr Parameter kFolder{u"Folder", u"Папка", by_default(u"")};

/// Changes that are made together.
class SettingsChanges : public ScriptObject<SettingsChanges> {
  public:
    static constexpr ClassNames names{u"SettingsChanges", u"ИзмененияНастроек",
                                      "IDS_TYPE_PRESENTATION_SETTINGSCHANGES"};

    void set(wstring_view path, const Value& value) { changes_.set(wstring(path), value); }
    void remove(wstring_view path) { changes_.remove(wstring(path)); }
    void lock(wstring_view path) { changes_.lock(wstring(path)); }
    void unlock(wstring_view path) { changes_.unlock(wstring(path)); }
    /// What was made is not made again.
    void make(const Layer& layer) {
        require_service<IProfile>().change(changes_, layer_or_user(layer));
        changes_ = {};
    }

    static auto members() {
        using T = SettingsChanges;
        return core::members(method(u"Set", u"Установить", &T::set, kPath, kValue),
                             method(u"Remove", u"Удалить", &T::remove, kPath),
                             method(u"Lock", u"Закрепить", &T::lock, kPath),
                             method(u"Unlock", u"Открепить", &T::unlock, kPath),
                             method(u"Make", u"Выполнить", &T::make, kLayer));
    }

  private:
    ProfileChanges changes_;
};

/// The profile of the process as scripts have it.
class SettingsObject : public ScriptObject<SettingsObject> {
  public:
    static constexpr ClassNames names{u"Settings", u"Настройки"};

    GenericValue get(wstring_view path, const std::optional<GenericValue>& byDefault,
                     const std::optional<Type>& type) {
        GenericValue instead = byDefault.value_or(GenericValue());
        const std::optional<ProfileValue> found = profile().find(path);
        if (!found || found->value.isUndefined())
            return instead;
        const Type wanted = type ? *type : instead.isUndefined() ? found->value.type() : instead.type();
        if (found->value.type() == wanted)
            return found->value;
        profile().reportType(path, found->value);
        return instead;
    }
    bool contains(wstring_view path) { return profile().find(path).has_value(); }
    /// Names of values, and names of folders with "/" behind them.
    std::vector<wstring> list(wstring_view folder) {
        std::vector<wstring> all;
        for (ProfileItem& item : profile().list(folder)) {
            if (item.isFolder)
                all.push_back(item.name + u'/');
            if (item.isValue)
                all.push_back(std::move(item.name));
        }
        return all;
    }
    std::map<wstring, GenericValue> values(wstring_view folder) {
        std::map<wstring, GenericValue> all;
        for (ProfileEntry& entry : profile().entries(folder))
            all.emplace(std::move(entry.path), std::move(entry.found.value));
        return all;
    }

    void set(wstring_view path, const Value& value, const Layer& layer) {
        profile().set(path, value, layer_or_user(layer));
    }
    void remove(wstring_view path, const Layer& layer) { profile().remove(path, layer_or_user(layer)); }
    void copy(wstring_view from, wstring_view to, const Layer& layer) {
        profile().copy(from, to, layer_or_user(layer));
    }
    void move(wstring_view from, wstring_view to, const Layer& layer) {
        profile().move(from, to, layer_or_user(layer));
    }
    bool isLocked(wstring_view path, const Layer& layer) {
        return profile().isLocked(path, layer_or_user(layer));
    }

    void exportTo(wstring_view file, wstring_view folder) { profile().exportTo(file, folder); }
    void importFrom(wstring_view file, wstring_view folder, const Layer& layer) {
        profile().importFrom(file, folder, layer_or_user(layer));
    }
    bool refresh() { return profile().refresh(); }
    std::vector<wstring> reports() { return profile().takeReports(); }
    ObjectPtr<SettingsChanges> changes() { return make_object<SettingsChanges>(); }

    Event<wstring> changed{named<u"Changed", u"ПриИзменении">};

    static auto members() {
        using T = SettingsObject;
        constexpr Parameter kFrom{u"From", u"Откуда"};
        constexpr Parameter kTo{u"To", u"Куда"};
        constexpr Parameter kFile{u"File", u"Файл"};
        return core::members(
            method(u"Get", u"Получить", &T::get, kPath, {u"Default", u"ПоУмолчанию"}, {u"Type", u"Тип"}),
            method(u"Contains", u"Содержит", &T::contains, kPath),
            method(u"List", u"Список", &T::list, kFolder),
            method(u"Values", u"Значения", &T::values, kFolder),
            method(u"Set", u"Установить", &T::set, kPath, kValue, kLayer),
            method(u"Remove", u"Удалить", &T::remove, kPath, kLayer),
            method(u"Copy", u"Копировать", &T::copy, kFrom, kTo, kLayer),
            method(u"Move", u"Переместить", &T::move, kFrom, kTo, kLayer),
            method(u"IsLocked", u"Закреплена", &T::isLocked, kPath, kLayer),
            method(u"Export", u"Выгрузить", &T::exportTo, kFile, kFolder),
            method(u"Import", u"Загрузить", &T::importFrom, kFile, kFolder, kLayer),
            method(u"Refresh", u"Обновить", &T::refresh), method(u"Reports", u"Сообщения", &T::reports),
            method(u"Changes", u"Изменения", &T::changes), event(&T::changed, {u"Path", u"Путь"}));
    }

  private:
    /// The profile, of which the event tells from its first use on.
    IProfile& profile() {
        auto& profile = require_service<IProfile>();
        if (!connection_.isConnected())
            connection_ = profile.watch({}, [this](const wstring& path) { changed.raise(path); });
        return profile;
    }

    Connection connection_;
};

class SettingsFunctions : public IContextImpl<IContextDefImpl<SettingsFunctions>> {
  public:
    using Interfaces = InterfaceList<IContext_, IContextDef>;

    static std::span<const Property<SettingsFunctions>> properties() noexcept {
        static constexpr Property<SettingsFunctions> kTable[] = {
            {{u"Settings", u"Настройки"}, &SettingsFunctions::settings, nullptr}};
        return kTable;
    }
    static std::span<const Method<SettingsFunctions>> methods() noexcept { return {}; }

  private:
    GenericValue settings() const { return settings_; }

    ObjectPtr<SettingsObject> settings_ = make_object<SettingsObject>();
};

const ScriptClassEntry<SettingsChanges> kChanges;
const ScriptClassEntry<SettingsObject> kSettings;

} // namespace

Enumeration* script_enumeration(ProfileLayer) noexcept {
    return kLayersEntry.instance();
}

InterfacePtr<IContext_> create_settings_functions() {
    return make_object<SettingsFunctions>();
}

} // namespace core
