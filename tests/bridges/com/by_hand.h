// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bridges/com/ole.h"

#include <vector>

namespace core::com {

/// The number of the one member of a ByHand object.
inline constexpr DISPID kChanged = 7;

/// A dispatch interface that others write by hand, with one member, `Changed`; it lives on the stack and
/// counts who holds it.
class ByHand : public IDispatch {
  public:
    ::HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) noexcept override {
        const bool known = iid == IID_IUnknown || iid == IID_IDispatch;
        *out = known ? this : nullptr;
        if (known)
            AddRef();
        return known ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() noexcept override { return ++count; }
    ULONG STDMETHODCALLTYPE Release() noexcept override { return --count; }
    ::HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* types) noexcept override {
        *types = 0;
        return S_OK;
    }
    ::HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo** out) noexcept override {
        *out = nullptr;
        return DISP_E_BADINDEX;
    }
    ::HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* name, UINT, LCID,
                                              DISPID* id) noexcept override {
        const bool known = wstring_view(from_com(*name)) == u"Changed";
        *id = known ? kChanged : DISPID_UNKNOWN;
        return known ? S_OK : DISP_E_UNKNOWNNAME;
    }
    ::HRESULT STDMETHODCALLTYPE Invoke(DISPID member, REFIID, LCID, WORD, DISPPARAMS* given, VARIANT*,
                                       EXCEPINFO*, UINT*) noexcept override {
        if (member != kChanged || given->cArgs != 1 || V_VT(&given->rgvarg[0]) != VT_I4)
            return DISP_E_MEMBERNOTFOUND;
        heard.push_back(V_I4(&given->rgvarg[0]));
        return S_OK;
    }

    std::vector<LONG> heard; ///< what the calls of Changed said
    ULONG count = 1;         ///< who holds the object, the test among them
};

} // namespace core::com
