// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/lists/list_in_stream.h>
#include <core/lists/list_out_stream.h>
#include <core/persistence/persistence.h>
#include <core/runtime/exceptions.h>
#include <core/runtime/internal_class.h>

#include <cstdint>
#include <functional>
#include <tuple>
#include <type_traits>
#include <utility>

namespace core {

/// What exception class `X` holds besides description and cause, as tokens of a list: `of` takes it from an
/// exception, `make` builds one with it. Most classes hold nothing.
template <class X>
struct ExceptionData {
    using Tokens = std::tuple<>;
    static Tokens of(const X&) { return {}; }
    static X make(const wstring& description, IExceptionObject* cause) { return X(description, cause); }
};

template <>
struct ExceptionData<ComparatorException> {
    using Tokens = std::tuple<std::int32_t>;
    static Tokens of(const ComparatorException& e) { return {static_cast<std::int32_t>(e.error())}; }
    static ComparatorException make(const wstring& description, IExceptionObject* cause, std::int32_t error) {
        return ComparatorException(static_cast<ComparatorException::Error>(error), description, cause);
    }
};

template <>
struct ExceptionData<COMTypeException> {
    using Tokens = std::tuple<std::int32_t, GUID>;
    static Tokens of(const COMTypeException& e) { return {e.error(), e.type()}; }
    static COMTypeException make(const wstring& description, IExceptionObject* cause, std::int32_t error,
                                 const GUID& type) {
        return COMTypeException(error, type, description, cause);
    }
};

template <>
struct ExceptionData<NumericException> {
    using Tokens = std::tuple<std::int32_t>;
    static Tokens of(const NumericException& e) { return {static_cast<std::int32_t>(e.error())}; }
    static NumericException make(const wstring& description, IExceptionObject* cause, std::int32_t error) {
        return NumericException(static_cast<NumericException::Error>(error), description, cause);
    }
};

template <>
struct ExceptionData<FileException> {
    using Tokens = std::tuple<wstring, std::int32_t>;
    static Tokens of(const FileException& e) { return {e.url(), e.systemError()}; }
    static FileException make(const wstring& description, IExceptionObject* cause, const wstring& url,
                              std::int32_t systemError) {
        return FileException(description, url, systemError, cause);
    }
};

template <>
struct ExceptionData<StorageException> {
    using Tokens = std::tuple<std::int32_t, wstring>;
    static Tokens of(const StorageException& e) { return {static_cast<std::int32_t>(e.kind()), e.url()}; }
    static StorageException make(const wstring& description, IExceptionObject* cause, std::int32_t kind,
                                 const wstring& url) {
        return StorageException(static_cast<StorageException::Kind>(kind), url, description, cause);
    }
};

namespace detail {

/// Writes an error object's body: the description, what `data` writes, then the class id and body of the
/// cause, if there is one.
CORE_API void serialize_exception(IOutPersistenceStorage* storage, const Exception& exception,
                                  const std::function<void(ListOutStream&)>& data);
/// Reads that back.
struct StoredException {
    wstring description;
    InterfacePtr<IExceptionObject> cause;
};
[[nodiscard]] CORE_API StoredException deserialize_exception(IInPersistenceStorage* storage,
                                                             const std::function<void(ListInStream&)>& data);

} // namespace detail

/// The error object of exception class `X`: holds one `X`, empty at first, and can be written and read back.
template <class X>
class IExceptionObjectImpl : public IExceptionObject,
                             public IPersistableObjectImpl<IExceptionObjectImpl<X>, &X::kClassId> {
  public:
    using Interfaces = InterfaceList<IExceptionObject, IPersistableObject>;

    void init(const Exception& e) override {
        // The whole exception where its class is the same, what all exceptions have otherwise.
        X taken;
        if (const auto* const same = dynamic_cast<const X*>(&e))
            taken = *same;
        else
            static_cast<Exception&>(taken) = e;
        held_ = std::move(taken);
    }
    [[noreturn]] void raise() override { throw X(held_); }
    Exception& exception() noexcept override { return held_; }

    void serialize(IOutPersistenceStorage* storage) const override {
        detail::serialize_exception(storage, held_, [this](ListOutStream& out) {
            std::apply([&](const auto&... token) { (out.put(token), ...); }, ExceptionData<X>::of(held_));
        });
    }
    void deserialize(IInPersistenceStorage* storage) override {
        typename ExceptionData<X>::Tokens data;
        const detail::StoredException stored = detail::deserialize_exception(storage, [&](ListInStream& in) {
            std::apply([&](auto&... token) { (in.get(token), ...); }, data);
        });
        held_ = std::apply(
            [&](const auto&... token) {
                return ExceptionData<X>::make(stored.description, stored.cause.get(), token...);
            },
            data);
    }

  private:
    static_assert(std::is_nothrow_move_assignable_v<X>, "taking a failure must not fail half-way");

    X held_;
};

using ExceptionObject = IExceptionObjectImpl<Exception>;
using COMExceptionObject = IExceptionObjectImpl<COMException>;
using COMTypeExceptionObject = IExceptionObjectImpl<COMTypeException>;
using ComparatorExceptionObject = IExceptionObjectImpl<ComparatorException>;
using ContextExceptionObject = IExceptionObjectImpl<ContextException>;
using ConverterExceptionObject = IExceptionObjectImpl<ConverterException>;
using CtorExceptionObject = IExceptionObjectImpl<CtorException>;
using DataSourceExceptionObject = IExceptionObjectImpl<DataSourceException>;
using FileExceptionObject = IExceptionObjectImpl<FileException>;
using FileStreamExceptionObject = IExceptionObjectImpl<FileStreamException>;
using ListStreamExceptionObject = IExceptionObjectImpl<ListStreamException>;
using LocaleExceptionObject = IExceptionObjectImpl<LocaleException>;
using NumericExceptionObject = IExceptionObjectImpl<NumericException>;
using PivotSourceExceptionObject = IExceptionObjectImpl<PivotSourceException>;
using RemotingExceptionObject = IExceptionObjectImpl<RemotingException>;
using StorageExceptionObject = IExceptionObjectImpl<StorageException>;
using TypeDomainPatternProviderExceptionObject = IExceptionObjectImpl<TypeDomainPatternProviderException>;
using TypeExceptionObject = IExceptionObjectImpl<TypeException>;
using ValueIsFilledExceptionObject = IExceptionObjectImpl<ValueIsFilledException>;
using VersionExceptionObject = IExceptionObjectImpl<VersionException>;

/// The error object for a caught exception, made by class id in the current process: how a failure leaves a
/// module. Null when the process makes no such object.
[[nodiscard]] CORE_API InterfacePtr<IExceptionObject> wrap_exception(const Exception& e);

} // namespace core
