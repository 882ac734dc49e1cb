// SPDX-License-Identifier: Apache-2.0
#include <core/runtime/exception_object.h>
#include <core/runtime/process.h>

namespace core {

InterfacePtr<IExceptionObject> wrap_exception(const Exception& e) {
    InterfacePtr<IExceptionObject> object;
    if (current_process() != nullptr)
        object = create_object<IExceptionObject>(e.clsid());
    if (!object) // a class of a module that is not here, or a thread without a process
        object = make_object<ExceptionObject>();
    object->init(e);
    return object;
}

} // namespace core
