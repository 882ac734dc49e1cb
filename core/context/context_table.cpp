// SPDX-License-Identifier: Apache-2.0
#include <core/context/context_table.h>
#include <core/context/errors.h>
#include <core/strings/integer_text.h>
#include <core/values/errors.h>

namespace core {
namespace {

template <class T>
Value value_of(T literal) {
    return literal;
}
Value value_of(std::monostate) noexcept {
    return {};
}

} // namespace

bool Param::getDefault(GenericValue* value) const {
    if (byDefault == ParamDefault::none)
        return false;
    if (value == nullptr)
        return true;
    switch (byDefault) {
    case ParamDefault::none:
    case ParamDefault::undefined:
        *value = GenericValue();
        break;
    case ParamDefault::emptyString:
        *value = GenericValue(u"");
        break;
    case ParamDefault::falseValue:
        *value = GenericValue(false);
        break;
    case ParamDefault::resourceText:
        *value = GenericValue(detail::message_text_of(*module, resource));
        break;
    case ParamDefault::literal:
        *value = std::visit([](auto held) { return GenericValue(value_of(held)); }, literal);
        break;
    }
    return true;
}

void detail::bad_property(int prop) {
    throw_error<ContextException>(messages::kNoProperty, {string_intto(prop)});
}

void detail::bad_method(int method) {
    throw_error<ContextException>(messages::kNoMethod, {string_intto(method)});
}

void detail::unreadable_property(const wchar* name) {
    throw_error<ContextException>(messages::kPropertyNotReadable, {name});
}

void detail::unwritable_property(const wchar* name) {
    throw_error<ContextException>(messages::kPropertyNotWritable, {name});
}

void detail::complete_arguments(std::span<const Param> params, std::vector<GenericValue>& arguments,
                                const wchar* method) {
    if (arguments.size() > params.size())
        throw_error<ContextException>(messages::kTooManyArguments, {method, string_intto(params.size())});
    std::vector<GenericValue> defaults;
    for (std::size_t i = arguments.size(); i < params.size(); ++i) {
        GenericValue value;
        if (!params[i].getDefault(&value))
            throw_error<ContextException>(messages::kMissingArgument, {method, string_intto(i + 1)});
        defaults.push_back(std::move(value));
    }
    arguments.insert(arguments.end(), std::make_move_iterator(defaults.begin()),
                     std::make_move_iterator(defaults.end()));
}

} // namespace core
