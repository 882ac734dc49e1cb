// SPDX-License-Identifier: Apache-2.0
#include <core/runtime/errors.h>
#include <core/runtime/module.h>
#include <host/host_process.h>

#include <gtest/gtest.h>

namespace {

using namespace core;

struct IOurs : IUnknown {
    static constexpr GUID IID = "1f1c9c65-7a0e-4b0f-9a52-6a6e8a1b7d01"_guid;
};
class Ours : public IOurs {
  public:
    using Interfaces = InterfaceList<IOurs>;
};

/// Whose class a process makes.
std::string_view made(SCOM_Process* process, const GUID& clsid) {
    const auto object = process->createInstance(clsid);
    return !object ? "nothing" : InterfacePtr<IOurs>(object.get()) ? "ours" : "the library's";
}

/// The owner, and who was refused, where `work` fails because a class has an owner.
template <class Work>
std::pair<wstring, wstring> refused(Work work) {
    try {
        work();
    } catch (const ProcessException& e) {
        EXPECT_STREQ(e.messageId(), messages::kClassClaimed);
        return {e.parameters()[0], e.parameters()[1]};
    }
    return {};
}

TEST(LibraryClasses, AreTakenBackByEachProcessForItself) {
    const LibraryScope library;
    const GUID& clsid = *core_module().declarations()->record.clsid;
    ClassEntry entry{.record = detail::class_record<Ours>(clsid, "Ours", false, nullptr)};
    ClassEntry* const entries = &entry;
    SCOM_ResourceBundle bundle("ours");
    SCOM_Module module(entries, bundle, {.name = "ours", .version = {}, .file = {}});
    module.initialize(); // and not init(): processes do not take it by themselves
    const host::HostProcess first;
    const host::HostProcess second;
    const std::pair<wstring, wstring> core_stays(u"core", u"ours");
    const std::pair<wstring, wstring> ours_stays(u"ours", u"core");

    EXPECT_EQ(refused([&] { module.registerAll(first.get()); }), core_stays);
    module.revokeAll(first.get());
    EXPECT_EQ(made(first.get(), clsid), "the library's");

    first.get()->revokeClass(clsid);
    EXPECT_EQ(made(first.get(), clsid), "nothing");
    EXPECT_EQ(made(second.get(), clsid), "the library's");
    module.registerAll(first.get());
    EXPECT_EQ(made(first.get(), clsid), "ours");
    EXPECT_EQ(refused([&] { core_module().registerClass(clsid, first.get()); }), ours_stays);
    module.revokeAll(first.get());
    core_module().registerClass(clsid, first.get());
    EXPECT_EQ(made(first.get(), clsid), "the library's");
    core_module().revokeAll(first.get());
    EXPECT_EQ(made(first.get(), clsid), "nothing");
    EXPECT_EQ(made(second.get(), clsid), "the library's");

    const auto bare = SCOM_InternalClass<host::ProcessObject>::create(Settings());
    module.registerAll(bare.get());
    EXPECT_EQ(refused([&] { bare->addLibrary(); }), ours_stays);
    EXPECT_EQ(made(bare.get(), clsid), "ours");
}

} // namespace
