// SPDX-License-Identifier: Apache-2.0
// Concerns: the example module comes, is used in both languages and goes, as often as wanted, with threads
// alive; it stays while anything of it is held; exceptions of its own class travel both ways; what is refused
// leaves nothing behind; two processes; modules that come and go while other threads work.
#include "examples/module/counter.h"
#include "tests/modules/fixtures/listener.h"
#include "tests/support/bytes_in_use.h"
#include "tests/support/library.h"
#include "tests/support/rounds.h"

#include <core/context.h>
#include <core/context/events/event_service.h>
#include <core/objects/enumeration.h>
#include <core/runtime.h>
#include <core/script/engine.h>
#include <core/streams/text_reader.h>
#include <core/values.h>
#include <core/values/type_service.h>
#include <host/host_process.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdlib>
#include <functional>
#include <future>
#include <iostream>
#include <optional>
#include <span>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace core;
using counter::ICounters;
using counter::LimitException;

/// A class of the program itself, which every process of it has.
class OwnOfProgram : public ScriptObject<OwnOfProgram> {
  public:
    static constexpr ClassNames names{u"OwnOfProgram", u"СвоеОтПрограммы"};
    static auto members() { return core::members(); }
};

/// An object of the program that others listen to, and one that listens.
class Notes : public ScriptObject<Notes, IConnectionPointContainer> {
  public:
    static constexpr ClassNames names{u"Notes", u"Заметки"};
    static auto members() { return core::members(); }
    auto points() { return std::array<IConnectionPoint*, 1>{&noted}; }
    ConnectionPoint<listener::INoted> noted{*this, named<u"Noted", u"ПриЗаметке">};
};
class Reader : public listener::INoted {
  public:
    using Interfaces = InterfaceList<INoted>;
    void noted() override { ++heard; }
    int heard = 0;
};

/// The file of a module; the counter may be one that was built elsewhere, in another way.
std::string file_of(const std::string& module) {
    const char* const other = std::getenv("CORE_TEST_COUNTER");
    if (module == "counter" && other != nullptr)
        return other;
    return CORE_TEST_MODULES "/lib" + module + CORE_TEST_SUFFIX;
}

GenericValue make(const wchar* type) {
    return Type(wstring_view(type)).get()->construct({});
}
GenericValue get(const GenericValue& object, const wchar* name) {
    GenericValue value;
    const auto context = object.query<IContext_>();
    context->getPropVal(context->findProp(name), value);
    return value;
}
void set(const GenericValue& object, const wchar* name, const GenericValue& value) {
    const auto context = object.query<IContext_>();
    context->setPropVal(context->findProp(name), value);
}
void call(const GenericValue& object, const wchar* name, const GenericValue& argument) {
    std::vector<GenericValue> arguments{argument};
    const auto context = object.query<IContext_>();
    context->call(context->findMethod(name), nullptr, &arguments);
}
/// What a bare name in a script means; nothing for an unknown one.
std::optional<GenericValue> enumeration(const wchar* name) {
    auto* const all = get_service<IEnumerations>();
    const int prop = all->findProp(name);
    if (prop < 0)
        return std::nullopt;
    GenericValue value;
    all->getPropVal(prop, value);
    return value;
}

/// The message id of the failure that `work` throws as `E`, and what it says.
template <class E>
std::pair<std::string, std::string> failure(const std::function<void()>& work) {
    try {
        work();
    } catch (const E& e) {
        return {e.messageId(), e.what()};
    }
    return {"nothing was thrown", ""};
}

bool is_mapped(const std::string& module) {
    return support::Library::isLoaded(file_of(module));
}

class Modules : public testing::Test {
  protected:
    Modules() { Thread::setResourceLocale(Locale("en")); }

    /// Unloads the counter and expects that the module stays because of `name`.
    void expectHeld(const std::string& name) {
        const auto [id, text] = failure<ModuleException>([&] { process_.unloadModule("counter"); });
        EXPECT_EQ(id, messages::kModuleInUse);
        EXPECT_NE(text.find(name + " 1"), std::string::npos) << text;
        EXPECT_EQ(process_.modules().back()->info().name, "counter");
    }
    void expectUnloads() {
        EXPECT_NO_THROW(process_.unloadModule("counter"));
        EXPECT_FALSE(is_mapped("counter"));
    }

    host::HostProcess process_;
};

