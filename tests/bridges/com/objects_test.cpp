// SPDX-License-Identifier: Apache-2.0
// Objects of ours for others, and objects of others for ours.
#include "bridges/com/names.h"
#include "tests/bridges/com/com_fixture.h"

#include <core/collections/array.h>
#include <core/collections/pairs.h>
#include <core/runtime/threads/thread.h>
#include <core/strings/integer_text.h>
#include <core/strings/term.h>

namespace core::com {
namespace {

class ComObjects : public ComTest {
  protected:
    static Value called(IDispatch& object, const wchar* name, WORD how,
                        std::initializer_list<Value> arguments) {
        std::vector<Variant> held(arguments.size());
        std::size_t place = arguments.size();
        for (const Value& argument : arguments)
            to_variant(argument, held[--place], {});
        std::vector<VARIANT> given(held.begin(), held.end());
        Variant result;
        EXCEPINFO info{};
        const ::HRESULT answer = call(object, name, how, given, &result, &info);
        if (answer == DISP_E_EXCEPTION) {
            const Bstr source;
            wstring text(Bstr::view(info.bstrDescription));
            SysFreeString(info.bstrDescription);
            SysFreeString(info.bstrSource);
            throw COMException(text);
        }
        EXPECT_EQ(answer, S_OK) << to_utf8(name);
        return from_variant(result);
    }
};

TEST_F(ComObjects, MembersAreCalledByBothNamesInAnyCase) {
    const Array array{1, 2};
    const auto object = dispatch_of(array);
    called(*object.get(), u"Add", DISPATCH_METHOD, {Value(3)});
    called(*object.get(), u"ДОБАВИТЬ", DISPATCH_METHOD, {Value(u"four")});
    EXPECT_EQ(array.size(), 4U);
    EXPECT_EQ(called(*object.get(), u"count", DISPATCH_METHOD | DISPATCH_PROPERTYGET, {}), Value(4));
    EXPECT_EQ(called(*object.get(), u"Получить", DISPATCH_METHOD, {Value(3)}), Value(u"four"));

    const Structure structure;
    structure.insert(u"Price", 1);
    const auto named = dispatch_of(structure);
    called(*named.get(), u"PRICE", DISPATCH_PROPERTYPUT, {Value(2)});
    EXPECT_EQ(called(*named.get(), u"price", DISPATCH_PROPERTYGET, {}), Value(2));
    structure.remove(u"Price");
    structure.insert(u"Cost", 5);
    structure.insert(u"Price", 7); // has another number on our side, and the same one outside
    EXPECT_EQ(called(*named.get(), u"Price", DISPATCH_PROPERTYGET, {}), Value(7));
}

TEST_F(ComObjects, OneObjectHasOneIdentityAndComesBackAsItself) {
    const Value array = Array{1};
    const auto first = dispatch_of(array);
    const auto second = dispatch_of(array);
    EXPECT_EQ(first.get(), second.get());
    EXPECT_EQ(ComPtr<::IUnknown>::query(first.get()).get(), ComPtr<::IUnknown>::query(second.get()).get());
    EXPECT_EQ(value_of_unknown(first.get()).object(), array.object());
    EXPECT_EQ(held_objects(), 1U);
}

TEST_F(ComObjects, ElementsAndWalks) {
    const auto array = dispatch_of(Array{10, 20, 30});
    Variant result;
    VARIANT index;
    V_VT(&index) = VT_I4;
    V_I4(&index) = 1;
    DISPPARAMS given{&index, nullptr, 1, 0};
    ASSERT_EQ(
        array->Invoke(DISPID_VALUE, IID_NULL, 0, DISPATCH_PROPERTYGET, &given, &result, nullptr, nullptr),
        S_OK);
    EXPECT_EQ(from_variant(result), Value(20));

    Variant walk;
    DISPPARAMS none{};
    ASSERT_EQ(
        array->Invoke(DISPID_NEWENUM, IID_NULL, 0, DISPATCH_PROPERTYGET, &none, &walk, nullptr, nullptr),
        S_OK);
    const auto all = ComPtr<IEnumVARIANT>::query(V_UNKNOWN(&walk));
    ASSERT_TRUE(all);
    VARIANT elements[4];
    ULONG count = 0;
    EXPECT_EQ(all->Next(4, elements, &count), S_FALSE);
    ASSERT_EQ(count, 3U);
    EXPECT_EQ(from_variant(elements[2]), Value(30));
    EXPECT_EQ(all->Reset(), S_OK);
    EXPECT_EQ(all->Skip(3), S_OK);
    EXPECT_EQ(all->Next(1, elements, nullptr), S_FALSE);
}

TEST_F(ComObjects, FailuresSpeakTheLanguageOfTheUser) {
    const auto array = dispatch_of(Array{1});
    const Locale before = Thread::getResourceLocale();
    VARIANT index;
    V_VT(&index) = VT_I4;
    V_I4(&index) = 5;
    std::string texts[2];
    std::string sources[2];
    for (const int alias : {kEnglish, kRussian}) {
        Thread::setResourceLocale(Locale(alias == kEnglish ? "en" : "ru"));
        EXCEPINFO info{};
        EXPECT_EQ(call(*array.get(), u"Get", DISPATCH_METHOD, {&index, 1}, nullptr, &info), DISP_E_EXCEPTION);
        texts[alias] = to_utf8(Bstr::view(info.bstrDescription));
        sources[alias] = to_utf8(Bstr::view(info.bstrSource));
        SysFreeString(info.bstrSource);
        SysFreeString(info.bstrDescription);
    }
    Thread::setResourceLocale(before);
    EXPECT_NE(texts[kEnglish], texts[kRussian]);
    EXPECT_GT(static_cast<unsigned char>(texts[kRussian][0]), 0x7F) << texts[kRussian];
    EXPECT_EQ(sources[kEnglish], sources[kRussian]);
}

TEST_F(ComObjects, FailuresHaveTextClassAndMessageId) {
    const auto array = dispatch_of(Array{1});
    VARIANT index;
    V_VT(&index) = VT_I4;
    V_I4(&index) = 5;
    EXCEPINFO info{};
    ASSERT_EQ(call(*array.get(), u"Get", DISPATCH_METHOD, {&index, 1}, nullptr, &info), DISP_E_EXCEPTION);
    const wstring source(Bstr::view(info.bstrSource));
    EXPECT_EQ(to_utf8(source).find("ContextException IDS_"), 0U) << to_utf8(source);
    EXPECT_FALSE(Bstr::view(info.bstrDescription).empty());
    EXPECT_LT(info.scode, 0);
    SysFreeString(info.bstrSource);
    SysFreeString(info.bstrDescription);
    ComPtr<IErrorInfo> last;
    ASSERT_EQ(GetErrorInfo(0, last.typed()), S_OK);
    Bstr text;
    last->GetSource(text.out());
    EXPECT_EQ(text.view(), source);
}

TEST_F(ComObjects, HostileCallsAreErrors) {
    const auto array = dispatch_of(Array{1});
    const DISPID add = id_of_name(u"Add");
    EXPECT_EQ(array->Invoke(add, IID_NULL, 0, DISPATCH_METHOD, nullptr, nullptr, nullptr, nullptr),
              E_INVALIDARG);
    DISPPARAMS lies{nullptr, nullptr, 3, 0};
    EXPECT_EQ(array->Invoke(add, IID_NULL, 0, DISPATCH_METHOD, &lies, nullptr, nullptr, nullptr),
              E_INVALIDARG);
    VARIANT many[40];
    for (VARIANT& one : many)
        VariantInit(&one);
    DISPPARAMS tooMany{many, nullptr, 40, 0};
    EXPECT_EQ(array->Invoke(add, IID_NULL, 0, DISPATCH_METHOD, &tooMany, nullptr, nullptr, nullptr),
              DISP_E_BADPARAMCOUNT);
    DISPID unknown = 12345;
    DISPPARAMS named{many, &unknown, 1, 1};
    EXPECT_EQ(array->Invoke(add, IID_NULL, 0, DISPATCH_METHOD, &named, nullptr, nullptr, nullptr),
              DISP_E_PARAMNOTFOUND);
    DISPPARAMS none{};
    EXPECT_EQ(
        array->Invoke(id_of_name(u"Get"), IID_NULL, 0, DISPATCH_METHOD, &none, nullptr, nullptr, nullptr),
        DISP_E_EXCEPTION);
    EXPECT_EQ(array->Invoke(777, IID_NULL, 0, DISPATCH_METHOD, &none, nullptr, nullptr, nullptr),
              DISP_E_MEMBERNOTFOUND);
    EXPECT_EQ(array->GetIDsOfNames(IID_NULL, nullptr, 1, 0, &unknown), E_INVALIDARG);
    EXPECT_EQ(array->QueryInterface(IID_IUnknown, nullptr), E_POINTER);
}

/// What two threads tell each other.
struct Shared {
    IDispatch* direct;
    IStream* stream;
    ::HRESULT refused, served;
    DWORD home;
};

DWORD WINAPI call_from_thread(void* given) {
    auto& shared = *static_cast<Shared*>(given);
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    DISPPARAMS none{};
    shared.refused = shared.direct->Invoke(id_of_name(u"Count"), IID_NULL, 0, DISPATCH_METHOD, &none, nullptr,
                                           nullptr, nullptr);
    {
        ComPtr<IDispatch> proxy;
        if (SUCCEEDED(CoGetInterfaceAndReleaseStream(shared.stream, IID_IDispatch, proxy.out()))) {
            Variant result;
            shared.served = proxy->Invoke(id_of_name(u"Count"), IID_NULL, 0, DISPATCH_METHOD, &none, &result,
                                          nullptr, nullptr);
            if (V_VT(&result) != VT_I4 || V_I4(&result) != 1)
                shared.served = E_UNEXPECTED;
        }
    }
    CoUninitialize();
    PostThreadMessageW(shared.home, WM_QUIT, 0, 0);
    return 0;
}

TEST_F(ComObjects, AnotherThreadIsRefusedDirectlyAndServedThroughAProxy) {
    const Array values{1};
    const auto array = dispatch_of(values);
    IStream* stream = nullptr;
    ASSERT_EQ(CoMarshalInterThreadInterfaceInStream(IID_IDispatch, array.get(), &stream), S_OK);
    Shared shared{array.get(), stream, S_OK, E_FAIL, GetCurrentThreadId()};
    const HANDLE thread = CreateThread(nullptr, 0, call_from_thread, &shared, 0, nullptr);
    MSG message;
    while (GetMessageW(&message, nullptr, 0, 0) > 0)
        DispatchMessageW(&message);
    WaitForSingleObject(thread, INFINITE);
    CloseHandle(thread);
    EXPECT_EQ(shared.refused, RPC_E_WRONG_THREAD);
    EXPECT_EQ(shared.served, S_OK);
}

// others for ours

TEST_F(ComObjects, ScriptsUseADictionary) {
    const Value text = run(R"(
        D = New COMObject("Scripting.Dictionary");
        D.Add("one", 1);
        D.Add("two", 2.5);
        D["three"] = Undefined;
        Result = "" + D.Count + " " + D.Exists("one") + " " + D.Item("two") + " " + D["one"];
        For Each Key In D Do
            Result = Result + " " + Key;
        EndDo;
        Return Result;)");
    EXPECT_EQ(to_utf8(text.presentation()), "3 Yes 2.5 1 one two three");
    const Value keys = run("D = New COMObject(\"Scripting.Dictionary\"); D.Add(1, 2); Return D.Keys();");
    EXPECT_EQ(Array(keys).size(), 1U);
}

TEST_F(ComObjects, FailuresOfOthersHaveACause) {
    try {
        run("D = New COMObject(\"Scripting.Dictionary\"); D.Add(1, 1); D.Add(1, 1);");
        FAIL();
    } catch (const Exception& e) {
        std::vector<std::string> ids; // from the script down to the object
        for (const Exception* failure = &e; failure != nullptr;
             failure = failure->cause() != nullptr ? &failure->cause()->exception() : nullptr)
            ids.emplace_back(failure->messageId());
        ASSERT_GE(ids.size(), 2U);
        EXPECT_EQ(ids[ids.size() - 2], "COM_CALL_FAILED");
        EXPECT_EQ(ids.back(), "COM_SOURCE");
    }
    EXPECT_NE(failure([] { run("D = New COMObject(\"No.Such.Class\");"); }), "");
    EXPECT_NE(failure([] { run("D = New COMObject(\"Scripting.Dictionary\"); D.NoSuch();"); }), "");
}

TEST_F(ComObjects, TheServiceIsFoundByItsId) {
    const Value dictionary = service().create(u"{EE09B103-97E0-11CF-978F-00A02463E06F}");
    EXPECT_TRUE(service().typeLibrary(dictionary).isObject());
    auto* const dispatch = static_cast<IDispatch*>(service().toDispatch(dictionary));
    EXPECT_EQ(service().fromUnknown(dispatch), dictionary); // equal, since it is the same object
    dispatch->Release();
    const Value nothing = service().fromUnknown(nullptr);
    Variant variant;
    to_variant(nothing, variant, {});
    EXPECT_EQ(V_VT(&variant), VT_DISPATCH);
    EXPECT_EQ(V_DISPATCH(&variant), nullptr);
}

TEST_F(ComObjects, TypeLibrariesAreValues) {
    const Value found = run(R"(
        L = New COMTypeLibrary(New COMObject("Scripting.Dictionary"));
        Constants = "";
        For Each T In L.Types Do
            If T.Name = "CompareMethod" Then
                Constants = T.Kind + " " + T.Constants.TextCompare;
            EndIf;
            If T.Name = "IDictionary" Then
                For Each M In T.Members Do
                    If M.Name = "Add" Then
                        Return L.Name + " " + M.Kind + " " + M.Parameters.Count() + " " + Constants;
                    EndIf;
                EndDo;
            EndIf;
        EndDo;)");
    EXPECT_EQ(to_utf8(found.presentation()), "Scripting Method 2 Enumeration 1");
    const Value dictionary = service().create(u"Scripting.Dictionary");
    const auto definition = dictionary.query<IContext_>();
    EXPECT_GE(definition->getNMethods(), 5);
    EXPECT_GE(definition->findMethod(u"removeall"), 0);
}

TEST_F(ComObjects, OursGoThroughOthersAndComeBack) {
    const Value same = run(R"(
        S = New Structure("A", 1);
        D = New COMObject("Scripting.Dictionary");
        D.Add("s", S);
        Return D.Item("s") = S;)");
    EXPECT_EQ(same, Value(true));
}

TEST_F(ComObjects, NothingIsLeftAfterManyCalls) {
    static_cast<void>(service()); // made when it is first asked for
    const auto before = live_report();
    {
        const Value value = service().create(u"Scripting.Dictionary");
        const auto dictionary = value.query<IContext_>();
        const int add = dictionary->findMethod(u"Item");
        const int removeAll = dictionary->findMethod(u"RemoveAll");
        const int method = dictionary->findMethod(u"Add");
        ASSERT_GE(add, 0);
        for (int i = 0; i < 25'000; ++i) {
            std::vector<GenericValue> arguments{GenericValue(string_intto(i)),
                                                GenericValue(Value(Structure()))};
            dictionary->call(method, nullptr, &arguments);
            arguments.pop_back();
            GenericValue back;
            dictionary->call(add, &back, &arguments);
            if (i % 1000 == 999)
                dictionary->call(removeAll, nullptr, nullptr);
            const auto object = dispatch_of(back);
            Variant count;
            ASSERT_EQ(call(*object.get(), u"Count", DISPATCH_METHOD, {}, &count), S_OK);
            ASSERT_EQ(call(*object.get(), u"Количество", DISPATCH_METHOD, {}, &count), S_OK);
        }
        dictionary->call(removeAll, nullptr, nullptr);
    }
    EXPECT_EQ(held_objects(), 0U);
    expectAsManyAs(before);
}

} // namespace
} // namespace core::com
