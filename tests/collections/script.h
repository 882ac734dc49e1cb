// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/collections.h>
#include <core/context/context_def.h>
#include <core/context/iteration.h>
#include <core/runtime.h>
#include <core/values.h>
#include <host/host_process.h>

#include <gtest/gtest.h>

/// Objects as a script reaches them: by name, with arguments in a row.
namespace script {

using namespace core;

using Arguments = std::vector<GenericValue>;

inline GenericValue make(wstring_view type, Arguments arguments = {}) {
    return Type(type).get()->construct(arguments);
}

inline GenericValue call(const Value& object, const wchar* method, Arguments& arguments) {
    const auto context = object.query<IContext_>();
    GenericValue result;
    context->call(context->findMethod(method), &result, &arguments);
    return result;
}
inline GenericValue call(const Value& object, const wchar* method, Arguments&& arguments = {}) {
    return call(object, method, arguments);
}

[[nodiscard]] inline GenericValue property(const Value& object, const wchar* name) {
    const auto context = object.query<IContext_>();
    GenericValue result;
    context->getPropVal(context->findProp(name), result);
    return result;
}

/// What a for-each loop sees.
[[nodiscard]] inline std::vector<GenericValue> walk(const Value& collection) {
    std::vector<GenericValue> seen;
    GenericValue item;
    for (const auto items = collection.query<IValueCollection>()->enumerate(); items->next(item);)
        seen.push_back(item);
    return seen;
}

inline wstring text(const GenericValue& value) {
    wstring out;
    value.toString(out);
    return out;
}

/// The message of the failure of type `E` that `action` ends in; empty if none exists.
template <class E = ContextException, class Action>
[[nodiscard]] wstring failure(Action action) {
    try {
        action();
    } catch (const E& e) {
        return e.description();
    }
    return {};
}

[[nodiscard]] inline wstring bad_index() {
    return message_text("IDS_INDEX_OFFBOUND");
}
[[nodiscard]] inline wstring type_mismatch(int param) {
    return message_text("IDS_PARAMETER_N_TYPE_MISMATCH", {string_intto(param + 1)});
}
[[nodiscard]] inline wstring value_mismatch(int param) {
    return message_text("IDS_PARAMETER_N_VALUE_MISMATCH", {string_intto(param + 1)});
}

/// A test in a running process.
class Test : public testing::Test {
  protected:
    host::HostProcess process_;
};

} // namespace script
