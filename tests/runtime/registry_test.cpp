// SPDX-License-Identifier: Apache-2.0
// Concerns: declarations reach the table and the process in order; services by interface; threads and their
// process; coming and going many times; messages in two languages, missing texts included.
#include "tests/support/bytes_in_use.h"
#include "tests/support/library.h"

#include <core/dates/settings.h>
#include <core/numbers/errors.h>
#include <core/numbers/settings.h>
#include <core/runtime.h>
#include <core/storage/errors.h>
#include <core/values/errors.h>
#include <host/host_process.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <optional>
#include <set>
#include <stdexcept>
#include <thread>
#include <utility>
#include <vector>

namespace {

using namespace core;

struct IGreeter : IUnknown {
    static constexpr GUID IID = "b9f8a2b0-6a31-4f3e-8b70-2a4d3b0c0011"_guid;
    virtual int greet() = 0;
};
class Greeter : public IGreeter {
  public:
    using Interfaces = InterfaceList<IGreeter>;
    int greet() override { return ++greetings_; }

  private:
    int greetings_ = 0;
};
class Impostor : public Greeter {
  public:
    int greet() override { return -1; }
};

constexpr GUID kGreeterClass = "b9f8a2b0-6a31-4f3e-8b70-2a4d3b0c0012"_guid;
constexpr GUID kUnmadeClass = "b9f8a2b0-6a31-4f3e-8b70-2a4d3b0c0014"_guid;
constexpr GUID kTwiceClass = "b9f8a2b0-6a31-4f3e-8b70-2a4d3b0c0013"_guid;
const SCOM_ServiceEntryInit<Greeter, &kGreeterClass, &IGreeter::IID> greeterEntry("Greeter");
const SCOM_ClassEntryInit<Impostor, &kTwiceClass, true> impostorEntry("Impostor");
const SCOM_Class<Greeter, &kTwiceClass> twiceEntry("Greeter"); // declared last, so found first

struct TestModule {
    SCOM_ResourceBundle bundle{"nothing"};
    SCOM_Module module{module_class_entries, bundle};
};

TEST(Module, TableHoldsEveryDeclarationNewestFirstAndARecordOfZeros) {
    TestModule test;
    test.module.init(&test);
    const auto table = test.module.classTable();
    ASSERT_EQ(table.size(), 4U);
    EXPECT_EQ(*table[0].clsid, kTwiceClass);
    EXPECT_EQ(table[0].scriptClass, 0U);
    EXPECT_EQ(table[1].scriptClass, 1U);
    EXPECT_EQ(*table[2].service, IGreeter::IID);
    EXPECT_EQ(table[3].clsid, nullptr);
    EXPECT_EQ(registered_modules().back(), &test.module);
    test.module.term();
    test.module.term();
    EXPECT_TRUE(test.module.classTable().empty());

    ClassEntry* const none = nullptr;
    SCOM_Module empty(none, test.bundle);
    empty.initialize();
    ASSERT_EQ(empty.classTable().size(), 1U);
    EXPECT_EQ(empty.classTable()[0].createInstance, nullptr);
}

TEST(Module, RegistersNothingWithoutItsTable) {
    const host::HostProcess process;
    TestModule test;
    test.module.registerAll(process.get());
    EXPECT_FALSE(create_object<IGreeter>(kGreeterClass));
    test.module.init(nullptr);
    test.module.registerClass(kGreeterClass, process.get());
    EXPECT_TRUE(create_object<IGreeter>(kGreeterClass));
    test.module.revokeClass(kGreeterClass, process.get());
    EXPECT_FALSE(create_object<IGreeter>(kGreeterClass));
}

TEST(Module, ModulesAndProcessesBeginOnAnyThreads) {
    SCOM_ResourceBundle bundle("nothing");
    ClassEntry* const none = nullptr;
    std::vector<std::unique_ptr<SCOM_Module>> modules; // end after all processes
    std::vector<std::thread> threads;
    threads.emplace_back([&] {
        for (int round = 0; round < 200; ++round)
            modules.emplace_back(std::make_unique<SCOM_Module>(none, bundle))->init(nullptr);
    });
    for (int i = 0; i < 3; ++i) {
        threads.emplace_back([] {
            for (int round = 0; round < 50; ++round) {
                const host::HostProcess process;
                EXPECT_EQ(current_process(), process.get());
                EXPECT_NE(message_text("IDS_NUMERROR_OVERFLOW"), u"IDS_NUMERROR_OVERFLOW");
            }
        });
    }
    for (auto& thread : threads)
        thread.join();
    EXPECT_GE(registered_modules().size(), modules.size());
}

TEST(Module, AProcessThatCannotTakeItsClassesLeavesTheThreadAlone) {
    TestModule test;
    ClassEntry broken;
    broken.record = {.clsid = &kTwiceClass,
                     .getFactory = [](const ClassRecord&, const GUID&, void**) -> HRESULT {
                         throw std::runtime_error("no factory");
                     }};
    ClassEntry* const entries = &broken;
    SCOM_Module module(entries, test.bundle);
    module.init(nullptr);
    EXPECT_THROW(const host::HostProcess process, std::runtime_error);
    EXPECT_EQ(current_process(), nullptr);
}

TEST(Module, EachClassIsRegisteredWithWhatItsOwnDeclarationSays) {
    struct Recorder : IUnknownImpl<Recorder, SCOM_Process> {
        struct Class {
            GUID clsid;
            std::int32_t threading;
            std::int32_t attributes;
            bool operator==(const Class&) const = default;
        };
        std::vector<Class> classes;

        void registerClass(const GUID& clsid, IClassFactory* factory, std::int32_t threading,
                           std::int32_t attributes) override {
            EXPECT_NE(factory, nullptr);
            classes.push_back({clsid, threading, attributes});
        }
        void revokeClass(const GUID& clsid) override {
            std::erase_if(classes, [&](const Class& known) { return known.clsid == clsid; });
        }
        InterfacePtr<IUnknown> createInstance(const GUID&) override { return {}; }
        void registerService(const GUID&, const GUID&) override {}
        void revokeResources(SCOM_ResourceBundle*) override {
            EXPECT_EQ(classes.size(), 2U) << "comes first";
        }
        SCOM_ProcessData* data() noexcept override { return nullptr; }
    };
    ClassEntry second{.record = detail::class_record<Greeter>(kTwiceClass, "Greeter", false, nullptr),
                      .threading = 3,
                      .attributes = 4};
    ClassEntry first{.record = detail::class_record<Greeter>(kGreeterClass, "Greeter", false, nullptr),
                     .threading = 1,
                     .attributes = 2,
                     .next = &second};
    ClassEntry unmade{.record = {.clsid = &kUnmadeClass,
                                 .getFactory = [](const ClassRecord&, const GUID&, void**) -> HRESULT {
                                     return kNoInterface; // without memory, for example
                                 }},
                      .next = &first};
    ClassEntry* const entries = &unmade;
    SCOM_ResourceBundle bundle("nothing");
    SCOM_Module module(entries, bundle);
    module.initialize();
    Recorder process;
    module.registerAll(&process);
    EXPECT_EQ(process.classes, (std::vector<Recorder::Class>{{kGreeterClass, 1, 2}, {kTwiceClass, 3, 4}}));
    module.revokeAll(&process);
    EXPECT_TRUE(process.classes.empty());
}

TEST(Registry, AProcessMakesObjectsAndOffersServicesUntilTheyAreRevoked) {
    TestModule test;
    test.module.init(nullptr);
    const host::HostProcess process;
    const auto object = create_object<IGreeter>(kTwiceClass);
    ASSERT_TRUE(object);
    EXPECT_EQ(object->greet(), 1) << "of two declarations the last counts";
    EXPECT_FALSE(create_object<IClassFactory>(kTwiceClass));
    EXPECT_FALSE(create_object<IGreeter>(kNullGuid));
    test.module.registerClass(kNullGuid, process.get()); // no such declaration: nothing happens

    IGreeter* const service = get_service<IGreeter>();
    ASSERT_NE(service, nullptr);
    EXPECT_EQ(service->greet(), 1);
    EXPECT_EQ(get_service<IGreeter>()->greet(), 2) << "one object for everybody";
    EXPECT_EQ(get_service<IClassFactory>(), nullptr);

    test.module.revokeAll(process.get());
    EXPECT_FALSE(create_object<IGreeter>(kTwiceClass));
    EXPECT_EQ(get_service<IGreeter>(), nullptr);
}

TEST(Registry, AThreadHasTheProcessThatAdoptedIt) {
    EXPECT_EQ(current_process(), nullptr);
    EXPECT_EQ(current_process_data(), nullptr);
    EXPECT_EQ(get_service<IGreeter>(), nullptr);
    EXPECT_THROW(static_cast<void>(create_object<IGreeter>(kGreeterClass)), ProcessException);
    Settings settings;
    settings.part<DateSettings>().firstDayOfWeek = 7;
    const host::HostProcess process(settings);
    EXPECT_EQ(current_process(), process.get());
    EXPECT_EQ(current_settings().part<DateSettings>().firstDayOfWeek, 7);
    std::thread([&] {
        EXPECT_EQ(current_process(), nullptr);
        EXPECT_EQ(current_settings().part<DateSettings>().firstDayOfWeek, 1);
        {
            const host::HostProcess::ThreadScope scope(process);
            EXPECT_EQ(current_settings().part<DateSettings>().firstDayOfWeek, 7);
        }
        EXPECT_EQ(current_process(), nullptr);
    }).join();
}

TEST(Library, ComesAndGoesAThousandTimes) {
    TestModule test;
    test.module.initialize();
    std::size_t before = 0;
    for (int i = 0; i < 1000; ++i) {
        if (i == 10) // what is made once is made by then
            before = test::bytes_in_use();
        std::optional<host::HostProcess> first(std::in_place);
        const host::HostProcess process;
        first.reset();
        ASSERT_EQ(current_process(), process.get()); // the slots have not run out
        ASSERT_FALSE(core_module().classTable().empty());
        ASSERT_EQ(message_text("IDS_NUMERROR_DIVIDEBYZERO"), u"Division by zero.");
        std::thread([&] {
            const host::HostProcess::ThreadScope scope(process);
            test.module.registerAll(process.get());
            ASSERT_EQ(get_service<IGreeter>()->greet(), 1);
            test.module.revokeAll(process.get());
        }).join();
    }
    EXPECT_LT(test::bytes_in_use(), before + 990 * 16) << "a block a round would be more";
    EXPECT_NE(core_module().classTable().empty(), support::kLoaderAttaches);
    EXPECT_EQ(current_process(), nullptr);
    EXPECT_TRUE(library_main(nullptr, LibraryEvent::threadAttach));
    EXPECT_EQ(current_process(), nullptr);
}

TEST(ResourceBundle, SpeaksTheLanguageOfTheThreadAndFallsBack) {
    const host::HostProcess process;
    const auto divide = [](const char* locale) {
        Thread::setResourceLocale(Locale(locale));
        return message_text("IDS_NUMERROR_DIVIDEBYZERO");
    };
    EXPECT_EQ(divide("en_GB"), u"Division by zero.");
    EXPECT_EQ(divide("ru_RU"), u"Деление на ноль.");
    EXPECT_EQ(divide("de"), u"Division by zero.");
    std::thread([&] { EXPECT_EQ(message_text("IDS_NUMERROR_DIVIDEBYZERO"), u"Division by zero."); }).join();
    Thread::setResourceLocale(Locale("en"));

    SCOM_ResourceBundle& bundle = core_module().resourceBundle();
    unsigned length = 1;
    EXPECT_EQ(bundle.getString("IDS_NO_SUCH_TEXT", Locale("ru"), length), nullptr);
    EXPECT_EQ(length, 0U);
    length = 1;
    EXPECT_EQ(bundle.getString(nullptr, Locale("ru"), length), nullptr);
    EXPECT_EQ(length, 0U);
    EXPECT_TRUE(load_wstring(&bundle, nullptr).empty());
    EXPECT_TRUE(load_wstring(nullptr, "IDS_NUMERROR_DIVIDEBYZERO").empty());
    EXPECT_TRUE(bundle.getBinary("IDS_NUMERROR_DIVIDEBYZERO", Locale()).empty());
    bundle.cleanup();
    bundle.cleanup();
    EXPECT_NE(bundle.getString("IDS_NUMERROR_DIVIDEBYZERO", Locale("ru"), length), nullptr);
    EXPECT_EQ(message_text("IDS_NO_SUCH_TEXT", {u"7"}), u"IDS_NO_SUCH_TEXT 7");
    const wstring filled = message_text("IDS_FILE_READ", {u"the {1} file", u"no reason"});
    EXPECT_NE(filled.find(u"the {1} file"), wstring::npos) << "what is filled in is not filled in again";
    EXPECT_NE(filled.find(u"no reason"), wstring::npos);
}

TEST(Exceptions, CarryTheirTextsCausesAndIds) {
    const NumericException error(NumericException::Error::divideByZero);
    EXPECT_EQ(error.description(), u"Division by zero.");
    EXPECT_STREQ(error.what(), "Division by zero.");
    EXPECT_EQ(error.clsid(), NumericException::kClassId);
    EXPECT_EQ(Exception(nullptr).description(), u"");
    EXPECT_EQ(ContextException(u"x").clsid(), ContextException::kClassId);
    EXPECT_THROW(throw_error<TypeException>("IDS_NO_SUCH_TEXT"), Exception);
}

TEST(Exceptions, CarryWhatTheirMessagesWereMadeFrom) {
    const auto caught = [] {
        try {
            throw_error<TypeException>("IDS_FILE_READ", {u"a", u"b c"});
        } catch (const Exception& e) { // a copy of the part that all failures have
            return e;
        }
    };
    Exception e = caught();
    EXPECT_EQ(e.description(), message_text("IDS_FILE_READ", {u"a", u"b c"}));
    EXPECT_STREQ(e.messageId(), "IDS_FILE_READ");
    const std::vector<wstring> parameters(e.parameters().begin(), e.parameters().end());
    EXPECT_EQ(parameters, (std::vector<wstring>{u"a", u"b c"}));
    const Exception copy = e;
    e.setMessage("IDS_OTHER", {}); // of this one alone
    EXPECT_STREQ(e.messageId(), "IDS_OTHER");
    EXPECT_TRUE(e.parameters().empty());
    EXPECT_STREQ(copy.messageId(), "IDS_FILE_READ");
    EXPECT_EQ(copy.parameters().size(), 2U);
    e = Exception(u"own text");
    EXPECT_STREQ(e.messageId(), "");
    e.setMessage(nullptr, {});
    EXPECT_STREQ(e.messageId(), "");
}

TEST(Exceptions, EveryKindOfFailureHasItsOwnMessage) {
    std::set<wstring> texts;
    using Error = NumericException::Error;
    const Error errors[] = {Error::divideByZero, Error::negativePower, Error::overflow, Error::notANumber};
    for (const Error error : errors) {
        const NumericException e(error);
        EXPECT_EQ(e.error(), error);
        EXPECT_EQ(e.description(), message_text(e.messageId()));
        texts.insert(e.description());
    }
    EXPECT_STREQ(NumericException(u"own text").messageId(), "");
    EXPECT_STREQ(NumericException(Error::none).messageId(), "");
    EXPECT_EQ(NumericException(Error::none).description(), u"");
    using Kind = StorageException::Kind;
    const wstring url = u"lumstg://c:/1/";
    for (const Kind kind : {Kind::badFormat, Kind::isDestination, Kind::fileNotFound}) {
        const StorageException e(kind, url);
        EXPECT_EQ(e.kind(), kind);
        EXPECT_TRUE(e.description().ends_with(u" '" + url + u"'"));
        EXPECT_FALSE(e.description().starts_with(u"IDS_"));
        EXPECT_TRUE(e.description().starts_with(message_text(e.messageId())));
        EXPECT_EQ(e.parameters()[0], url);
        texts.insert(e.description());
    }
    EXPECT_EQ(StorageException(Kind::none, url).description(), u" '" + url + u"'");
    EXPECT_EQ(texts.size(), 7U);
}

TEST(Settings, CopiesAreIndependentAndPartsThatWereNotSetHaveTheirDefaults) {
    Settings first;
    first.locale = Locale("de");
    EXPECT_EQ(std::as_const(first).part<DateSettings>().firstDayOfWeek, 1);
    first.part<DateSettings>().timeZone = "Asia/Tokyo";
    DateSettings& part = first.part<DateSettings>();
    first.part<NumericSettings>().roundMode = NumericRoundMode::round15as10;
    EXPECT_EQ(&part, &first.part<DateSettings>()) << "a part stays where it is";

    Settings second = first;
    second.part<DateSettings>().firstDayOfWeek = 7;
    EXPECT_EQ(second.part<DateSettings>().timeZone, "Asia/Tokyo");
    EXPECT_EQ(second.part<NumericSettings>().roundMode, NumericRoundMode::round15as10);
    EXPECT_EQ(second.locale, Locale("de"));
    EXPECT_EQ(first.part<DateSettings>().firstDayOfWeek, 1);
    first = Settings();
    EXPECT_EQ(first.part<DateSettings>().timeZone, "");
    EXPECT_EQ(first.locale, Locale());
}

} // namespace
