// SPDX-License-Identifier: Apache-2.0
// Events of ours heard by others, and events of others heard by our scripts.
#include "bridges/com/foreign_object.h"
#include "bridges/com/our_events.h"
#include "tests/bridges/com/by_hand.h"
#include "tests/bridges/com/com_fixture.h"

#include <core/collections/array.h>
#include <core/context/events/event.h>
#include <core/context/script_object.h>

#include <vector>

namespace core::com {
namespace {

constexpr ::GUID kLibraryId{0x6d2c81a4, 0x31b5, 0x4f0e, {0x92, 0x7a, 0x5c, 0x0e, 0xd1, 0x48, 0xb3, 0x01}};
constexpr ::GUID kOwnId{0x6d2c81a4, 0x31b5, 0x4f0e, {0x92, 0x7a, 0x5c, 0x0e, 0xd1, 0x48, 0xb3, 0x02}};
constexpr ::GUID kEventsId{0x6d2c81a4, 0x31b5, 0x4f0e, {0x92, 0x7a, 0x5c, 0x0e, 0xd1, 0x48, 0xb3, 0x03}};

/// An object of ours with an event.
class Meter : public ScriptObject<Meter> {
  public:
    static constexpr ClassNames names{u"TestComMeter", u"ТестСчетчик"};

    void add(const Numeric& amount) { changed.raise(amount); }
    static auto members() {
        return core::members(method(u"Add", u"Добавить", &Meter::add),
                             core::event(&Meter::changed, {u"Amount", u"Сумма"}));
    }

    Event<Numeric> changed{named<u"Changed", u"ПриИзменении">};
};

/// An object of others that raises an event, which its type library describes.
class Source final : public ByHand,
                     public ::IConnectionPointContainer,
                     public ::IConnectionPoint,
                     public IProvideClassInfo2 {
  public:
    Source() {
        const wstring file = temporary_file(u"core_event_source.tlb");
        ComPtr<ICreateTypeLib2> library;
        EXPECT_EQ(CreateTypeLib2(SYS_WIN64, to_com(file.c_str()), library.typed()), S_OK);
        wstring name = u"EventSource";
        library->SetName(to_com(name.data()));
        library->SetGuid(kLibraryId);
        const auto own = add(*library.get(), u"Own", kOwnId);
        const auto events = add(*library.get(), u"OwnEvents", kEventsId);
        ELEMDESC param{};
        param.tdesc.vt = VT_VARIANT;
        FUNCDESC changed{};
        changed.memid = kChanged;
        changed.funckind = FUNC_DISPATCH;
        changed.invkind = INVOKE_FUNC;
        changed.callconv = CC_STDCALL;
        changed.cParams = 1;
        changed.lprgelemdescParam = &param;
        changed.elemdescFunc.tdesc.vt = VT_VOID;
        EXPECT_EQ(events->AddFuncDesc(0, &changed), S_OK);
        wstring member = u"Changed";
        wstring amount = u"Amount";
        LPOLESTR units[] = {to_com(member.data()), to_com(amount.data())};
        EXPECT_EQ(events->SetFuncAndParamNames(0, units, 2), S_OK);
        EXPECT_EQ(own->LayOut(), S_OK);
        EXPECT_EQ(events->LayOut(), S_OK);
        type_ = ComPtr<ITypeInfo>::query(own.get());
    }
    void raise(LONG amount) {
        VARIANT value{};
        V_VT(&value) = VT_I4;
        V_I4(&value) = amount;
        DISPPARAMS given{&value, nullptr, 1, 0};
        if (listener_) {
            EXPECT_EQ(listener_->Invoke(kChanged, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &given,
                                        nullptr, nullptr, nullptr),
                      S_OK);
        }
    }
    [[nodiscard]] bool isHeard() const { return listener_.get() != nullptr; }
    [[nodiscard]] IDispatch* listener() const { return listener_.get(); }
    void forgetLibrary() { type_ = {}; }

    ::HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) noexcept override {
        if (iid == IID_IConnectionPointContainer)
            *out = static_cast<::IConnectionPointContainer*>(this);
        else if (iid == IID_IConnectionPoint)
            *out = static_cast<::IConnectionPoint*>(this);
        else if (iid == IID_IProvideClassInfo2)
            *out = static_cast<IProvideClassInfo2*>(this);
        else
            return ByHand::QueryInterface(iid, out);
        ByHand::AddRef();
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() noexcept override { return ByHand::AddRef(); }
    ULONG STDMETHODCALLTYPE Release() noexcept override { return ByHand::Release(); }
    ::HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo** out) noexcept override {
        *out = ComPtr<ITypeInfo>(type_).detach();
        return type_ ? S_OK : TYPE_E_CANTLOADLIBRARY;
    }
    ::HRESULT STDMETHODCALLTYPE EnumConnectionPoints(IEnumConnectionPoints**) noexcept override {
        return E_NOTIMPL;
    }
    ::HRESULT STDMETHODCALLTYPE FindConnectionPoint(REFIID id, ::IConnectionPoint** out) noexcept override {
        return id == kEventsId ? QueryInterface(IID_IConnectionPoint, reinterpret_cast<void**>(out))
                               : CONNECT_E_NOCONNECTION;
    }
    ::HRESULT STDMETHODCALLTYPE GetClassInfo(ITypeInfo**) noexcept override { return E_NOTIMPL; }
    ::HRESULT STDMETHODCALLTYPE GetGUID(DWORD, ::GUID* out) noexcept override {
        *out = kEventsId;
        return S_OK;
    }
    ::HRESULT STDMETHODCALLTYPE GetConnectionInterface(IID* out) noexcept override {
        *out = kEventsId;
        return S_OK;
    }
    ::HRESULT STDMETHODCALLTYPE GetConnectionPointContainer(::IConnectionPointContainer**) noexcept override {
        return E_NOTIMPL;
    }
    ::HRESULT STDMETHODCALLTYPE Advise(::IUnknown* sink, DWORD* cookie) noexcept override {
        *cookie = 1;
        return sink->QueryInterface(kEventsId, listener_.out());
    }
    ::HRESULT STDMETHODCALLTYPE Unadvise(DWORD) noexcept override {
        listener_ = {};
        return S_OK;
    }
    ::HRESULT STDMETHODCALLTYPE EnumConnections(IEnumConnections**) noexcept override { return E_NOTIMPL; }

