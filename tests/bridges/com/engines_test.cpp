// SPDX-License-Identifier: Apache-2.0
// Our objects in scripts that other engines run, in one process with the bridge.
#include "tests/bridges/com/com_fixture.h"

#include <core/context/script_object.h>
#include <core/strings/term.h>
#include <core/values/type_service.h>

#include <activscp.h>

#include <atomic>

namespace core::com {
namespace {

/// What a script of others begins with: it makes objects of ours, and says what it was given.
class Maker : public ScriptObject<Maker> {
  public:
    static constexpr ClassNames names{u"TestMaker", u"ТестСоздатель"};

    GenericValue make(const wstring& type) { return Type(wstring_view(type)).get()->construct({}); }
    wstring kind(const Value& value) { return value.type().name(kEnglish); }
    void take(const Value& value) { taken = value; }

    Value taken;

    static auto members() {
        return core::members(method(u"Make", u"Создать", &Maker::make), method(u"Kind", u"Вид", &Maker::kind),
                             method(u"Take", u"Взять", &Maker::take));
    }
};

/// An engine of others with one name of ours in it.
class Site final : public IActiveScriptSite {
  public:
    Site(const wchar* engine, IDispatch* maker) : maker_(maker) {
        CLSID id;
        EXPECT_EQ(CLSIDFromProgID(engine, &id), S_OK);
        EXPECT_EQ(CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER, IID_IActiveScript, script_.out()),
                  S_OK);
        script_->QueryInterface(IID_IActiveScriptParse, parse_.out());
        parse_->InitNew();
        script_->SetScriptSite(this);
        script_->AddNamedItem(u"Maker", SCRIPTITEM_ISVISIBLE);
        script_->SetScriptState(SCRIPTSTATE_STARTED);
    }
    ~Site() { script_->Close(); }

    /// Runs a script; returns the description of its failure, empty without one.
    std::string run(const std::string& code) {
        error_.clear();
        const ::HRESULT result = parse_->ParseScriptText(from_utf8(code).c_str(), nullptr, nullptr, nullptr,
                                                         0, 0, SCRIPTTEXT_ISVISIBLE, nullptr, nullptr);
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

class ComEngines : public ComTest {
  protected:
    ComEngines() { service().forResults().numbers = ComNumbers::doubles; } // these engines know no VT_DECIMAL
    ~ComEngines() override { service().forResults() = {}; }

    const ObjectPtr<Maker> maker_ = make_object<Maker>();
};

TEST_F(ComEngines, VBScriptMakesReadsChangesAndCalls) {
    const auto held = dispatch_of(Value(maker_));
    Site site(u"VBScript", held.get());
    EXPECT_EQ(site.run("Set A = Maker.Make(\"Array\")\n"
                       "A.Add 1\nA.Добавить \"two\"\nA.Add 2.5\n"
                       "Set S = Maker.Make(\"Structure\")\n"
                       "S.Insert \"Price\", 10\nS.Price = S.Price + A(0)\n"
                       "Text = \"\"\nFor Each X In A\nText = Text & X & \";\"\nNext\n"
                       "Maker.Take Text & S.Price & A.Count\n"),
              "");
    EXPECT_EQ(to_utf8(maker_->taken.presentation()), "1;two;2.5;113");
    const std::string failure = site.run("Set A = Maker.Make(\"Array\")\nA.Get 7\n");
    EXPECT_NE(failure.find("IDS_INDEX_OFFBOUND"), std::string::npos) << failure;
    maker_->taken = {};
}

TEST_F(ComEngines, JScriptMakesReadsChangesAndCalls) {
    const auto held = dispatch_of(Value(maker_));
    Site site(u"JScript", held.get());
    EXPECT_EQ(
        site.run(
            "var A = Maker.Make('Array'); A.Add(1); A['Добавить']('two'); A.add(2.5);"
            "var S = Maker['Создать']('Structure'); S.Insert('Price', 10); S.Price = S.Price + A.Get(0);"
            "var text = ''; for (var e = new Enumerator(A); !e.atEnd(); e.moveNext()) text += e.item() + ';';"
            "Maker.Take(text + S.Price + A.Count());"),
        "");
    EXPECT_EQ(to_utf8(maker_->taken.presentation()), "1;two;2.5;113");
    EXPECT_EQ(site.run("var caught = ''; try { Maker.Make('Array').Get(7); } catch (e) { caught = 'yes'; }"
                       "Maker.Take(caught);"),
              "");
    EXPECT_EQ(to_utf8(maker_->taken.presentation()), "yes");
    maker_->taken = {};
}

TEST_F(ComEngines, EveryTypeIsReachedByBothNames) {
    const auto held = dispatch_of(Value(maker_));
    Site site(u"JScript", held.get());
    int types = 0;
    int members = 0;
    for (IType* const type : require_service<ITypeValueService>().types()) {
        GenericValue object;
        try {
            if (type->arguments().least != 0)
                continue;
            object = type->construct({});
        } catch (const Exception&) {
            continue; // New needs something else
        }
        const auto context = object.query<IContext_>();
        if (!context || wstring_view(type->name(kEnglish)) == u"COMError") // crosses as a VT_ERROR
            continue;
        ++types;
        for (int prop = 0; prop < context->getNProps(); ++prop) {
            for (const int alias : {kEnglish, kRussian}) {
                GenericValue value;
                try {
                    context->getPropVal(prop, value);
                } catch (const Exception&) {
                    continue; // it says no to everybody
                }
                const std::string name = to_utf8(context->getPropName(prop, alias));
                const std::string kind = to_utf8(value.type().name(kEnglish));
                const std::string failure =
                    site.run("var X = Maker.Make('" + to_utf8(type->name(alias)) +
                             "'); var K = Maker.Kind(X['" + name + "']); Maker.Take(K);");
                ++members;
                if (value == Value(Date())) {
                    EXPECT_NE(failure.find("COM_NOT_EXACT"), std::string::npos) << failure;
                    continue;
                }
                EXPECT_EQ(failure, "") << to_utf8(type->name(kEnglish)) << "." << name;
                if (kind != "Date") { // JScript hands dates over as objects of its own
                    EXPECT_EQ(to_utf8(maker_->taken.presentation()), kind) << name;
                }
            }
        }
        const auto own = dispatch_of(object);
        for (int method = 0; method < context->getNMethods(); ++method) {
            for (const int alias : {kEnglish, kRussian}) {
                wstring name = context->getMethodName(method, alias);
                LPOLESTR units = name.data();
                DISPID id = DISPID_UNKNOWN;
                EXPECT_EQ(own->GetIDsOfNames(IID_NULL, &units, 1, LOCALE_USER_DEFAULT, &id), S_OK);
                ++members;
            }
        }
    }
    EXPECT_GT(types, 10);
    EXPECT_GT(members, 200);
    maker_->taken = {};
}

} // namespace
} // namespace core::com
