// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tests/bridges/com/com_fixture.h"

#include <core/context/script_object.h>

#include <activscp.h>

#include <functional>
#include <vector>

namespace core::com {

/// What a script of others begins with: it makes objects of ours, and says what it was given.
class Maker : public ScriptObject<Maker> {
  public:
    static constexpr ClassNames names{u"TestMaker", u"ТестСоздатель"};

    GenericValue make(const wstring& type) {
        made = making(type);
        return made;
    }
    GenericValue argument(std::int32_t index) { return arguments.at(static_cast<std::size_t>(index)); }
    void take(const Value& value) { taken = value; }
    void clear() {
        made = taken = {};
        arguments.clear();
    }

    /// Makes what a script asks for; New without arguments, as long as nobody says otherwise.
    std::function<GenericValue(const wstring&)> making = [](const wstring& type) {
        return Type(wstring_view(type)).get()->construct({});
    };
    std::vector<GenericValue> arguments; ///< what the script passes on
    GenericValue made;                   ///< the last object that was made
    GenericValue taken;                  ///< the last value that was given

    static auto members() {
        return core::members(method(u"Make", u"Создать", &Maker::make),
                             method(u"Argument", u"Аргумент", &Maker::argument),
                             method(u"Take", u"Взять", &Maker::take));
    }
};

/// An engine of others with one name of ours in it.
class Site final : public IActiveScriptSite {
  public:
    Site(const wchar* engine, IDispatch* maker) : maker_(maker) {
        CLSID id;
        EXPECT_EQ(CLSIDFromProgID(to_com(engine), &id), S_OK);
        EXPECT_EQ(CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER, IID_IActiveScript, script_.out()),
                  S_OK);
        script_->QueryInterface(__uuidof(IActiveScriptParse), parse_.out());
        parse_->InitNew();
        script_->SetScriptSite(this);
        script_->AddNamedItem(to_com(u"Maker"), SCRIPTITEM_ISVISIBLE);
        script_->SetScriptState(SCRIPTSTATE_STARTED);
    }
    ~Site() { script_->Close(); }

    /// Runs a script; returns the description of its failure with the source in brackets, empty without one.
    std::string run(const std::string& code) {
        error_.clear();
        const ::HRESULT result =
            parse_->ParseScriptText(to_com(from_utf8(code).c_str()), nullptr, nullptr, nullptr, 0, 0,
                                    SCRIPTTEXT_ISVISIBLE, nullptr, nullptr);
        return FAILED(result) && error_.empty() ? "failed" : error_;
    }

    ::HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) noexcept override {
        const bool known = iid == IID_IUnknown || iid == IID_IActiveScriptSite;
        *out = known ? this : nullptr;
        return known ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() noexcept override { return 2; }
    ULONG STDMETHODCALLTYPE Release() noexcept override { return 1; }
    ::HRESULT STDMETHODCALLTYPE GetLCID(LCID*) noexcept override { return E_NOTIMPL; }
    ::HRESULT STDMETHODCALLTYPE GetItemInfo(LPCOLESTR, DWORD mask, ::IUnknown** item,
                                            ITypeInfo** type) noexcept override {
        if (type != nullptr)
            *type = nullptr;
        if ((mask & SCRIPTINFO_IUNKNOWN) != 0 && item != nullptr) {
            maker_->AddRef();
            *item = maker_;
        }
        return S_OK;
    }
    ::HRESULT STDMETHODCALLTYPE GetDocVersionString(BSTR*) noexcept override { return E_NOTIMPL; }
    ::HRESULT STDMETHODCALLTYPE OnScriptTerminate(const VARIANT*, const EXCEPINFO*) noexcept override {
        return S_OK;
    }
    ::HRESULT STDMETHODCALLTYPE OnStateChange(SCRIPTSTATE) noexcept override { return S_OK; }
    ::HRESULT STDMETHODCALLTYPE OnScriptError(IActiveScriptError* error) noexcept override {
        EXCEPINFO info{};
        error->GetExceptionInfo(&info);
        error_ =
            to_utf8(Bstr::view(info.bstrDescription)) + " [" + to_utf8(Bstr::view(info.bstrSource)) + "]";
        SysFreeString(info.bstrDescription);
        SysFreeString(info.bstrSource);
        SysFreeString(info.bstrHelpFile);
        return S_OK;
    }
    ::HRESULT STDMETHODCALLTYPE OnEnterScript() noexcept override { return S_OK; }
    ::HRESULT STDMETHODCALLTYPE OnLeaveScript() noexcept override { return S_OK; }

  private:
    IDispatch* maker_;
    ComPtr<IActiveScript> script_;
    ComPtr<IActiveScriptParse> parse_;
    std::string error_;
};

/// A test whose scripts are those of others.
class ComEngineTest : public ComTest {
  protected:
    ComEngineTest() { service().forResults().numbers = ComNumbers::doubles; } // engines know no VT_DECIMAL
    ~ComEngineTest() override {
        maker_->clear();
        service().forResults() = {};
    }

    const ObjectPtr<Maker> maker_ = make_object<Maker>();
};

} // namespace core::com
