// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/exceptions.h>
#include <core/runtime/internal_class.h>
#include <core/serialization/persistence.h>

namespace core {

namespace detail {

/// What every error object writes: its description, then the class id and body of its cause, if it has one.
CORE_API void serialize_exception(IOutPersistenceStorage* storage, const Exception& exception);
/// Reads that back.
struct StoredException {
    wstring description;
    InterfacePtr<IExceptionObject> cause;
};
[[nodiscard]] CORE_API StoredException deserialize_exception(IInPersistenceStorage* storage);

} // namespace detail

/// The error object of exception class `X`: holds one `X`, empty at first, and can be written and read back.
template <class X>
class IExceptionObjectImpl : public IExceptionObject,
                             public IPersistableObjectImpl<IExceptionObjectImpl<X>, &X::kClassId> {
  public:
    using Interfaces = InterfaceList<IExceptionObject, IPersistableObject>;

    void init(const Exception& e) override {
        // The whole exception where its class is the same, what all exceptions have otherwise.
        if (const auto* const same = dynamic_cast<const X*>(&e))
            held_ = *same;
        else
            static_cast<Exception&>(held_) = e;
    }
    [[noreturn]] void raise() override { throw X(held_); }
    Exception& exception() noexcept override { return held_; }

    void serialize(IOutPersistenceStorage* storage) const override {
        detail::serialize_exception(storage, held_);
    }
    void deserialize(IInPersistenceStorage* storage) override {
        const detail::StoredException stored = detail::deserialize_exception(storage);
        held_ = X(stored.description.c_str(), stored.cause.get());
    }

  private:
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
