// SPDX-License-Identifier: Apache-2.0
// Failures as objects: the twin of every class, raising, chains and their counts, what survives being written
// and read, and the way through a process from one module to another.
#include <core/files/errors.h>
#include <core/lists/errors.h>
#include <core/lists/list_in_stream.h>
#include <core/lists/list_out_stream.h>
#include <core/locales/errors.h>
#include <core/numbers/errors.h>
#include <core/persistence/errors.h>
#include <core/persistence/persistence.h>
#include <core/runtime/errors.h>
#include <core/runtime/exception_object.h>
#include <core/runtime/process.h>
#include <core/storage/errors.h>
#include <core/streams/errors.h>
#include <core/streams/memory_stream.h>
#include <core/tables/errors.h>
#include <core/types/errors.h>
#include <core/values/errors.h>
#include <core/values/generic_value.h>
#include <host/host_process.h>

#include <gtest/gtest.h>

#include <exception>
#include <functional>
#include <stdexcept>
#include <vector>

namespace core {
namespace {

template <class X>
void expect_twin() {
    const auto object = create_object<IExceptionObject>(X::kClassId);
    ASSERT_TRUE(object);
    const auto persistable = object.template query<IPersistableObject>();
    ASSERT_TRUE(persistable);
    EXPECT_EQ(persistable->getCLSID(), X::kClassId);
    EXPECT_EQ(object->exception().clsid(), X::kClassId);
    EXPECT_EQ(object->exception().description(), u"");
    EXPECT_THROW(object->raise(), X);
}

TEST(ExceptionObject, EveryClassHasItsTwin) {
    const host::HostProcess process;
    expect_twin<Exception>();
    expect_twin<COMException>();
    expect_twin<COMTypeException>();
    expect_twin<ComparatorException>();
    expect_twin<ContextException>();
    expect_twin<ConverterException>();
    expect_twin<CtorException>();
    expect_twin<DataSourceException>();
    expect_twin<FileException>();
    expect_twin<FileStreamException>();
    expect_twin<ListStreamException>();
    expect_twin<LocaleException>();
    expect_twin<NumericException>();
    expect_twin<PivotSourceException>();
    expect_twin<ProcessException>();
    expect_twin<RemotingException>();
    expect_twin<StorageException>();
    expect_twin<TypeDomainPatternProviderException>();
    expect_twin<TypeException>();
    expect_twin<ValueIsFilledException>();
    expect_twin<VersionException>();
}

/// The exception that an object raises, as its own type.
template <class X>
X raised(IExceptionObject* object) {
    X caught;
    try {
        object->raise();
    } catch (const X& e) {
        caught = e;
    }
    return caught;
}

/// References to an object, without the one that asking takes.
std::uint32_t references(IUnknown* object) {
    object->AddRef();
    return static_cast<std::uint32_t>(object->Release());
}

TEST(ExceptionObject, RaisesEqualExceptionsAgainAndAgain) {
    const host::HostProcess process;
    const auto cause = wrap_exception(ContextException(u"the reason"));
    const auto object = wrap_exception(FileException(u"no luck", u"file://x", 13, cause.get()));
    ASSERT_TRUE(object && cause);
    for (int i = 0; i < 2; ++i) {
        const auto e = raised<FileException>(object.get());
        EXPECT_EQ(e.description(), u"no luck");
        EXPECT_EQ(e.url(), u"file://x");
        EXPECT_EQ(e.systemError(), 13);
        EXPECT_EQ(e.cause(), cause.get());
        EXPECT_EQ(e.clsid(), FileException::kClassId);
        EXPECT_STREQ(e.what(), "no luck");
        EXPECT_THROW(object->raise(), Exception); // handlers of the base catch it, too
    }
    EXPECT_EQ(Exception(static_cast<const wchar*>(nullptr)).description(), u"");
}

TEST(ExceptionObject, FailuresOfOthersSayWhatIsKnownOfThem) {
    const host::HostProcess process;
    const auto said = [](const auto& failure) {
        const auto object = wrap_exception(std::make_exception_ptr(failure));
        const Exception& e = object->exception();
        EXPECT_STREQ(e.messageId(), messages::kUnknownFailure);
        return std::vector<wstring>(e.parameters().begin(), e.parameters().end());
    };
    EXPECT_EQ(said(std::runtime_error("no luck")), std::vector<wstring>{u"no luck"});
    EXPECT_EQ(said(42), std::vector<wstring>{u"?"});
    EXPECT_THROW(wrap_exception(std::make_exception_ptr(Exception(u"ours")))->raise(), Exception);
}

TEST(ExceptionObject, ExceptionsCountTheirCauses) {
    const host::HostProcess process;
    const auto cause = wrap_exception(Exception(u"cause"));
    const auto before = references(cause.get());
    {
        const Exception e(u"effect", cause.get());
        EXPECT_EQ(references(cause.get()), before + 1);
        Exception copy(e);
        EXPECT_EQ(references(cause.get()), before + 2);
        copy = Exception();
        EXPECT_EQ(references(cause.get()), before + 1);
    }
    EXPECT_EQ(references(cause.get()), before);
}

wstring serialized(IExceptionObject* object) {
    MemoryOutStream stream;
    ListOutStream out(stream);
    ListOutStorage storage(out);
    InterfacePtr<IPersistableObject>(object)->serialize(&storage);
    return stream.take();
}

InterfacePtr<IExceptionObject> deserialized(const GUID& clsid, const wstring& text) {
    MemoryInStream stream(text);
    ListInStream in(stream);
    ListInStorage storage(in);
    auto object = create_object<IExceptionObject>(clsid);
    object.query<IPersistableObject>()->deserialize(&storage);
    return object;
}

/// What an exception is after it was wrapped, written, read and raised.
template <class X>
X through_text(const X& e) {
    return raised<X>(deserialized(X::kClassId, serialized(wrap_exception(e).get())).get());
}

TEST(ExceptionObject, WhatAnExceptionHoldsSurvivesText) {
    const host::HostProcess process;
    const auto inner = wrap_exception(NumericException(NumericException::Error::divideByZero));
    const auto cause =
        wrap_exception(StorageException(StorageException::Kind::badFormat, u"lumstg://a\"b", inner.get()));

    const auto file = through_text(FileException(u"a \"text\"\n", u"file://\xD83D\xDE00", -5, cause.get()));
    EXPECT_EQ(file.description(), u"a \"text\"\n");
    EXPECT_EQ(file.url(), u"file://\xD83D\xDE00");
    EXPECT_EQ(file.systemError(), -5);
    const auto storage = raised<StorageException>(file.cause());
    EXPECT_EQ(storage.kind(), StorageException::Kind::badFormat);
    EXPECT_EQ(storage.url(), u"lumstg://a\"b");
    EXPECT_EQ(storage.description(), cause->exception().description());
    const auto numeric = raised<NumericException>(storage.cause());
    EXPECT_EQ(numeric.error(), NumericException::Error::divideByZero);
    EXPECT_EQ(numeric.description(), inner->exception().description());
    EXPECT_EQ(numeric.cause(), nullptr);

    const auto comparator =
        through_text(ComparatorException(ComparatorException::Error::incomparable, u"no order"));
    EXPECT_EQ(comparator.error(), ComparatorException::Error::incomparable);
    EXPECT_EQ(comparator.description(), u"no order");
    const auto type = through_text(COMTypeException(-7, TypeException::kClassId, u"type"));
    EXPECT_EQ(type.error(), -7);
    EXPECT_EQ(type.type(), TypeException::kClassId);
    EXPECT_EQ(through_text(LocaleException(u"plain")).description(), u"plain");
    EXPECT_STREQ(numeric.messageId(), messages::kDivideByZero);
    EXPECT_STREQ(storage.messageId(), messages::kStorageBadFormat);
    EXPECT_STREQ(file.messageId(), "");

    ContextException named(u"named", cause.get());
    named.setMessage("IDS_X", std::vector<wstring>{u"", u"a \"b\"", u"{0}"});
    const auto back = through_text(named);
    EXPECT_STREQ(back.messageId(), "IDS_X");
    EXPECT_EQ(std::vector<wstring>(back.parameters().begin(), back.parameters().end()),
              (std::vector<wstring>{u"", u"a \"b\"", u"{0}"}));
    EXPECT_STREQ(raised<StorageException>(back.cause()).messageId(), messages::kStorageBadFormat);
    const wstring zero(u"a\0b", 3);
    EXPECT_EQ(through_text(Exception(zero)).description(), zero);
    EXPECT_EQ(through_text(ComparatorException(ComparatorException::Error::none, zero)).description(), zero);
    EXPECT_EQ(through_text(COMTypeException(0, kNullGuid, zero)).description(), zero);
}

TEST(ExceptionObject, TextThatDoesNotFitChangesNothing) {
    const host::HostProcess process;
    const auto object = wrap_exception(NumericException(NumericException::Error::overflow));
    for (const wchar* const text : {u"", u"{}", u"{\"x\"}", u"{\"x\",1", u"{\"x\",1,}", u"{\"x\",1,2,3}",
                                    u"{\"x\",1,00000000-0000-0000-0000-000000000000,{}}",
                                    u"{\"x\",1,00000000-0000-0000-0000-000000000000,{\"IDS_X\",7}}"}) {
        MemoryInStream stream(text);
        ListInStream in(stream);
        ListInStorage storage(in);
        EXPECT_THROW(object.query<IPersistableObject>()->deserialize(&storage), ListStreamException);
        EXPECT_EQ(raised<NumericException>(object.get()).error(), NumericException::Error::overflow);
    }
    // What versions without message ids have written.
    const auto old = raised<NumericException>(
        deserialized(NumericException::kClassId, u"{\"x\",2,f6f167a0-dcc9-49ad-8f8e-2c9d9904e4fe,{\"y\"}}")
            .get());
    EXPECT_EQ(old.error(), NumericException::Error::negativePower);
    EXPECT_STREQ(old.messageId(), "");
    EXPECT_EQ(raised<Exception>(old.cause()).description(), u"y");
    // A cause of a class that is not known here ends the chain.
    const auto e = raised<Exception>(
        deserialized(Exception::kClassId, u"{\"x\",00000000-0000-0000-0000-00000000abcd,{\"}\",{1}}}").get());
    EXPECT_EQ(e.description(), u"x");
    EXPECT_EQ(e.cause(), nullptr);
}

TEST(ExceptionObject, ChainsAreWalkedAndBounded) {
    const host::HostProcess process;
    InterfacePtr<IExceptionObject> last;
    for (int i = 0; i < Nesting::kMaxDepth; ++i)
        last = wrap_exception(Exception(u"link", last.get()));
    const auto back = deserialized(Exception::kClassId, serialized(last.get()));
    int links = 0;
    for (IExceptionObject* link = back.get(); link != nullptr; link = link->exception().cause())
        ++links;
    EXPECT_EQ(links, Nesting::kMaxDepth);
    last = wrap_exception(Exception(u"one too many", last.get()));
    EXPECT_THROW(serialized(last.get()), ListStreamException);
    // The reader has the same limit.
    wstring text = u"{\"link\"}";
    for (int i = 0; i < Nesting::kMaxDepth; ++i)
        text = u"{\"link\"," + to_string(Exception::kClassId) + u',' + text + u'}';
    EXPECT_THROW(deserialized(Exception::kClassId, text), ListStreamException);
}

TEST(ExceptionObject, AFailureCrossesAnInterface) {
    const host::HostProcess process;
    // What a module does that must not let exceptions out, and what its caller does.
    const auto callee = [](const std::function<void()>& work) -> InterfacePtr<IExceptionObject> {
        try {
            work();
        } catch (const Exception& e) {
            return wrap_exception(e);
        }
        return {};
    };
    const auto failure = callee([] { static_cast<void>(GenericValue::fromString(u"{\"N\",x}")); });
    ASSERT_TRUE(failure);
    EXPECT_THROW(failure->raise(), ListStreamException);
    // An object takes the common part of an exception of another class.
    const auto other = create_object<IExceptionObject>(ContextException::kClassId);
    other->init(failure->exception());
    EXPECT_EQ(raised<ContextException>(other.get()).description(), failure->exception().description());
    EXPECT_EQ(other->exception().clsid(), ListStreamException::kClassId);
    // Nothing of what it held before stays.
    const auto numeric = wrap_exception(NumericException(NumericException::Error::overflow, {}, other.get()));
    numeric->init(failure->exception());
    EXPECT_EQ(raised<NumericException>(numeric.get()).error(), NumericException::Error::none);
    EXPECT_EQ(numeric->exception().cause(), nullptr);
    EXPECT_FALSE(callee([] {}));
}

/// A class that no module declares an error object for.
struct Stranger : BasicException<Stranger> {
    static constexpr GUID kClassId = "9f1f2d0f-53ab-44c5-9a60-6c8cbb5ba8a1"_guid;
    using BasicException::BasicException;
};

TEST(ExceptionObject, AFailureWithoutATwinIsWrappedAsWhatAllFailuresAre) {
    const auto expect_wrapped = [](const auto& e, const GUID& made) {
        const auto object = wrap_exception(e);
        ASSERT_TRUE(object);
        EXPECT_EQ(object.template query<IPersistableObject>()->getCLSID(), made);
        const auto back = raised<Exception>(object.get());
        EXPECT_EQ(back.description(), e.description());
        EXPECT_EQ(back.clsid(), e.clsid());
        EXPECT_EQ(back.cause(), e.cause());
    };
    const auto cause = wrap_exception(Exception(u"cause")); // without a process, too
    expect_wrapped(ContextException(u"no process", cause.get()), Exception::kClassId);
    const host::HostProcess process;
    expect_wrapped(Stranger(u"no twin", cause.get()), Exception::kClassId);
    expect_wrapped(ProcessInitException(u"no twin"), Exception::kClassId);
    expect_wrapped(ContextException(u"a twin", cause.get()), ContextException::kClassId);
    EXPECT_EQ(raised<Exception>(
                  deserialized(Exception::kClassId, serialized(wrap_exception(Stranger(u"x")).get())).get())
                  .description(),
              u"x");
}

TEST(ExceptionObject, DamagedBlocksAreFailuresOfTheFamily) {
    const host::HostProcess process;
    const ChainInFileExc chain(4096);
    EXPECT_EQ(chain.address(), 4096U);
    EXPECT_NE(chain.description().find(u"4096"), wstring::npos);
    EXPECT_EQ(raised<StorageException>(wrap_exception(chain).get()).kind(),
              StorageException::Kind::badFormat);
    EXPECT_EQ(through_text(static_cast<const StorageException&>(chain)).description(), chain.description());
    const HexConvExc number;
    EXPECT_FALSE(number.description().empty() || number.description().starts_with(u"IDS_"));
    EXPECT_EQ(raised<ConverterException>(wrap_exception(number).get()).description(), number.description());
}

} // namespace
} // namespace core
