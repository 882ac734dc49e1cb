// SPDX-License-Identifier: Apache-2.0
// The bridge as an in-process server, and the type library that it writes.
#include "bridges/com/names.h"
#include "tests/bridges/com/com_fixture.h"

#include <fstream>
#include <iterator>
#include <sstream>

namespace core::com {
namespace {

using Action = ::HRESULT(WINAPI*)(); // DllRegisterServer and its like
using GetClass = ::HRESULT(WINAPI*)(REFCLSID clsid, REFIID iid, void** out);

/// The library as another program loads it, which knows nothing of us.
class Server {
  public:
    Server() : module_(LoadLibraryW(to_com(from_utf8("Z:" CORE_COM_LIBRARY).c_str()))) {
        EXPECT_NE(module_, nullptr);
    }
    template <class F>
    F function(const char* name) {
        return reinterpret_cast<F>(reinterpret_cast<void*>(GetProcAddress(module_, name)));
    }

  private:
    HMODULE module_;
};

TEST(ComServer, OtherProgramsMakeOurObjects) {
    Server server;
    ASSERT_EQ(server.function<Action>("DllRegisterServer")(), S_OK);
    const auto canUnload = server.function<Action>("DllCanUnloadNow");
    CLSID id;
    ASSERT_EQ(CLSIDFromProgID(to_com(u"Core.Array"), &id), S_OK);
    {
        ComPtr<IDispatch> array;
        ASSERT_EQ(CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, array.out()), S_OK);
        VARIANT value{};
        V_VT(&value) = VT_I4;
        V_I4(&value) = 5;
        EXPECT_EQ(call(*array.get(), u"Add", DISPATCH_METHOD, {&value, 1}, nullptr), S_OK);
        Variant count;
        EXPECT_EQ(call(*array.get(), u"Количество", DISPATCH_METHOD, {}, &count), S_OK);
        EXPECT_EQ(V_I4(&count), 1);
        EXPECT_EQ(canUnload(), S_FALSE);
    }
    const auto getClass = server.function<GetClass>("DllGetClassObject");
    void* none = nullptr;
    EXPECT_EQ(getClass(IID_IUnknown, IID_IClassFactory, &none), CLASS_E_CLASSNOTAVAILABLE);
    EXPECT_EQ(server.function<Action>("DllUnregisterServer")(), S_OK);
    EXPECT_NE(CLSIDFromProgID(to_com(u"Core.Array"), &id), S_OK);
}

TEST_F(ComTest, ThePageRuns) {
    std::ifstream page(CORE_SOURCE_DIR "/docs/com-bridge.md");
    const std::string text{std::istreambuf_iterator<char>(page), {}};
    const std::size_t begin = text.find("```\n", text.find("## In scripts")) + 4;
    std::ostringstream shown;
    script::Engine engine;
    engine.output(shown);
    engine.run(text.substr(begin, text.find("```", begin) - begin));
    EXPECT_EQ(shown.str().find("one 1\ntwo 2\n"), 0U) << shown.str();
}

TEST_F(ComTest, TheTypeLibrarySaysWhatCallsAnswer) {
    const wstring file = temporary_file(u"core_bridge_test.tlb");
    service().writeTypeLibrary(file);
    ComPtr<ITypeLib> library;
    ASSERT_EQ(LoadTypeLibEx(to_com(file.c_str()), REGKIND_NONE, library.typed()), S_OK);
    ComPtr<ITypeInfo> type;
    MEMBERID member = 0;
    USHORT count = 1;
    wstring name = u"IArray";
    ASSERT_EQ(library->FindName(to_com(name.data()), 0, type.typed(), &member, &count), S_OK);
    ASSERT_EQ(count, 1);
    wstring add = u"Add";
    LPOLESTR units = to_com(add.data());
    MEMBERID id = 0;
    ASSERT_EQ(type->GetIDsOfNames(&units, 1, &id), S_OK);
    EXPECT_EQ(id, id_of_name(u"Add"));
    library = {};
    type = {};
    DeleteFileW(to_com(file.c_str()));
}

} // namespace
} // namespace core::com
