// SPDX-License-Identifier: Apache-2.0
// Concerns: threads and the processes that adopt them, which end in any order; modules that register and
// revoke their own; services made once, by whichever thread, with every failure told; failures that nobody
// catches.
#include "tests/support/library.h"

#include <core/context/events/event_service.h>
#include <core/dates/settings.h>
#include <core/files/file_system.h>
#include <core/files/temp_file_service.h>
#include <core/runtime.h>
#include <core/runtime/uncaught.h>
#include <core/values/type.h>
#include <core/values/type_service.h>
#include <host/host_process.h>

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <functional>
#include <future>
#include <memory>
#include <optional>
#include <random>
#include <stdexcept>
#include <thread>
#include <vector>

namespace {

using namespace core;
using namespace std::chrono_literals;

struct INamed : IUnknown {
    static constexpr GUID IID = "5b0d4f0e-5a43-4f0c-9a4b-0f5b3f6f0a01"_guid;
    virtual int id() = 0;
};

/// Interfaces and classes by number, so that a test can have as many services as it needs.
template <unsigned n>
struct INumbered : INamed {
    static constexpr GUID IID = {0x5b0d4f0e, 0x5a43, 0x4f0c, {0x9a, 0x4b, 1, 0, 0, 0, 0, n}};
};
template <unsigned n>
constexpr GUID kNumbered = {0x5b0d4f0e, 0x5a43, 0x4f0c, {0x9a, 0x4b, 2, 0, 0, 0, 0, n}};

/// What the constructor of the class with that number does.
std::array<std::function<void()>, 4> in_constructor;
std::atomic<int> constructed = 0;

template <unsigned n>
class Numbered : public INumbered<n> {
  public:
    using Interfaces = InterfaceList<INumbered<n>, INamed>;
    Numbered() {
        ++constructed;
        if (in_constructor[n])
            in_constructor[n]();
    }
    int id() override { return n; }
};

template <unsigned n>
ClassEntry service_entry() {
    return {.record = detail::class_record<Numbered<n>>(kNumbered<n>, "Numbered", false, &INumbered<n>::IID)};
}

/// A module with entries of its own. Those of this program stay out of it.
class OwnModule {
  public:
    OwnModule(const char* name, std::vector<ClassEntry> entries)
        : bundle_(name), entries_(std::move(entries)) {
        for (std::size_t i = 0; i + 1 < entries_.size(); ++i)
            entries_[i].next = &entries_[i + 1];
        head_ = entries_.empty() ? nullptr : &entries_.front();
        module_.initialize();
    }
    SCOM_Module* operator->() noexcept { return &module_; }

  private:
    SCOM_ResourceBundle bundle_;
    std::vector<ClassEntry> entries_;
    ClassEntry* head_ = nullptr;
    SCOM_Module module_{head_, bundle_};
};

class Processes : public testing::Test {
  protected:
    Processes() {
        in_constructor = {};
        constructed = 0;
    }