void use_the_counter() {
    Thread::setResourceLocale(Locale("ru"));
    const GenericValue one = make(u"Счетчик");
    wstring heard;
    const auto sink = make_event_sink(
        [&](std::span<const GenericValue> arguments) { heard += arguments[0].presentation() + u' '; });
    get_service<IEventService>()->connect(one.object(), u"ПриИзменении", sink.get());
    call(one, u"Add", GenericValue(Numeric::fromString("1.5")));
    call(one, u"добавить", GenericValue(2));
    EXPECT_EQ(heard, u"1.5 3.5 ");
    EXPECT_EQ(get(one, u"Всего").presentation(), u"3.5");
    EXPECT_EQ(one.type().presentation(), u"Счётчик");
    set(one, u"Направление", get(*enumeration(u"CounterDirection"), u"Вниз"));
    EXPECT_EQ(get(one, u"Direction").presentation(), u"Вниз");
    const auto in = [&](const char* locale) {
        Thread::setResourceLocale(Locale(locale));
        return failure<LimitException>([&] { call(one, u"Add", GenericValue(7)); });
    };
    EXPECT_EQ(in("en"), std::pair(std::string("COUNTER_LIMIT"),
                                  std::string("The counter cannot reach -3.5: it counts from 0 to 100.")));
    EXPECT_EQ(in("ru").second, "Счётчик не может дойти до -3.5: он считает от 0 до 100.");
    EXPECT_EQ(message_text("COUNTER"), u"COUNTER") << "the program does not have the texts of the module";
    EXPECT_GE(get_service<ICounters>()->made(), 1);
    Thread::setResourceLocale(Locale("en"));
}

TEST_F(Modules, ComeAreUsedAndGoWithThreadsAlive) {
    EXPECT_THROW(make(u"Counter"), TypeException); // the look-up that comes before the module
    EXPECT_FALSE(enumeration(u"CounterDirection"));
    std::promise<void> end;
    std::thread other; // has counted objects of the module when it ends
    std::size_t before = 0;
    const std::size_t registered = registered_modules().size();
    for (int round = 0; round < (support::is_nightly() ? 1000 : 20); ++round) {
        if (round == 10) // what is made once is made by then
            before = test::bytes_in_use();
        const SCOM_Module& module = process_.loadModule(file_of("counter"));
        ASSERT_EQ(module.info().version, "1.0");
        use_the_counter();
        if (round == 0) {
            std::promise<void> used;
            other = std::thread([&, ended = end.get_future()]() mutable {
                {
                    const host::HostProcess::ThreadScope scope(process_);
                    use_the_counter();
                }
                used.set_value();
                ended.wait();
            });
            used.get_future().wait();
        }
        process_.unloadModule("counter");
        ASSERT_FALSE(is_mapped("counter"));
        ASSERT_EQ(registered_modules().size(), registered);
        ASSERT_THROW(make(u"Счетчик"), TypeException);
        ASSERT_FALSE(enumeration(u"CounterDirection"));
        ASSERT_EQ(get_service<ICounters>(), nullptr);
        for (const LiveClass& living : live_report())
            ASSERT_EQ(living.name.find("Counter"), std::string::npos) << living.name;
    }
    EXPECT_LT(test::bytes_in_use(), before + (std::size_t{1} << 16));
    end.set_value();
    other.join();
    EXPECT_EQ(failure<ModuleException>([&] { process_.unloadModule("counter"); }).first,
              messages::kModuleNotLoaded);
}

TEST_F(Modules, AreForgottenWithTheCountsOfThreadsThatEnded) {
    process_.loadModule(file_of("counter"));
    GenericValue one;
    Thread(u"maker", [&] { one = make(u"Counter"); }).join();
    one = {}; // here, so that each thread has counted its half
    expectUnloads();
    for (const LiveClass& living : live_report())
        EXPECT_EQ(living.name.find("Counter"), std::string::npos) << living.name << ' ' << living.count;
}

TEST(Libraries, ThatCountedObjectsAreUnmappedByTheSystemWhenItLikes) {
    std::promise<void> end;
    std::promise<void> used;
    std::optional<support::Library> library(file_of("plain"));
    const auto count_one = library->function<int()>("count_one");
    std::thread other([&, ended = end.get_future()]() mutable {
        EXPECT_EQ(count_one(), 1);
        used.set_value();
        ended.wait();
    });
    used.get_future().wait();
    EXPECT_EQ(count_one(), 1);
    library.reset();
    EXPECT_FALSE(is_mapped("plain"));
    const auto has_plain = [] {
        return std::ranges::any_of(live_report(),
                                   [](const LiveClass& living) { return living.name.ends_with("Plain"); });
    };
    EXPECT_FALSE(has_plain());
    end.set_value();
    other.join();
    EXPECT_FALSE(has_plain());
}

