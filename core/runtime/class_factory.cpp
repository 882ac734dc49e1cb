// SPDX-License-Identifier: Apache-2.0
#include <core/runtime/class_entry.h>
#include <core/runtime/process.h>

namespace core {
namespace {

class ClassFactory : public IClassFactory {
  public:
    using Interfaces = InterfaceList<IClassFactory>;

    explicit ClassFactory(const ClassRecord& record) : create_(record.createInstance) {}

    HRESULT CreateInstance(IUnknown* outer, const GUID& iid, void** out) override {
        return create_(outer, iid, out);
    }
    HRESULT LockServer(bool) noexcept override { return kOk; }

  private:
    HRESULT (*create_)(IUnknown*, const GUID&, void**); // the module's code stays; its table may not
};

} // namespace

HRESULT create_class_factory(const ClassRecord& record, const GUID& iid, void** out) noexcept {
    if (out == nullptr)
        return kNoInterface;
    *out = nullptr;
    const auto factory = SCOM_InternalClass<ClassFactory>::create(record);
    return factory ? factory->QueryInterface(iid, out) : kNoInterface;
}

} // namespace core