  private:
    static ComPtr<ICreateTypeInfo> add(ICreateTypeLib2& library, wstring name, const ::GUID& id) {
        ComPtr<ICreateTypeInfo> type;
        EXPECT_EQ(library.CreateTypeInfo(to_com(name.data()), TKIND_DISPATCH, type.typed()), S_OK);
        type->SetGuid(id);
        ComPtr<ITypeLib> system;
        ComPtr<ITypeInfo> dispatch;
        HREFTYPE base = 0;
        EXPECT_EQ(LoadTypeLib(to_com(u"stdole2.tlb"), system.typed()), S_OK);
        EXPECT_EQ(system->GetTypeInfoOfGuid(IID_IDispatch, dispatch.typed()), S_OK);
        EXPECT_EQ(type->AddRefTypeInfo(dispatch.get(), &base), S_OK);
        EXPECT_EQ(type->AddImplType(0, base), S_OK);
        return type;
    }

    ComPtr<ITypeInfo> type_;
    ComPtr<IDispatch> listener_;
};

using ComEvents = ComTest;

TEST_F(ComEvents, OthersHearOurs) {
    const auto meter = make_object<Meter>();
    ByHand listener;
    {
        const auto held = dispatch_of(Value(meter));
        const auto points = ComPtr<::IConnectionPointContainer>::query(held.get());
        ASSERT_TRUE(points);
        ComPtr<::IConnectionPoint> point;
        ASSERT_EQ(points->FindConnectionPoint(events_id(Value(meter).type()), point.typed()), S_OK);
        DWORD first = 0;
        DWORD second = 0;
        ASSERT_EQ(point->Advise(&listener, &first), S_OK);
        ASSERT_EQ(point->Advise(&listener, &second), S_OK);
        meter->add(1);
        EXPECT_EQ(listener.heard, (std::vector<LONG>{1, 1}));
        EXPECT_EQ(point->Unadvise(first), S_OK);
        EXPECT_EQ(point->Unadvise(first), CONNECT_E_NOCONNECTION);
        meter->add(2);
        EXPECT_EQ(listener.heard, (std::vector<LONG>{1, 1, 2}));
    }
    meter->add(3); // nobody outside holds the object: the connection has ended
    EXPECT_EQ(listener.heard.size(), 3U);
    EXPECT_EQ(listener.count, 1U);
}

TEST_F(ComEvents, OursHearOthers) {
    Source source;
    {
        const Array log;
        script::Engine engine;
        engine.set("Source", service().fromUnknown(static_cast<IDispatch*>(&source)));
        engine.set("Log", log);
        engine.run("Procedure Heard(Amount) Log.Add(Amount); EndProcedure AddHandler Source.Changed, Heard;");
        EXPECT_TRUE(source.isHeard());
        source.raise(5);
        source.raise(-1);
        EXPECT_EQ(to_utf8(engine.run("Return StrConcat(Log, \";\");").presentation()), "5;-1");
        engine.run("RemoveHandler Source.Changed, Heard;");
        source.raise(6);
        EXPECT_EQ(log.size(), 2U);
    }
    EXPECT_FALSE(source.isHeard()); // with the last reference of ours
    EXPECT_EQ(source.ByHand::count, 1U);
}

/// What a script fails with, and what is behind it: message ids and texts.
std::string failures_of(script::Engine& engine, std::string_view script) {
    std::string all;
    try {
        engine.run(script);
    } catch (const Exception& e) {
        for (const Exception* one = &e; one != nullptr;
             one = one->cause() != nullptr ? &one->cause()->exception() : nullptr)
            all.append(one->messageId()).append(" ").append(to_utf8(one->description())).append("\n");
    }
    return all;
}

TEST_F(ComEvents, ALibraryThatCannotBeReadIsNoSilence) {
    Source source;
    source.forgetLibrary();
    {
        script::Engine engine;
        engine.set("Source", service().fromUnknown(static_cast<IDispatch*>(&source)));
        engine.run("Procedure Heard(Amount) EndProcedure");
        const std::string text = failures_of(engine, "AddHandler Source.Changed, Heard;");
        EXPECT_NE(text.find("COM_NO_EVENTS"), std::string::npos) << text;
        EXPECT_NE(text.find("6d2c81a4-31b5-4f0e-927a-5c0ed148b303"), std::string::npos) << text;
        EXPECT_NE(text.find("0x80029C4A"), std::string::npos) << text; // what the object answered
    }
    EXPECT_EQ(source.ByHand::count, 1U);

    ByHand without; // without connection points there are no events, as with every other object
    script::Engine engine;
    engine.set("Source", service().fromUnknown(&without));
    const std::string text =
        failures_of(engine, "Procedure Heard(Amount) EndProcedure AddHandler Source.Changed, Heard;");
    EXPECT_NE(text.find("IDS_EVENT_NO_EVENTS"), std::string::npos) << text;
}

TEST_F(ComEvents, SourcesThatLieAboutTheirEventsHearIt) {
    Source source;
    const Array log;
    {
        script::Engine engine;
        engine.set("Source", service().fromUnknown(static_cast<IDispatch*>(&source)));
        engine.set("Log", log);
        engine.run("Procedure Heard(Amount) Log.Add(Amount); EndProcedure AddHandler Source.Changed, Heard;");
        const auto raise = [&](DISPPARAMS given) {
            return source.listener()->Invoke(kChanged, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &given,
                                             nullptr, nullptr, nullptr);
        };
        VARIANT values[2]{};
        DISPID name = 0;
        EXPECT_EQ(raise({nullptr, nullptr, 1, 0}), E_INVALIDARG);
        EXPECT_EQ(raise({values, nullptr, 2, 0}), DISP_E_BADPARAMCOUNT);
        EXPECT_EQ(raise({values, &name, 1, 1}), DISP_E_NONAMEDARGS);
        V_VT(&values[0]) = VT_CLSID;
        EXPECT_LT(raise({values, nullptr, 1, 0}), 0);
        EXPECT_EQ(log.size(), 0U);
    }
    EXPECT_EQ(source.ByHand::count, 1U);
}

} // namespace
} // namespace core::com
