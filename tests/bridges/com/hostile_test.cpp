// SPDX-License-Identifier: Apache-2.0
// Arrays and objects of others that are not what they say.
#include "tests/bridges/com/by_hand.h"
#include "tests/bridges/com/com_fixture.h"

#include <core/collections/array.h>
#include <core/strings/integer_text.h>

#include <vector>

namespace core::com {
namespace {

class ComHostile : public ComTest {
  protected:
    /// The message id of reading an array that a VARIANT says to be of a type.
    static std::string reading(SAFEARRAY* array, VARTYPE type) {
        VARIANT held;
        V_VT(&held) = static_cast<VARTYPE>(VT_ARRAY | type);
        V_ARRAY(&held) = array;
        const std::string id = failure([&] { static_cast<void>(from_variant(held)); });
        SafeArrayDestroy(array);
        return id;
    }
    static SAFEARRAY* array(VARTYPE type, std::vector<SAFEARRAYBOUND> bounds) {
        SAFEARRAY* const made = SafeArrayCreate(type, static_cast<UINT>(bounds.size()), bounds.data());
        EXPECT_NE(made, nullptr);
        return made;
    }
};

TEST_F(ComHostile, ArraysThatPromiseMoreThanTheyHold) {
    EXPECT_EQ(reading(array(VT_I4, std::vector<SAFEARRAYBOUND>(64, {1, 0})), VT_I4), "");
    EXPECT_EQ(reading(array(VT_I4, std::vector<SAFEARRAYBOUND>(65, {1, 0})), VT_I4), "COM_BAD_ARRAY");
    EXPECT_EQ(reading(array(VT_I4, std::vector<SAFEARRAYBOUND>(20'000, {1, 0})), VT_I4), "COM_BAD_ARRAY");
    // nothing in it, and still thousands of millions of arrays
    EXPECT_EQ(reading(array(VT_I4, {{0, 0}, {0x7FFF'FFFF, 0}}), VT_I4), "COM_BAD_ARRAY");
    EXPECT_EQ(reading(array(VT_I4, {{0x7FFF'FFFF, 0}, {0, 0}}), VT_I4), "COM_BAD_ARRAY");
    EXPECT_EQ(reading(array(VT_I4, {{0, 0}, {3, 0}}), VT_I4), "");
    // a type of its own
    EXPECT_EQ(reading(array(VT_I4, {{2, 0}}), VT_I4), "");
    EXPECT_EQ(reading(array(VT_I8, {{2, 0}}), VT_BSTR), "COM_BAD_ARRAY");
    EXPECT_EQ(reading(array(VT_BSTR, {{2, 0}}), VT_I8), "COM_BAD_ARRAY");
    EXPECT_EQ(reading(array(VT_DISPATCH, {{2, 0}}), VT_UNKNOWN), "");
    // types that no variable has
    long long number = 0;
    for (const VARTYPE type : {VT_EMPTY, VT_NULL, VT_CLSID}) {
        VARIANT held;
        V_VT(&held) = static_cast<VARTYPE>(type | VT_BYREF);
        V_BYREF(&held) = &number;
        EXPECT_EQ(failure([&] { static_cast<void>(from_variant(held)); }), "COM_BAD_TYPE") << type;
    }
}

/// What an object of others lies about.
enum class Lie {
    noType,
    noAttributes,
    noFunction,
    noParameters,
    noVariable,
    noLibrary,
    walkCount,
    walkFails
};

/// A description of a type that keeps back what it says to give.
class LyingType final : public ITypeInfo {
  public:
    explicit LyingType(Lie lie) noexcept : lie_(lie) {
        attributes_.cFuncs = 1;
        attributes_.cVars = 1;
        attributes_.typekind = TKIND_DISPATCH;
        function_.cParams = 3; // of which there are none
        function_.invkind = INVOKE_FUNC;
    }
    ::HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) noexcept override {
        const bool known = iid == IID_IUnknown || iid == IID_ITypeInfo;
        *out = known ? this : nullptr;
        return known ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() noexcept override { return 2; }
    ULONG STDMETHODCALLTYPE Release() noexcept override { return 1; }
    ::HRESULT STDMETHODCALLTYPE GetTypeAttr(TYPEATTR** out) noexcept override {
        *out = lie_ == Lie::noAttributes ? nullptr : &attributes_;
        return S_OK;
    }
    ::HRESULT STDMETHODCALLTYPE GetTypeComp(ITypeComp**) noexcept override { return E_NOTIMPL; }
    ::HRESULT STDMETHODCALLTYPE GetFuncDesc(UINT, FUNCDESC** out) noexcept override {
        function_.cParams = lie_ == Lie::noVariable ? 0 : 3;
        *out = lie_ == Lie::noFunction ? nullptr : &function_;
        return S_OK;
    }
    ::HRESULT STDMETHODCALLTYPE GetVarDesc(UINT, VARDESC** out) noexcept override {
        *out = nullptr;
        return S_OK;
    }
    ::HRESULT STDMETHODCALLTYPE GetNames(MEMBERID, BSTR*, UINT, UINT*) noexcept override { return E_NOTIMPL; }
    ::HRESULT STDMETHODCALLTYPE GetRefTypeOfImplType(UINT, HREFTYPE*) noexcept override { return E_NOTIMPL; }
    ::HRESULT STDMETHODCALLTYPE GetImplTypeFlags(UINT, INT*) noexcept override { return E_NOTIMPL; }
    ::HRESULT STDMETHODCALLTYPE GetIDsOfNames(LPOLESTR*, UINT, MEMBERID*) noexcept override {
        return E_NOTIMPL;
    }
    ::HRESULT STDMETHODCALLTYPE Invoke(void*, MEMBERID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*,
                                       UINT*) noexcept override {
        return E_NOTIMPL;
    }
    ::HRESULT STDMETHODCALLTYPE GetDocumentation(MEMBERID, BSTR*, BSTR*, DWORD*, BSTR*) noexcept override {
        return E_NOTIMPL;
    }
    ::HRESULT STDMETHODCALLTYPE GetDllEntry(MEMBERID, INVOKEKIND, BSTR*, BSTR*, WORD*) noexcept override {
        return E_NOTIMPL;
    }
    ::HRESULT STDMETHODCALLTYPE GetRefTypeInfo(HREFTYPE, ITypeInfo**) noexcept override { return E_NOTIMPL; }
    ::HRESULT STDMETHODCALLTYPE AddressOfMember(MEMBERID, INVOKEKIND, void**) noexcept override {
        return E_NOTIMPL;
    }
    ::HRESULT STDMETHODCALLTYPE CreateInstance(::IUnknown*, REFIID, void**) noexcept override {
        return E_NOTIMPL;
    }
    ::HRESULT STDMETHODCALLTYPE GetMops(MEMBERID, BSTR*) noexcept override { return E_NOTIMPL; }
    ::HRESULT STDMETHODCALLTYPE GetContainingTypeLib(ITypeLib** out, UINT*) noexcept override {
        *out = nullptr;
        return S_OK;
    }
    void STDMETHODCALLTYPE ReleaseTypeAttr(TYPEATTR*) noexcept override {}
    void STDMETHODCALLTYPE ReleaseFuncDesc(FUNCDESC*) noexcept override {}
    void STDMETHODCALLTYPE ReleaseVarDesc(VARDESC*) noexcept override {}

  private:
    Lie lie_;
    TYPEATTR attributes_{};
    FUNCDESC function_{};
};

/// A walk that says to have stored more than was asked for.
class LyingWalk final : public IEnumVARIANT {
  public:
    ::HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void** out) noexcept override {
        *out = this;
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() noexcept override { return 2; }
    ULONG STDMETHODCALLTYPE Release() noexcept override { return 1; }
    ::HRESULT STDMETHODCALLTYPE Next(ULONG, VARIANT*, ULONG* count) noexcept override {
        *count = 5;
        return S_OK;
    }
    ::HRESULT STDMETHODCALLTYPE Skip(ULONG) noexcept override { return S_OK; }
    ::HRESULT STDMETHODCALLTYPE Reset() noexcept override { return S_OK; }
    ::HRESULT STDMETHODCALLTYPE Clone(IEnumVARIANT**) noexcept override { return E_NOTIMPL; }
};

class Liar final : public ByHand {
  public:
    explicit Liar(Lie lie) noexcept : lie_(lie), type_(lie) {}
    ::HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* types) noexcept override {
        *types = 1;
        return S_OK;
    }
    ::HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo** out) noexcept override {
        *out = lie_ == Lie::noType ? nullptr : &type_;
        return S_OK;
    }
    ::HRESULT STDMETHODCALLTYPE Invoke(DISPID member, REFIID, LCID, WORD, DISPPARAMS*, VARIANT* result,
                                       EXCEPINFO* info, UINT*) noexcept override {
        if (member != DISPID_NEWENUM)
            return DISP_E_MEMBERNOTFOUND;
        if (lie_ == Lie::walkFails) {
            if (info != nullptr)
                info->bstrDescription = SysAllocString(to_com(u"out of order"));
            return DISP_E_EXCEPTION;
        }
        if (lie_ != Lie::walkCount)
            return DISP_E_MEMBERNOTFOUND;
        V_VT(result) = VT_UNKNOWN;
        V_UNKNOWN(result) = &walk_;
        return S_OK;
    }

  private:
    Lie lie_;
    LyingType type_;
    LyingWalk walk_;
};

/// The failures of a script that uses a liar, the first one last.
std::string failures(Lie lie, std::string_view script) {
    Liar liar(lie);
    std::string all;
    {
        script::Engine engine;
        engine.set("Liar", require_service<ICOMTypeService>().fromUnknown(&liar));
        try {
            engine.run(script);
        } catch (const Exception& e) {
            for (const Exception* one = &e; one != nullptr;
                 one = one->cause() != nullptr ? &one->cause()->exception() : nullptr)
                all.append(one->messageId()).append(" ").append(to_utf8(one->description())).append("\n");
        }
    }
    EXPECT_EQ(liar.count, 1U);
    return all;
}

TEST_F(ComHostile, ObjectsThatKeepBackWhatTheySayToGive) {
    for (const Lie lie : {Lie::noAttributes, Lie::noFunction, Lie::noParameters, Lie::noVariable})
        EXPECT_NE(failures(lie, "Liar.Changed(1);").find("COM_TYPE_LIBRARY"), std::string::npos) << int(lie);
    EXPECT_NE(failures(Lie::noType, "Liar.Changed(1);").find("COM_CALL_FAILED"), std::string::npos);
    for (const Lie lie : {Lie::noType, Lie::noLibrary})
        EXPECT_NE(failures(lie, "L = New COMTypeLibrary(Liar);").find("COM_TYPE_LIBRARY"), std::string::npos)
            << int(lie);
}

TEST_F(ComHostile, WalksThatFailSayWhy) {
    EXPECT_NE(failures(Lie::walkCount, "For Each X In Liar Do EndDo;").find("COM_CALL_FAILED"),
              std::string::npos);
    EXPECT_NE(failures(Lie::walkFails, "For Each X In Liar Do EndDo;").find("out of order"),
              std::string::npos);
    const std::string none = failures(Lie::noType, "For Each X In Liar Do EndDo;"); // honestly
    EXPECT_EQ(none.find("COM_"), std::string::npos) << none;
}

/// What a thread does with an object of others that does not belong to it.
struct Stranger {
    IValue* object;
    std::string walk, member, events;
};

DWORD WINAPI use_from_thread(void* given) {
    auto& stranger = *static_cast<Stranger*>(given);
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    {
        const host::HostProcess process;
        const auto said = [](auto action) -> std::string {
            try {
                action();
            } catch (const Exception& e) {
                return e.messageId();
            }
            return {};
        };
        const GenericValue value{Value(InterfacePtr<IValue>(stranger.object))};
        stranger.walk = said([&] { static_cast<void>(value.query<IValueCollection>()->enumerate()); });
        stranger.member = said([&] { static_cast<void>(value.query<IContext_>()->findMethod(u"Changed")); });
        stranger.events =
            said([&] { static_cast<void>(value.query<IEventSource>()->findEvent(u"Changed")); });
    }
    CoUninitialize();
    return 0;
}

TEST_F(ComHostile, AThreadThatObjectsDoNotBelongToIsTold) {
    Liar other(Lie::noType);
    {
        const Value value = service().fromUnknown(&other);
        Stranger stranger{value.object(), {}, {}, {}};
        const HANDLE thread = CreateThread(nullptr, 0, use_from_thread, &stranger, 0, nullptr);
        WaitForSingleObject(thread, INFINITE);
        CloseHandle(thread);
        EXPECT_EQ(stranger.walk, "COM_WRONG_THREAD");
        EXPECT_EQ(stranger.member, "COM_WRONG_THREAD");
        EXPECT_EQ(stranger.events, "COM_WRONG_THREAD");
    }
    EXPECT_EQ(other.count, 1U);
}

} // namespace
} // namespace core::com
