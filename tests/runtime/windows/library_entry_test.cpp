// SPDX-License-Identifier: Apache-2.0
// The library as the loader of the system sees it.
#include "tests/support/new_folder.h"

#include <core/runtime.h>

#include <gtest/gtest.h>
#include <windows.h>

#include <filesystem>
#include <vector>

namespace core {
namespace {

using Modules = std::vector<SCOM_Module*> (*)();

const std::size_t modules_before_main = registered_modules().size();

std::filesystem::path library_file() {
    HMODULE library = nullptr;
    std::wstring path(32768, L'\0');
    ::GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS |
                             GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                         reinterpret_cast<const wchar_t*>(&library_main), &library);
    path.resize(::GetModuleFileNameW(library, path.data(), static_cast<DWORD>(path.size())));
    return path;
}

TEST(LibraryEntry, TheLoaderHasAttachedTheLibraryBeforeTheProgramBegins) {
    EXPECT_EQ(modules_before_main, 1U);
    const auto modules = registered_modules();
    EXPECT_TRUE(library_main(nullptr, LibraryEvent::processAttach));
    EXPECT_TRUE(library_main(nullptr, LibraryEvent::processDetach));
    EXPECT_EQ(registered_modules(), modules) << "what the loader has attached, it alone detaches";
}

TEST(LibraryEntry, ALibraryThatIsLoadedLaterIsAttachedAndGoesWhenItIsFreed) {
    const std::filesystem::path folder = support::new_folder("entry");
    const std::filesystem::path copy = folder / "copy.dll";
    std::filesystem::copy_file(library_file(), copy);
    for (int round = 0; round < 20; ++round) {
        const HMODULE library = ::LoadLibraryW(copy.c_str());
        ASSERT_NE(library, nullptr) << round << ": error " << ::GetLastError();
        const auto modules = reinterpret_cast<Modules>(
            reinterpret_cast<void*>(::GetProcAddress(library, "_ZN4core18registered_modulesEv")));
        ASSERT_NE(modules, nullptr);
        EXPECT_EQ(modules().size(), 1U) << "its own; it does not know of the other copy";
        ASSERT_NE(::FreeLibrary(library), 0);
        ASSERT_EQ(::GetModuleHandleW(copy.c_str()), nullptr) << "still there in round " << round;
    }
    std::filesystem::remove_all(folder); // which the system refuses while a library is in use
    EXPECT_FALSE(std::filesystem::exists(folder));
}

TEST(LibraryEntry, ThreadsThatComeAndGoAreNoConcernOfTheLibrary) {
    const auto modules = registered_modules();
    const std::uint32_t generation = modules_generation();
    for (int count = 0; count < 100; ++count) {
        bool adopted = true;
        const HANDLE thread = ::CreateThread(
            nullptr, 0,
            [](void* answer) -> DWORD {
                *static_cast<bool*>(answer) = current_process() != nullptr;
                return 0;
            },
            &adopted, 0, nullptr);
        ASSERT_NE(thread, nullptr);
        ::WaitForSingleObject(thread, INFINITE);
        ::CloseHandle(thread);
        EXPECT_FALSE(adopted);
    }
    EXPECT_EQ(registered_modules(), modules);
    EXPECT_EQ(modules_generation(), generation);
}

} // namespace
} // namespace core
