// SPDX-License-Identifier: Apache-2.0
#include <core/context/arguments.h>
#include <core/context/context_def_ext.h>
#include <core/context/events/event_functions.h>
#include <core/context/events/event_service.h>
#include <core/runtime/process.h>

namespace core {
namespace {

/// Returns an object of any class, borrowed from the argument.
IUnknown* any_object(const Value& argument, int param) {
    if (!argument.isObject())
        parameter_type_mismatch(param);
    return argument.object();
}

class EventFunctions : public IContextImpl<IContextDefImpl<EventFunctions>>,
                       public ContextDefExtImpl<EventFunctions> {
  public:
    using Interfaces = InterfaceList<IContext_, IContextDef, IContextDefExt, IContextDefParams>;

    static std::span<const Property<EventFunctions>> properties() noexcept { return {}; }
    static std::span<const Method<EventFunctions>> methods() noexcept {
        static constexpr Param kSource = named_param({u"Source", u"Источник"});
        static constexpr Param kConnection[] = {
            kSource, named_param({u"Event", u"Событие"}), named_param({u"Object", u"Объект"}),
            named_param({u"Method", u"Метод"}), named_param({u"Weak", u"Слабое"}, ParamDefault::falseValue)};
        static constexpr Param kNumber[] = {kSource, named_param({u"Number", u"Номер"})};
        static constexpr Method<EventFunctions> kTable[] = {
            {{u"Connect", u"Соединить"}, kConnection, kFunction, &EventFunctions::connect, &kNumberType},
            {{u"Disconnect", u"Разъединить"}, kNumber, kFunction, &EventFunctions::disconnect, &kBooleanType},
        };
        return kTable;
    }

  private:
    GenericValue connect(std::span<GenericValue> arguments) {
        IUnknown* const source = any_object(arguments[0], 0);
        const wstring event(text_argument(arguments[1], 1));
        IUnknown* const object = any_object(arguments[2], 2);
        const wstring method(text_argument(arguments[3], 3));
        const SinkHold hold = flag_argument(arguments[4], 4) ? SinkHold::weak : SinkHold::strong;
        return require_service<IEventService>().connectMethod(source, event.c_str(), object, method.c_str(),
                                                              hold);
    }
    GenericValue disconnect(std::span<GenericValue> arguments) {
        IUnknown* const source = any_object(arguments[0], 0);
        const Numeric number = number_argument(arguments[1], 1);
        const auto connection = static_cast<ConnectionNumber>(number);
        return Numeric(connection) == number &&
               require_service<IEventService>().disconnect(source, connection);
    }
};

} // namespace

InterfacePtr<IContext_> create_event_functions() {
    return make_object<EventFunctions>();
}

} // namespace core
