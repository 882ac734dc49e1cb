// SPDX-License-Identifier: Apache-2.0
#include <core/context/arguments.h>
#include <core/context/callable.h>
#include <core/context/errors.h>
#include <core/context/script_object.h>
#include <core/runtime/code_hold.h>
#include <core/strings/integer_text.h>
#include <core/values/errors.h>

#include <functional>

namespace core {
namespace {

class Procedure : public ScriptObject<Procedure, ICallable> {
  public:
    static constexpr ClassNames names{u"Procedure", u"Процедура"};

    explicit Procedure(CallableParts parts) noexcept : code_(parts.call), parts_(std::move(parts)) {}

    using IContextImpl<IContextDefImpl<Procedure>>::call; // what calls a method of the value by its number
    const wstring& name() const noexcept override { return parts_.name; }
    int leastArguments() const noexcept override { return parts_.leastArguments; }
    int mostArguments() const noexcept override { return parts_.mostArguments; }
    bool returns() const noexcept override { return parts_.returns; }
    const void* target() const noexcept override { return parts_.target; }
    GenericValue call(std::span<const GenericValue> arguments) override {
        const auto count = static_cast<int>(arguments.size());
        if (count < parts_.leastArguments)
            throw_error<ContextException>(messages::kMissingArgument, {parts_.name, string_intto(count + 1)});
        if (count > parts_.mostArguments)
            throw_error<ContextException>(messages::kTooManyArguments,
                                          {parts_.name, string_intto(parts_.mostArguments)});
        return parts_.call(arguments);
    }

    bool getString(wstring& out) const override {
        out = parts_.name;
        return true;
    }
    bool isEqual(const IValue* other) const noexcept override {
        const auto* const procedure = of(other);
        return procedure != nullptr && procedure->parts_.target == parts_.target;
    }
    std::int32_t hashCode() const noexcept override {
        return static_cast<std::int32_t>(std::hash<const void*>()(parts_.target));
    }

  private:
    CodeHold code_;
    CallableParts parts_;
};

const ScriptTypeEntry<Procedure> kCallableEntry;

} // namespace

InterfacePtr<ICallable> create_callable(CallableParts parts) {
    return make_object<Procedure>(std::move(parts));
}

InterfacePtr<ICallable> callable_argument(const Value& argument, int param, int count) {
    auto callable = object_argument<ICallable>(argument, param);
    if (count < callable->leastArguments() || count > callable->mostArguments())
        parameter_value_mismatch(param);
    return callable;
}

} // namespace core
