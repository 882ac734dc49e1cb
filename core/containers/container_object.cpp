// SPDX-License-Identifier: Apache-2.0
#include <core/collections/native_values.h>
#include <core/containers/container.h>
#include <core/containers/container_functions.h>
#include <core/context/script_object.h>
#include <core/objects/binary_data.h>
#include <core/objects/native_enumeration.h>

#include <optional>

namespace core {
namespace {

Date local_time(Date universal) {
    return universal == Date() ? universal : universal.toLocalTime();
}

/// What a container knows of a file. Times are local, as all dates of scripts; an empty one is not known.
class ContainerFile : public ScriptObject<ContainerFile> {
  public:
    static constexpr ClassNames names{u"ContainerFile", u"ФайлКонтейнера",
                                      "IDS_TYPE_PRESENTATION_CONTAINERFILE"};

    ContainerFile() = default;
    explicit ContainerFile(const StorageFound& file)
        : name(file.name), size(file.size), created(local_time(file.created)),
          modified(local_time(file.modified)), version(file.version), damaged(file.damaged) {}

    static auto members() {
        using T = ContainerFile;
        return core::members(property(u"Name", u"Имя", &T::name, read_only),
                             property(u"Size", u"Размер", &T::size, read_only),
                             property(u"Created", u"Создан", &T::created, read_only),
                             property(u"Modified", u"Изменен", &T::modified, read_only),
                             property(u"Version", u"Версия", &T::version, read_only),
                             property(u"Damaged", u"Поврежден", &T::damaged, read_only));
    }
    bool getString(wstring& out) const override {
        out = name;
        return true;
    }

  private:
    wstring name;
    std::uint64_t size = 0;
    Date created;
    Date modified;
    std::uint32_t version = 0;
    bool damaged = false;
};

/// A container, open until it is closed or nobody holds it any more.
class ContainerObject : public ScriptObject<ContainerObject, IValueCollection> {
  public:
    static constexpr ClassNames names{u"Container", u"Контейнер"};

    /// A container in memory.
    ContainerObject() : container_(std::in_place) {}
    explicit ContainerObject(Container container) : container_(std::move(container)) {}

    wstring url() { return open().storage().url(); }
    std::uint64_t count() { return open().count(); }
    std::vector<wstring> list(wstring_view pattern) { return open().names(pattern); }
    bool contains(wstring_view name) { return open().contains(name); }
    ObjectPtr<ContainerFile> describe(wstring_view name) {
        return make_object<ContainerFile>(open().describe(name));
    }

    void put(wstring_view name, const Value& value, std::optional<ValueForm> form) {
        open().putValue(name, value, form.value_or(ValueForm::text));
    }
    Value get(wstring_view name) { return open().get(name); }
    void putText(wstring_view name, wstring_view text) { open().putText(name, text); }
    wstring getText(wstring_view name) { return open().getText(name); }
    void putData(wstring_view name, const IBinaryData& data) { open().putBytes(name, data.bytes()); }
    Value getData(wstring_view name) { return create_binary_data(open().getBytes(name)); }

    void remove(wstring_view name) { open().remove(name); }
    void rename(wstring_view from, wstring_view to) { open().rename(from, to); }
    void begin() { open().storage().begin(); }
    void commit() { open().storage().commit(); }
    void rollback() { open().storage().rollback(); }
    std::vector<wstring> compact() { return open().storage().compact().damaged; }
    void close() noexcept { container_.reset(); }

    static auto members() {
        using T = ContainerObject;
        constexpr Parameter kName{u"Name", u"Имя"};
        constexpr Parameter kText{u"Text", u"Текст"};
        constexpr Parameter kData{u"Data", u"Данные"};
        return core::members(
            property(u"URL", u"URL", &T::url), method(u"Count", u"Количество", &T::count),
            method(u"Names", u"Имена", &T::list, {u"Pattern", u"Шаблон", by_default(u"*")}),
            method(u"Contains", u"Содержит", &T::contains, kName),
            method(u"Describe", u"Описать", &T::describe, kName),
            method(u"Put", u"Поместить", &T::put, kName, {u"Value", u"Значение"}, {u"Form", u"Форма"}),
            method(u"Get", u"Получить", &T::get, kName),
            method(u"PutText", u"ПоместитьТекст", &T::putText, kName, kText),
            method(u"GetText", u"ПолучитьТекст", &T::getText, kName),
            method(u"PutData", u"ПоместитьДанные", &T::putData, kName, kData),
            method(u"GetData", u"ПолучитьДанные", &T::getData, kName),
            method(u"Delete", u"Удалить", &T::remove, kName),
            method(u"Rename", u"Переименовать", &T::rename, kName, {u"NewName", u"НовоеИмя"}),
            method(u"BeginTransaction", u"НачатьТранзакцию", &T::begin),
            method(u"CommitTransaction", u"ЗафиксироватьТранзакцию", &T::commit),
            method(u"RollbackTransaction", u"ОтменитьТранзакцию", &T::rollback),
            method(u"Compact", u"Сжать", &T::compact), method(u"Close", u"Закрыть", &T::close));
    }

    // IValueCollection
    InterfacePtr<IValueEnum> enumerate() override {
        std::vector<Value> values;
        for (const StorageFound& file : open().files())
            values.push_back(make_object<ContainerFile>(file));
        return create_value_enum(std::move(values));
    }
    bool getCollectionItemInfo(ContextValueInfo& info) const override {
        return detail::describe_type(&detail::script_class<ContainerFile>.type, info);
    }

  private:
    Container& open() {
        if (!container_)
            throw_error<ContextException>(messages::kContainerClosed);
        return *container_;
    }

    std::optional<Container> container_; // nothing once it is closed
};

/// Where scripts get containers from.
class Containers : public ScriptObject<Containers> {
  public:
    static constexpr ClassNames names{u"Containers", u"Контейнеры"};

    static auto members() {
        constexpr Parameter kFile{u"File", u"Файл"};
        return core::members(
            method(u"Open", u"Открыть",
                   [](Containers&, wstring_view file, bool readOnly) {
                       return opened(file, readOnly ? Container::read : Container::change);
                   },
                   kFile, {u"ReadOnly", u"ТолькоЧтение", by_default(false)}),
            method(
                u"Create", u"Создать",
                [](Containers&, wstring_view file) { return opened(file, Container::create); }, kFile));
    }

  private:
    static ObjectPtr<ContainerObject> opened(wstring_view file, OpenMode mode) {
        return make_object<ContainerObject>(Container(to_utf8(file), mode));
    }
};

class ContainerFunctions : public IContextImpl<IContextDefImpl<ContainerFunctions>> {
  public:
    using Interfaces = InterfaceList<IContext_, IContextDef>;

    static std::span<const Property<ContainerFunctions>> properties() noexcept {
        static constexpr Property<ContainerFunctions> kTable[] = {
            {{u"Containers", u"Контейнеры"}, &ContainerFunctions::containers, nullptr}};
        return kTable;
    }
    static std::span<const Method<ContainerFunctions>> methods() noexcept { return {}; }

  private:
    GenericValue containers() const { return containers_; }

    ObjectPtr<Containers> containers_ = make_object<Containers>();
};

const ScriptClassEntry<ContainerObject> kContainer;
const ScriptClassEntry<ContainerFile> kContainerFileEntry;
const ScriptClassEntry<Containers> kContainers;

} // namespace

InterfacePtr<IContext_> create_container_functions() {
    return make_object<ContainerFunctions>();
}

} // namespace core
