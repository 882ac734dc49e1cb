// SPDX-License-Identifier: Apache-2.0
#include "core/files/temp_folder.h"
#include "core/runtime/native_path.h"
#include "core/strings/base64.h"

#include <core/context/arguments.h>
#include <core/context/context_def_ext.h>
#include <core/context/errors.h>
#include <core/objects/binary_data.h>
#include <core/objects/core_general_context.h>
#include <core/runtime/class_entry.h>
#include <core/runtime/random.h>
#include <core/runtime/utf8.h>

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <vector>

namespace core {
namespace {

/// A property of the receiver and the value that it is to have.
struct Assignment {
    int prop;
    GenericValue value;
};

/// The receiver's property with a name of the source's property, in either language; -1 if none exists.
int same_property(const IContext_& receiver, const IContext_& source, int prop) {
    for (const int alias : {kEnglish, kRussian}) {
        const wchar* const name = source.getPropName(prop, alias);
        if (const int found = name != nullptr ? receiver.findProp(name) : -1; found >= 0)
            return found;
    }
    return -1;
}

/// Adds the assignment of the source's property to the receiver's of the same name, where both have one.
bool add_assignment(std::vector<Assignment>& assignments, IContext_& receiver, IContext_& source, int from) {
    const int to = from >= 0 ? same_property(receiver, source, from) : -1;
    if (to < 0 || !source.isPropReadable(from) || !receiver.isPropWritable(to))
        return false;
    assignments.push_back({to, {}});
    source.getPropVal(from, assignments.back().value);
    return true;
}

/// Sets what a property was before, as well as that can be done.
void put_back(IContext_& receiver, const Assignment& old) noexcept {
    try {
        if (receiver.isPropReadable(old.prop))
            receiver.setPropVal(old.prop, old.value);
    } catch (...) { // what is reported is why the new values could not be set
    }
}

/// All or nothing: when one cannot be set, those set before it get their old values back.
void assign_all(IContext_& receiver, std::vector<Assignment>& assignments) {
    std::size_t done = 0;
    try {
        for (Assignment& assignment : assignments) {
            GenericValue old;
            if (receiver.isPropReadable(assignment.prop))
                receiver.getPropVal(assignment.prop, old);
            receiver.setPropVal(assignment.prop, assignment.value);
            assignment.value = std::move(old);
            ++done;
        }
    } catch (...) {
        while (done-- > 0)
            put_back(receiver, assignments[done]);
        throw;
    }
}

constexpr Term kGetTempFileName = {u"GetTempFileName", u"ПолучитьИмяВременногоФайла"};
constexpr Term kFillPropertyValues = {u"FillPropertyValues", u"ЗаполнитьЗначенияСвойств"};
constexpr Term kBase64Value = {u"Base64Value", u"Base64Значение"};
constexpr Term kBase64String = {u"Base64String", u"Base64Строка"};

} // namespace

class CoreGeneralContextDef : public IContextImpl<IContextDefImpl<CoreGeneralContextDef>>,
                              public ContextDefExtImpl<CoreGeneralContextDef> {
  public:
    using Interfaces = InterfaceList<IContext_, IContextDef, IContextDefExt, IContextDefParams>;

    CoreGeneralContextDef() = default;
    CoreGeneralContextDef(const CoreGeneralContextDef&) = delete;
    CoreGeneralContextDef& operator=(const CoreGeneralContextDef&) = delete;
    /// What stands under the temporary names is not needed any more.
    ~CoreGeneralContextDef() {
        for (const std::filesystem::path& name : temporary_) {
            std::error_code ignored;
            std::filesystem::remove_all(name, ignored);
        }
    }

    static std::span<const Property<CoreGeneralContextDef>> properties() noexcept { return {}; }
    static std::span<const Method<CoreGeneralContextDef>> methods() noexcept {
        using T = CoreGeneralContextDef;
        constexpr auto kEmpty = ParamDefault::emptyString;
        static constexpr Param kExtension[] = {named_param({u"Extension", u"Расширение"}, kEmpty)};
        static constexpr Param kFill[] = {
            named_param({u"Receiver", u"Приемник"}), named_param({u"Source", u"Источник"}),
            named_param({u"Names", u"Имена"}, kEmpty), named_param({u"Excluded", u"Исключенные"}, kEmpty)};
        static constexpr Param kText[] = {named_param({u"Text", u"Текст"})};
        static constexpr Param kData[] = {named_param({u"Data", u"Данные"})};
        static constexpr Method<T> kTable[] = {
            {kGetTempFileName, kExtension, kFunction, &T::getTempFileName, &kStringType},
            {kFillPropertyValues, kFill, kProcedure, &T::fillPropertyValues},
            {kBase64Value, kText, kFunction, &T::base64Value, &kBinaryDataType},
            {kBase64String, kData, kFunction, &T::base64String, &kStringType},
        };
        return kTable;
    }

    // Out of range the name is empty, where other definitions answer null.
    const wchar* getPropName(int, int) const override { return u""; }
    const wchar* getMethodName(int method, int alias) const override {
        return method >= 0 && method < getNMethods() ? IContextImpl::getMethodName(method, alias) : u"";
    }

  private:
    GenericValue getTempFileName(std::span<GenericValue> arguments) {
        wstring_view extension = text_argument(arguments[0], 0);
        if (extension.starts_with(u'.'))
            extension.remove_prefix(1);
        // The name must not lead out of the folder, nor end before its end.
        if (extension.find_first_of(wstring_view(u"/\\\0", 3)) != wstring_view::npos)
            parameter_value_mismatch(0);
        const std::string name = "core-" + to_utf8(to_string(new_guid())) + (extension.empty() ? "" : ".");
        temporary_.push_back(temp_folder() / native_path(name + to_utf8(extension)));
        return from_utf8(path_text(temporary_.back()));
    }

    GenericValue fillPropertyValues(std::span<GenericValue> arguments) {
        const auto receiver = object_argument<IContext_>(arguments[0], 0);
        const auto source = object_argument<IContext_>(arguments[1], 1);
        const auto listed = list_argument(arguments[2], 2, EmptyTokens::skip);
        std::vector<int> excluded;
        for (const wstring_view name : list_argument(arguments[3], 3, EmptyTokens::skip))
            excluded.push_back(source->findProp(wstring(name).c_str()));
        const auto isExcluded = [&](int prop) { return std::ranges::count(excluded, prop) != 0; };
        std::vector<Assignment> assignments;
        for (const wstring_view name : listed) {
            const int prop = source->findProp(wstring(name).c_str());
            if ((prop < 0 || !isExcluded(prop)) && !add_assignment(assignments, *receiver, *source, prop))
                parameter_value_mismatch(2);
        }
        for (int prop = 0; listed.empty() && prop < source->getNProps(); ++prop) {
            if (!isExcluded(prop))
                add_assignment(assignments, *receiver, *source, prop);
        }
        assign_all(*receiver, assignments);
        return {};
    }

    GenericValue base64Value(std::span<GenericValue> arguments) {
        auto bytes = base64_decode(text_argument(arguments[0], 0));
        if (!bytes)
            parameter_value_mismatch(0);
        return create_binary_data(std::move(*bytes));
    }

    GenericValue base64String(std::span<GenericValue> arguments) {
        if (const auto data = arguments[0].query<IBinaryData>())
            return base64_encode(data->bytes());
        const std::string utf8 = to_utf8(text_argument(arguments[0], 0));
        return base64_encode(std::as_bytes(std::span(utf8)));
    }

    std::vector<std::filesystem::path> temporary_; // the names that were handed out
};

InterfacePtr<IContext_> create_core_general_context() {
    return make_object<CoreGeneralContextDef>();
}

namespace {

const SCOM_Class<CoreGeneralContextDef, &kCoreGeneralContextClass, true>
    kCoreGeneralContextEntry("CoreGeneralContext");

} // namespace

} // namespace core