TEST_F(Modules, StayWhileAnythingOfThemIsHeld) {
    process_.loadModule(file_of("counter"));
    {
        const GenericValue object = make(u"Counter");
        expectHeld("Counter");
        call(object, u"Add", GenericValue(1));
        EXPECT_EQ(get(object, u"Total").presentation(), u"1");
        EXPECT_EQ(get(make(u"Counter"), u"Total").presentation(), u"0") << "the classes are there again";
    }
    {
        const GenericValue type(Type(u"Counter"));
        expectHeld("Counter");
        const GenericValue copy = type;
        EXPECT_EQ(copy.presentation(), u"Counter");
    }
    {
        const GenericValue value = get(*enumeration(u"CounterDirection"), u"Up");
        expectHeld("CounterDirection");
        EXPECT_EQ(value.presentation(), u"Upwards");
    }
    {
        const InterfacePtr<ICounters> service(process_.get());
        expectHeld("Counters");
        EXPECT_NE(get_service<ICounters>(), nullptr);
    }
    {
        const auto object = wrap_exception(LimitException(u"too far"));
        EXPECT_EQ(object->exception().clsid(), LimitException::kClassId);
        expectHeld("LimitException>");
    }
    expectUnloads();
}

TEST_F(Modules, StayWhileTheirCodeIsConnectedOrOffered) {
    process_.loadModule(file_of("listener"));
    const auto listening = [] { return create_object<listener::IListener>(listener::kListener); };
    const auto unload = [this] { process_.unloadModule("listener"); };
    int heard = 0;
    Event<int> changed{named<u"Changed", u"ПриИзменении">};
    for (const auto by : {listener::By::smallCallable, listener::By::largeCallable, listener::By::object}) {
        const Connection connection = listening()->listen(changed, heard, by);
        ASSERT_EQ(failure<ModuleException>(unload).first, messages::kModuleInUse) << static_cast<int>(by);
        changed.raise(1);
        EXPECT_EQ(heard, static_cast<int>(by) + 1);
    }
    {
        const NativeFunction function = listening()->offer(heard);
        EXPECT_EQ(failure<ModuleException>(unload).first, messages::kModuleInUse);
        function({});
        EXPECT_EQ(heard, 4);
    }
    // What the program was handed as a plain function, and gives to code that keeps it.
    const auto expectHeldBy = [&](const auto& keeper) {
        const auto [id, text] = failure<ModuleException>(unload);
        EXPECT_EQ(id, messages::kModuleInUse) << typeid(keeper).name();
        EXPECT_NE(text.find("std::function"), std::string::npos) << text;
    };
    {
        const NativeFunction function(listening()->plain());
        expectHeldBy(function);
        std::vector<GenericValue> arguments{GenericValue(21)};
        EXPECT_EQ(function(arguments).presentation(), u"42");
    }
    {
        const Connection connection = changed.connect(listening()->object(heard));
        expectHeldBy(connection);
        changed.raise(1);
        EXPECT_EQ(heard, 5);
    }
    expectHeldBy(make_event_sink(listening()->sink()));
    expectHeldBy(TextReader(listening()->opener()(u""), u"nothing"));
    {
        script::Engine engine;
        engine.output(listening()->printer(heard));
        expectHeldBy(engine);
        engine.run(u"Print(1)");
        EXPECT_EQ(heard, 6);
        engine.output(std::cout);
        engine.input(listening()->opener());
        expectHeldBy(engine);
    }
    // Who has connected a sink of the program's own may go.
    const auto notes = make_object<Notes>();
    const auto reader = make_object<Reader>();
    const Connection connection = listening()->introduce(notes->noted, reader.get());
    unload();
    EXPECT_FALSE(is_mapped("listener"));
    notes->noted.raise([](listener::INoted& sink) { sink.noted(); });
    EXPECT_EQ(reader->heard, 1);
}

