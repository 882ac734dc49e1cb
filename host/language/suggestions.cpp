// SPDX-License-Identifier: Apache-2.0
#include "host/language/suggestions.h"

#include <core/runtime/process.h>
#include <core/strings/term.h>
#include <core/values/type_service.h>

namespace core::script {
namespace {

void add_name(NearestName& near, const wchar* name) {
    if (name != nullptr)
        near.add(name);
}

} // namespace

void add_properties(NearestName& near, const IContext_& context) {
    for (int prop = 0; prop < context.getNProps(); ++prop) {
        for (const int alias : {kEnglish, kRussian})
            add_name(near, context.getPropName(prop, alias));
    }
}

void add_methods(NearestName& near, const IContext_& context) {
    for (int method = 0; method < context.getNMethods(); ++method) {
        for (const int alias : {kEnglish, kRussian})
            add_name(near, context.getMethodName(method, alias));
    }
}

NearestName nearest_property(const IContext_& context, wstring_view name) {
    NearestName near(name);
    add_properties(near, context);
    return near;
}

NearestName nearest_method(const IContext_& context, wstring_view name) {
    NearestName near(name);
    add_methods(near, context);
    return near;
}

NearestName nearest_type(wstring_view name) {
    NearestName near(name);
    for (const IType* const type : require_service<ITypeValueService>().types()) {
        for (const int alias : {kEnglish, kRussian}) {
            if (type->arguments().least >= 0)
                add_name(near, type->name(alias));
        }
    }
    return near;
}

} // namespace core::script
