// SPDX-License-Identifier: Apache-2.0
#include <core/runtime/threads/thread.h>

#include <gtest/gtest.h>
#include <windows.h>

#include <string>

using namespace core;

TEST(Thread, ShowsTheSystemItsName) {
    using GetDescription = ::HRESULT(WINAPI*)(HANDLE, wchar_t**);
    const auto description = reinterpret_cast<GetDescription>(reinterpret_cast<void*>(
        ::GetProcAddress(::GetModuleHandleW(L"kernelbase.dll"), "GetThreadDescription")));
    if (description == nullptr)
        GTEST_SKIP() << "threads have no names here";
    std::wstring shown;
    Thread(u"выгрузка sixteen letters.", [&] {
        wchar_t* text = nullptr;
        description(::GetCurrentThread(), &text);
        shown = text;
        ::LocalFree(text);
    }).join();
    EXPECT_EQ(shown, L"выгрузка sixteen letters.");
}