TEST_F(Modules, ExceptionsOfTheirOwnClassTravelBothWays) {
    process_.loadModule(file_of("counter"));
    {
        const GenericValue object = make(u"Counter");
        EXPECT_THROW(call(object, u"Add", GenericValue(101)), LimitException) << "by the class itself";
        try {
            call(object, u"Add", GenericValue(101));
        } catch (const Exception& e) { // as an error object
            const auto error = wrap_exception(e);
            EXPECT_THROW(error->raise(), LimitException);
            EXPECT_STREQ(error->exception().messageId(), "COUNTER_LIMIT");
        }
        auto& counters = *get_service<ICounters>();
        EXPECT_TRUE(counters.exceeds([] { throw LimitException(u"from outside"); }));
        EXPECT_THROW(counters.exceeds([] { throw CtorException(u"another"); }), CtorException);
    }
    expectUnloads();
}

TEST_F(Modules, WhatIsRefusedLeavesNothingBehind) {
    const auto load = [this](const std::string& file) {
        return failure<Exception>([&] { process_.loadModule(file); });
    };
    const std::size_t types = get_service<ITypeValueService>()->types().size();
    EXPECT_EQ(load(file_of("missing")).first, messages::kModuleMissing);
    EXPECT_EQ(load(CORE_TEST_MODULES "/counter/messages/root.res").first, messages::kModuleNotLoadable);
    EXPECT_EQ(load(file_of("plain")).first, messages::kModuleNone);
    EXPECT_EQ(load(file_of("misnamed")).first, messages::kModuleName);
    const auto [id, text] = load(file_of("newer"));
    EXPECT_EQ(id, messages::kModuleInterface);
    EXPECT_NE(text.find("version " + std::to_string(kInterfaceVersion + 1)), std::string::npos) << text;
    EXPECT_NE(text.find("has version " + std::to_string(kInterfaceVersion)), std::string::npos) << text;

    process_.loadModule(file_of("counter"));
    EXPECT_EQ(load(file_of("counter")).first, messages::kModuleTwice);
    const auto [claimId, claim] = load(file_of("claimer"));
    EXPECT_EQ(claimId, messages::kClassClaimed);
    EXPECT_NE(claim.find("counter"), std::string::npos) << claim;
    EXPECT_NE(claim.find("claimer"), std::string::npos) << claim;
    EXPECT_THROW(make(u"OwnOfClaimer"), TypeException);
    use_the_counter();
    expectUnloads();
    for (const char* const module : {"plain", "misnamed", "newer", "claimer"})
        EXPECT_FALSE(is_mapped(module)) << module;
    EXPECT_EQ(get_service<ITypeValueService>()->types().size(), types);
    EXPECT_EQ(process_.modules().size(), 2U) << "the library and the program";
}

TEST_F(Modules, AProcessHasWhatItLoadedAndWhatTheProgramDeclares) {
    process_.loadModule(file_of("counter"));
    {
        host::HostProcess second;
        EXPECT_TRUE(make(u"OwnOfProgram").query<IValue>());
        EXPECT_THROW(make(u"Counter"), TypeException);
        second.loadModule(file_of("counter"));
        process_.unloadModule("counter");
        EXPECT_TRUE(is_mapped("counter"));
        use_the_counter();
        process_.loadModule(file_of("claimer")); // nothing in its way there
    }                                            // lets go of its modules
    EXPECT_FALSE(is_mapped("counter"));
    EXPECT_TRUE(make(u"OwnOfClaimer").query<IValue>());
    process_.unloadModule("claimer");
    EXPECT_EQ(process_.modules().back()->info().name, "program");
}

TEST_F(Modules, ComeAndGoWhileOtherThreadsWork) {
    std::atomic<bool> end{false};
    std::vector<std::thread> threads;
    for (int i = 0; i < 2; ++i) {
        threads.emplace_back([&] {
            const host::HostProcess::ThreadScope scope(process_);
            while (!end) {
                EXPECT_TRUE(make(u"OwnOfProgram").query<IValue>());
                EXPECT_EQ(Type(u"число").code(), Type::number);
                EXPECT_FALSE(enumeration(u"NoSuchEnumeration"));
                static_cast<void>(message_text("COUNTER"));
            }
        });
    }
    for (int round = 0; round < (support::is_nightly() ? 300 : 20); ++round) {
        process_.loadModule(file_of("counter"));
        use_the_counter();
        process_.unloadModule("counter");
    }
    end = true;
    for (auto& thread : threads)
        thread.join();
}

} // namespace

CORE_MODULE("program", "1.0", OwnOfProgram)
