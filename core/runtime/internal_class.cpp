// SPDX-License-Identifier: Apache-2.0
#include <core/runtime/internal_class.h>

namespace core {

HRESULT query_interface_map(void* object, const InterfaceMapEntry* map, const GUID& iid,
                            void** out) noexcept {
    if (out == nullptr)
        return kNoInterface;
    *out = nullptr;
    if (object == nullptr || map == nullptr)
        return kNoInterface;
    const InterfaceMapEntry* row = map;
    if (!(iid == IUnknown::IID)) {
        while (row->iid != nullptr && !(*row->iid == iid))
            ++row;
    }
    if (row->iid == nullptr)
        return kNoInterface;
    auto* const answer = reinterpret_cast<IUnknown*>(static_cast<std::byte*>(object) + row->offset);
    answer->AddRef();
    *out = answer;
    return kOk;
}

} // namespace core