    /// The message id and parameters that `work` fails with.
    template <class Work>
    static std::string failure(Work work) {
        try {
            work();
        } catch (const ProcessException& e) {
            std::string text = e.messageId();
            for (const wstring& parameter : e.parameters())
                text += ' ' + to_utf8(parameter);
            return text;
        }
        return "";
    }
};

using ProcessPtr = InterfacePtr<host::ProcessObject>;

ProcessPtr make_process() {
    return SCOM_InternalClass<host::ProcessObject>::create(Settings());
}

TEST_F(Processes, EndInAnyOrderAndOnAnyThread) {
    auto first = std::make_unique<host::HostProcess>();
    auto second = std::make_unique<host::HostProcess>();
    EXPECT_EQ(current_process(), second->get());
    first.reset();
    EXPECT_EQ(current_process(), second->get());
    EXPECT_NE(get_service<ITypeValueService>(), nullptr);
    first = std::make_unique<host::HostProcess>();
    std::thread([&] {
        const host::HostProcess::ThreadScope scope(*first);
        first.reset();
        EXPECT_EQ(current_process(), nullptr);
    }).join();
    EXPECT_EQ(current_process(), second->get());
    second.reset();
    EXPECT_EQ(current_process(), nullptr);
    EXPECT_EQ(current_process_data(), nullptr);
}

TEST_F(Processes, AThreadHasTheNewestThatHasNotEnded) {
    const LibraryScope library;
    struct Scope {
        std::unique_ptr<ProcessScope> scope;
        SCOM_Process* process; // null when it has ended
    };
    std::array<ProcessPtr, 3> processes;
    std::vector<Scope> scopes; // the model: the last one with a process counts
    std::minstd_rand random(7);
    for (int step = 0; step < 5000; ++step) {
        ProcessPtr& process = processes[random() % processes.size()];
        switch (random() % 4) {
        case 0:
            if (process)
                scopes.push_back({std::make_unique<ProcessScope>(process.get()), process.get()});
            else
                process = make_process();
            break;
        case 1:
            if (random() % 4 == 0) {
                release_threads(process.get());
                for (Scope& scope : scopes)
                    scope.process = scope.process == process.get() ? nullptr : scope.process;
                process.reset();
            }
            break;
        default:
            if (!scopes.empty())
                scopes.erase(scopes.begin() + static_cast<std::ptrdiff_t>(random() % scopes.size()));
        }
        SCOM_Process* expected = nullptr;
        for (const Scope& scope : scopes)
            expected = scope.process != nullptr ? scope.process : expected;
        ASSERT_EQ(current_process(), expected) << step;
        ASSERT_EQ(current_process_data(), expected != nullptr ? expected->data() : nullptr) << step;
    }
}

TEST_F(Processes, AScopeMayOutliveItsThreadAndTheLibrary) {
    std::optional<ProcessScope> orphan;
    const ProcessPtr process = make_process();
    {
        const LibraryScope library;
        std::thread([&] { orphan.emplace(process.get()); }).join();
        orphan.reset();
        orphan.emplace(process.get());
        EXPECT_EQ(current_process(), process.get());
    }
    // Nothing may be attached now that could remember a process.
    SCOM_Process* const remembered = support::kLoaderAttaches ? process.get() : nullptr;
    EXPECT_EQ(current_process(), remembered);
    orphan.reset();
    const ProcessScope late(process.get());
    EXPECT_EQ(current_process(), remembered);
}

TEST_F(Processes, WorkOnAThreadWithoutOneSaysSo) {
    const auto works = [](auto work) { EXPECT_EQ(failure(work), messages::kNoProcess); };
    works([] { static_cast<void>(Type(wstring_view(u"Structure"))); });
    works([] { static_cast<void>(create_object<IUnknown>(kNumbered<0>)); });
    works([] { static_cast<void>(require_service<IFileSystem>()); });
    EXPECT_EQ(get_service<IFileSystem>(), nullptr);
}

TEST_F(Processes, AModuleRevokesItsOwnAlone) {
    OwnModule one("one", {service_entry<0>(), service_entry<1>()});
    OwnModule two("two", {service_entry<2>()});
    host::HostProcess process;
    one->registerAll(process.get());
    two->registerAll(process.get());
    INumbered<2>* const service = get_service<INumbered<2>>();
    ITypeValueService* const types = get_service<ITypeValueService>();
    ASSERT_TRUE(service != nullptr && types != nullptr && get_service<INumbered<0>>() != nullptr);

    two->revokeClass(kNumbered<0>, process.get());
    EXPECT_NE(get_service<INumbered<0>>(), nullptr) << "of another module";
    one->revokeAll(process.get());
    EXPECT_EQ(get_service<INumbered<0>>(), nullptr);
    EXPECT_FALSE(create_object<INamed>(kNumbered<1>));
    EXPECT_EQ(get_service<INumbered<2>>(), service);
    EXPECT_EQ(get_service<ITypeValueService>(), types);
    EXPECT_NO_THROW(static_cast<void>(Type(wstring_view(u"Structure"))));
    one->registerAll(process.get()); // and back
    EXPECT_EQ(require_service<INumbered<1>>().id(), 1);

    process.get()->revokeService(INumbered<1>::IID);
    EXPECT_EQ(get_service<INumbered<1>>(), nullptr);
    EXPECT_NE(get_service<INumbered<0>>(), nullptr);
    EXPECT_TRUE(create_object<INumbered<1>>(kNumbered<1>)) << "the class stays";
    one->revokeAll(process.get());
    two->revokeAll(process.get());
}

TEST_F(Processes, WhatTwoModulesClaimIsRefusedAndNamesBoth) {
    const std::string text = to_utf8(to_string(kNumbered<1>));
    OwnModule one("one", {service_entry<0>(), service_entry<1>()});
    OwnModule two("two", {service_entry<2>(), service_entry<1>()});
    ClassEntry same = service_entry<3>();
    same.record.service = &INumbered<0>::IID;
    OwnModule three("three", {service_entry<2>(), same});
    host::HostProcess process;
    one->registerAll(process.get());
    INumbered<1>* const before = get_service<INumbered<1>>();
    EXPECT_EQ(failure([&] { two->registerAll(process.get()); }), "IDS_PROCESS_CLASS_CLAIMED one two " + text);
    EXPECT_EQ(failure([&] { three->registerAll(process.get()); }),
              "IDS_PROCESS_SERVICE_CLAIMED one three " + to_utf8(to_string(INumbered<0>::IID)));
    EXPECT_FALSE(create_object<IUnknown>(kNumbered<2>)) << "nothing is half registered";
    EXPECT_FALSE(create_object<IUnknown>(kNumbered<3>));
    EXPECT_EQ(get_service<INumbered<1>>(), before);
    EXPECT_EQ(failure([&] { process.get()->registerClass(kNumbered<1>, nullptr, 0, 0); }),
              "IDS_PROCESS_CLASS_CLAIMED one the program itself " + text);

    // The program may offer an object of its own in place of a service; it stays when the module goes.
    const auto own = make_object<Numbered<0>>();
    process.offerService(INumbered<0>::IID, own.get());
    EXPECT_EQ(get_service<INumbered<0>>(), own.get());
    EXPECT_EQ(failure([&] { process.offerService(INumbered<1>::IID, own.get()); }),
              "IDS_PROCESS_NO_SERVICE " + to_utf8(to_string(INumbered<1>::IID)));
    one->revokeAll(process.get());
    EXPECT_EQ(get_service<INumbered<0>>(), own.get());
    EXPECT_EQ(failure([&] { one->registerAll(process.get()); }),
              "IDS_PROCESS_SERVICE_CLAIMED the program itself one " + to_utf8(to_string(INumbered<0>::IID)));
    two->registerAll(process.get()); // nobody has its classes any more
    two->revokeAll(process.get());
}

/// A process of three classes, whose services are made as in_constructor says.
class Services : public Processes {
  protected:
    Services() { module_->registerAll(process_.get()); }
    ~Services() override { module_->revokeAll(process_.get()); }

