// SPDX-License-Identifier: Apache-2.0
#include <core/collections/value_array.h>
#include <core/context/script_object.h>
#include <core/runtime/exception_object.h>
#include <core/runtime/module.h>
#include <core/runtime/utf8.h>
#include <core/script/error_value.h>

#include <string_view>
#include <utility>

namespace core::script {
namespace {

/// The name of an exception class as its module declares it; the id for a class that no module has.
wstring class_name(const GUID& clsid) {
    constexpr std::string_view kObject = "Object"; // what carries an exception is called like it, and this
    const ModulesScope scope;
    for (const SCOM_Module* const module : registered_modules()) {
        for (const ClassRecord& record : module->classTable()) {
            if (record.clsid == nullptr || !(*record.clsid == clsid))
                continue;
            std::string_view name = record.name;
            if (name.ends_with(kObject) && name != kObject)
                name.remove_suffix(kObject.size());
            return from_utf8(name);
        }
    }
    return to_string(clsid);
}

/// What failed: where the library failed, the script's own failure only adds the place to that.
const Exception& failure_of(const Error& error) {
    if (error.cause() == nullptr)
        return error;
    const Exception& below = error.cause()->exception();
    const bool same = !(below.clsid() == Error::kClassId) && *below.messageId() != '\0' &&
                      std::string_view(below.messageId()) == error.messageId();
    return same ? below : error;
}

/// A failure from below, which has no place of its own unless a script failed there.
Error error_of(const Exception& failure) {
    if (const auto* const error = dynamic_cast<const Error*>(&failure))
        return *error;
    Error error(failure.description(), Place(), wrap_exception(failure).get());
    error.setMessage(failure.messageId(), failure.parameters());
    return error;
}

class ErrorValue : public ScriptObject<ErrorValue, IErrorValue> {
  public:
    // Scripts cannot make one; that a process can serves those that ask for the definition.
    static constexpr ScriptClass script = {.names = {u"Error", u"Ошибка"},
                                           .type = script_type_id(u"Error"),
                                           .object = script_class_id(u"Error")};

    ErrorValue() : failure_(failure_of(error_)) {}
    // NOLINTNEXTLINE(bugprone-throw-keyword-missing): a member, which is kept
    explicit ErrorValue(const Error& error) : error_(error), failure_(failure_of(error_)) {}

    const Error& error() const noexcept override { return error_; }
    bool getString(wstring& out) const override {
        out = error_.description();
        return true;
    }

    [[nodiscard]] wstring text() const { return error_.description(); }
    [[nodiscard]] wstring id() const { return from_utf8(error_.messageId()); }
    [[nodiscard]] wstring className() const { return class_name(failure_.clsid()); }
    [[nodiscard]] InterfacePtr<IValueArray> parameters() const {
        std::vector<Value> values;
        for (const wstring& parameter : error_.parameters())
            values.emplace_back(parameter);
        return create_value_array(std::move(values));
    }
    [[nodiscard]] wstring file() const { return error_.file(); }
    [[nodiscard]] std::int32_t line() const { return error_.line(); }
    [[nodiscard]] std::int32_t column() const { return error_.column(); }
    [[nodiscard]] Value cause() const {
        IExceptionObject* const below = failure_.cause();
        return below != nullptr ? Value(create_error_value(error_of(below->exception()))) : Value();
    }

    static auto members() {
        using E = ErrorValue;
        return core::members(property(u"Text", u"Текст", &E::text), property(u"Id", u"Идентификатор", &E::id),
                             property(u"Class", u"Класс", &E::className),
                             property(u"Parameters", u"Параметры", &E::parameters),
                             property(u"File", u"Файл", &E::file), property(u"Line", u"Строка", &E::line),
                             property(u"Column", u"Колонка", &E::column),
                             property(u"Cause", u"Причина", &E::cause));
    }

  private:
    const Error error_;
    const Exception& failure_; // the error itself, or its cause
};

const ScriptClassEntry<ErrorValue> kErrorValueEntry;

} // namespace

GenericValue create_error_value(const Error& error) {
    return make_object<ErrorValue>(error);
}

} // namespace core::script
