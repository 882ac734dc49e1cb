// SPDX-License-Identifier: Apache-2.0
#include "host/commands/describe_sample.h"

#include <core/runtime/exception.h>
#include <core/runtime/process.h>
#include <core/values/type_service.h>

#include <vector>

namespace host::describe {

using namespace core;

namespace {

/// Nothing of what is asked matters to anybody, so a refusal is no more than an object less.
template <class Ask>
void try_to(Ask ask) {
    try {
        ask();
    } catch (const Exception&) {
    }
}

enum class Making { given, named };

/// What the properties of an object hold and what its method Add returns. With Making::given Add is called
/// where it needs no argument, with Making::named it is also given a name.
std::vector<GenericValue> inside(const GenericValue& object, Making making) {
    std::vector<GenericValue> found;
    const auto context = object.query<IContext_>();
    if (!context)
        return found;
    GenericValue value;
    for (int prop = 0; prop < context->getNProps(); ++prop) {
        try_to([&] {
            context->getPropVal(prop, value);
            found.push_back(value);
        });
    }
    if (const int add = context->findMethod(u"Add"); add >= 0 && context->hasRetVal(add)) {
        try_to([&] {
            std::vector<GenericValue> arguments(static_cast<std::size_t>(context->getNParams(add)));
            for (std::size_t i = 0; i < arguments.size(); ++i) {
                if (context->getParamDefValue(add, static_cast<int>(i), &arguments[i]))
                    continue;
                if (making == Making::given)
                    return;
                arguments[i] = GenericValue(u"Name"); // of a column, for its table as for its index
            }
            context->call(add, &value, &arguments);
            found.push_back(value);
        });
    }
    return found;
}

InterfacePtr<IContext_> find_sample(const IType& type, Making making) {
    constexpr int kDepth = 3;
    std::vector<GenericValue> level;
    for (IType* const maker : require_service<ITypeValueService>().types()) {
        if (maker->arguments().least == 0)
            try_to([&] { level.push_back(maker->construct({})); });
    }
    for (int depth = 0; depth < kDepth; ++depth) {
        std::vector<GenericValue> next;
        for (const GenericValue& object : level) {
            for (GenericValue& value : inside(object, making)) {
                if (value.type().id() == type.id())
                    return value.query<IContext_>();
                next.push_back(std::move(value));
            }
        }
        level = std::move(next);
    }
    return {};
}

} // namespace

InterfacePtr<IContext_> sample_of(const IType& type) {
    // A column that is made on the way shows as a property of its rows, so it is made only where nothing else
    // helps.
    auto sample = find_sample(type, Making::given);
    return sample ? sample : find_sample(type, Making::named);
}

} // namespace host::describe