    OwnModule module_{"module", {service_entry<0>(), service_entry<1>(), service_entry<2>()}};
    host::HostProcess process_;
};

TEST_F(Services, AConstructorMayWaitForAThreadThatUsesTheProcess) {
    in_constructor[0] = [this] {
        const auto worker = std::async(std::launch::async, [this] {
            const host::HostProcess::ThreadScope scope(process_);
            return get_service<INumbered<1>>() != nullptr && create_object<INamed>(kNumbered<2>);
        });
        // A worker that was shut out would be waited for again below, for ever.
        if (worker.wait_for(10s) != std::future_status::ready)
            std::abort();
    };
    EXPECT_NE(get_service<INumbered<0>>(), nullptr);
}

TEST_F(Services, TheFirstOfSeveralThreadsMakesIt) {
    in_constructor[0] = [] { std::this_thread::sleep_for(20ms); };
    std::vector<std::future<INumbered<0>*>> threads;
    for (int i = 0; i < 8; ++i) {
        threads.push_back(std::async(std::launch::async, [this] {
            const host::HostProcess::ThreadScope scope(process_);
            return get_service<INumbered<0>>();
        }));
    }
    INumbered<0>* const service = get_service<INumbered<0>>();
    ASSERT_NE(service, nullptr);
    for (auto& thread : threads)
        EXPECT_EQ(thread.get(), service);
    EXPECT_EQ(constructed, 1);
}

TEST_F(Services, WhatAConstructorThrowsReachesWhoeverAsks) {
    in_constructor[0] = [] { throw 5; };
    in_constructor[1] = [] { throw_error<ConverterException>(messages::kStringTooLong); };
    EXPECT_EQ(get_service<INumbered<0>>(), nullptr);
    EXPECT_THROW(static_cast<void>(require_service<INumbered<0>>()), int);
    EXPECT_THROW(static_cast<void>(require_service<INumbered<1>>()), ConverterException);
    EXPECT_FALSE(InterfacePtr<INumbered<0>>(process_.get()));
    in_constructor[0] = nullptr;
    EXPECT_EQ(require_service<INumbered<0>>().id(), 0) << "the next one tries again";
    EXPECT_EQ(failure([] { static_cast<void>(require_service<INumbered<3>>()); }),
              "IDS_PROCESS_NO_SERVICE " + to_utf8(to_string(INumbered<3>::IID)));
}

TEST_F(Services, OneThatWaitsForItselfGetsAnError) {
    in_constructor[0] = [] { static_cast<void>(require_service<INumbered<0>>()); };
    EXPECT_EQ(failure([] { static_cast<void>(require_service<INumbered<0>>()); }),
              "IDS_PROCESS_SERVICE_CIRCLE Numbered");
    EXPECT_EQ(get_service<INumbered<0>>(), nullptr);

    // Two that need each other, made by two threads that wait for each other: one of them is refused.
    std::atomic<int> inside = 0;
    const auto meet = [&] {
        for (++inside; inside < 2;)
            std::this_thread::yield();
    };
    in_constructor[0] = [&] {
        meet();
        static_cast<void>(require_service<INumbered<1>>());
    };
    in_constructor[1] = [&] {
        meet();
        static_cast<void>(require_service<INumbered<0>>());
    };
    auto other = std::async(std::launch::async, [&] {
        const host::HostProcess::ThreadScope scope(process_);
        return failure([] { static_cast<void>(require_service<INumbered<1>>()); });
    });
    const std::string here = failure([] { static_cast<void>(require_service<INumbered<0>>()); });
    EXPECT_NE(here + other.get(), "");
}

TEST_F(Services, BelongToTheProcessThatMakesThem) {
    const host::HostProcess other;
    ASSERT_EQ(current_process(), other.get());
    SCOM_Process* during = nullptr;
    in_constructor[0] = [&] { during = current_process(); };
    EXPECT_TRUE(InterfacePtr<INumbered<0>>(process_.get()));
    EXPECT_EQ(during, process_.get());
    EXPECT_EQ(current_process(), other.get());
}

TEST_F(Services, OneThatIsRevokedWhileItIsMadeIsNotOffered) {
    in_constructor[0] = [this] { module_->revokeClass(kNumbered<0>, process_.get()); };
    EXPECT_EQ(get_service<INumbered<0>>(), nullptr);
    EXPECT_EQ(SCOM_InternalClass<Numbered<0>>::liveCount(), 0);
    in_constructor[0] = [this] {
        in_constructor[0] = nullptr;
        process_.get()->registerService(INumbered<0>::IID, kNumbered<1>); // another class for it
    };
    module_->registerClass(kNumbered<0>, process_.get());
    EXPECT_EQ(get_service<INumbered<0>>(), nullptr) << "which does not have the interface";
}

TEST_F(Services, AreFoundWhileModulesComeAndGo) {
    std::atomic<bool> stop = false;
    INumbered<0>* const kept = get_service<INumbered<0>>();
    std::vector<std::future<int>> threads;
    for (int i = 0; i < 3; ++i) {
        threads.push_back(std::async(std::launch::async, [&] {
            const host::HostProcess::ThreadScope scope(process_);
            int missed = 0;
            while (!stop) {
                missed += get_service<INumbered<0>>() != kept;
                missed += !create_object<INamed>(kNumbered<1>);
                const auto coming = create_object<INamed>(kNumbered<3>); // there or not
                missed += coming && coming->id() != 3;
            }
            return missed;
        }));
    }
    OwnModule other("other", {service_entry<3>()});
    for (int i = 0; i < 2000; ++i) {
        other->registerAll(process_.get());
        other->revokeAll(process_.get());
        GUID unknown = kNumbered<3>; // many ids, so that the tables grow
        unknown.data1 = static_cast<std::uint32_t>(i);
        process_.get()->registerClass(unknown, nullptr, 0, 0);
    }
    stop = true;
    for (auto& thread : threads)
        EXPECT_EQ(thread.get(), 0);
}

TEST_F(Processes, TheServicesOfTheLibraryAreFoundByTheirIds) {
    const host::HostProcess process;
    const auto expect = [&]<class T>(T* service, const GUID& iid) {
        EXPECT_NE(service, nullptr) << to_utf8(to_string(iid));
        EXPECT_EQ(T::IID, iid);
        EXPECT_EQ(InterfacePtr<T>(process.get()).get(), service);
        EXPECT_EQ(&require_service<T>(), service);
    };
    expect(get_service<IFileSystem>(), "3a6c2186-45c3-11d4-985d-008048da1252"_guid);
    expect(get_service<ITempFileService>(), "68cdb09f-2364-493a-a532-8dafaae86e53"_guid);
    expect(get_service<IEventService>(), "ebf766aa-f32c-11d3-9851-008048da1252"_guid);
    expect(get_service<ITypeValueService>(), "c9c8dcc3-479f-448b-99db-ddecab1b483c"_guid);
    EXPECT_EQ(get_service<SCOM_Process>(), process.get());
}

constexpr GUID kSet = "5b0d4f0e-5a43-4f0c-9a4b-0f5b3f6f0a02"_guid;

TEST_F(Processes, AttributesOfADeclarationReachTheProcess) {
    ClassEntry* const before = module_class_entries;
    const SCOM_Class<Numbered<0>, &kSet> entry("Numbered", {.threading = 2, .attributes = 0x10});
    OwnModule module("module", {*module_class_entries});
    module_class_entries = before; // no other test sees it
    const host::HostProcess process;
    module->registerClass(kSet, process.get());
    const auto registered = static_cast<host::ProcessObject*>(process.get())->registration(kSet);
    EXPECT_EQ(registered.threading, 2);
    EXPECT_EQ(registered.attributes, 0x10);
    EXPECT_EQ(registered.owner, module.operator->());
    module->revokeAll(process.get());
}

class Witness : public IUncaughtExceptions {
  public:
    using Interfaces = InterfaceList<IUncaughtExceptions>;
    void uncaught(IExceptionObject* failure, const wstring& where) override {
        text += where + u": " + failure->exception().description() + u'\n';
        if (failing)
            throw std::runtime_error("full");
    }
    wstring text;
    bool failing = false;
};

TEST_F(Processes, WhatNobodyCatchesIsReported) {
    const auto witness = make_object<Witness>();
    const auto report = [](auto thrown) {
        testing::internal::CaptureStderr();
        report_uncaught(std::make_exception_ptr(thrown), u"import");
        return testing::internal::GetCapturedStderr();
    };
    EXPECT_EQ(report(Exception(u"alone")), "core: import: alone\n");
    host::HostProcess process;
    EXPECT_EQ(report(Exception(u"nobody listens")), "core: import: nobody listens\n");
    process.offerService(IUncaughtExceptions::IID, witness.get());
    EXPECT_EQ(report(ConverterException(u"one")), "");
    EXPECT_EQ(report(std::runtime_error("two")), "");
    EXPECT_EQ(report(3), "");
    EXPECT_EQ(witness->text, u"import: one\nimport: A failure that is not of this library: two\n"
                             u"import: A failure that is not of this library: ?\n");
    witness->failing = true;
    EXPECT_EQ(report(Exception(u"four")), "core: import: A failure that is not of this library: full\n"
                                          "core: import: four\n");
}

} // namespace
