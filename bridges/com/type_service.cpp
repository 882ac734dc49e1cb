// SPDX-License-Identifier: Apache-2.0
#include "bridges/com/type_service.h"

#include "bridges/com/foreign_object.h"
#include "bridges/com/options.h"
#include "bridges/com/our_object.h"
#include "bridges/com/system.h"
#include "bridges/com/type_library.h"
#include "bridges/com/values.h"

#include <core/context/arguments.h>
#include <core/runtime/module_contract.h>

namespace core::com {

class COMTypeService : public ICOMTypeService {
  public:
    using Interfaces = InterfaceList<ICOMTypeService>;
    using Service = ICOMTypeService;
    static constexpr GUID kClassId = "cf471229-e087-46ba-bb24-abca94593b38"_guid;

    Value create(wstring_view nameOrId) override { return create_foreign(nameOrId); }
    Value fromUnknown(void* unknown) override {
        require_system();
        return value_of_unknown(static_cast<::IUnknown*>(unknown));
    }
    void* toDispatch(const Value& value) override {
        require_system();
        bool nothing = false;
        if (auto foreign = foreign_object(value, nothing); foreign || nothing)
            return ComPtr<IDispatch>::query(foreign.get()).detach();
        if (value.kind() != ValueKind::object && value.kind() != ValueKind::type)
            parameter_type_mismatch(0);
        return dispatch_of(value).detach();
    }
    Value fromVariant(const void* variant) override {
        require_system();
        return from_variant(*static_cast<const VARIANT*>(variant));
    }
    void toVariant(const Value& value, void* variant, const ComOptions& options) override {
        require_system();
        VariantInit(static_cast<VARIANT*>(variant));
        to_variant(value, *static_cast<VARIANT*>(variant), options);
    }
    Value typeLibrary(const Value& fileOrObject) override { return type_library_value(fileOrObject); }
    void writeTypeLibrary(wstring_view file) override {
        require_system();
        write_type_library(wstring(file));
    }
    ComOptions& forArguments() noexcept override { return for_arguments; }
    ComOptions& forResults() noexcept override { return for_results; }
};

} // namespace core::com

CORE_MODULE("com", "1.0", core::com::COMTypeService)
