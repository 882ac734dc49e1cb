// SPDX-License-Identifier: Apache-2.0
#include <core/lists/list_in_stream.h>
#include <core/lists/list_out_stream.h>
#include <core/persistence/exception_object.h>
#include <core/runtime/class_entry.h>
#include <core/runtime/process.h>

namespace core {
namespace {

template <class X>
using ErrorClass = SCOM_ClassEntryInit<IExceptionObjectImpl<X>, &X::kClassId>;

const ErrorClass<Exception> kException("ExceptionObject");
const ErrorClass<COMException> kComException("COMExceptionObject");
const ErrorClass<COMTypeException> kComTypeException("COMTypeExceptionObject");
const ErrorClass<ComparatorException> kComparatorException("ComparatorExceptionObject");
const ErrorClass<ContextException> kContextException("ContextExceptionObject");
const ErrorClass<ConverterException> kConverterException("ConverterExceptionObject");
const ErrorClass<CtorException> kCtorException("CtorExceptionObject");
const ErrorClass<DataSourceException> kDataSourceException("DataSourceExceptionObject");
const ErrorClass<FileException> kFileException("FileExceptionObject");
const ErrorClass<FileStreamException> kFileStreamException("FileStreamExceptionObject");
const ErrorClass<ListStreamException> kListStreamException("ListStreamExceptionObject");
const ErrorClass<LocaleException> kLocaleException("LocaleExceptionObject");
const ErrorClass<NumericException> kNumericException("NumericExceptionObject");
const ErrorClass<PivotSourceException> kPivotSourceException("PivotSourceExceptionObject");
const ErrorClass<RemotingException> kRemotingException("RemotingExceptionObject");
const ErrorClass<StorageException> kStorageException("StorageExceptionObject");
const ErrorClass<TypeDomainPatternProviderException>
    kTypeDomainPatternProviderException("TypeDomainPatternProviderExceptionObject");
const ErrorClass<TypeException> kTypeException("TypeExceptionObject");
const ErrorClass<ValueIsFilledException> kValueIsFilledException("ValueIsFilledExceptionObject");
const ErrorClass<VersionException> kVersionException("VersionExceptionObject");

} // namespace

void detail::serialize_exception(IOutPersistenceStorage* storage, const Exception& exception,
                                 const std::function<void(ListOutStream&)>& data) {
    const Nesting::Level level(storage->nesting());
    ListOutStream& out = storage->listStream();
    out.putBeginOfList();
    out.put(exception.description());
    data(out);
    if (exception.cause() != nullptr) {
        if (const InterfacePtr<IPersistableObject> cause(exception.cause()); cause) {
            out.put(cause->getCLSID());
            cause->serialize(storage);
        }
    }
    out.putEndOfList();
}

detail::StoredException detail::deserialize_exception(IInPersistenceStorage* storage,
                                                      const std::function<void(ListInStream&)>& data) {
    const Nesting::Level level(storage->nesting());
    ListInStream& in = storage->listStream();
    StoredException stored;
    in.getBeginOfList();
    in.get(stored.description);
    data(in);
    if (in.getComma()) {
        GUID clsid;
        in.get(clsid);
        stored.cause = create_object<IExceptionObject>(clsid);
        if (const auto body = stored.cause.query<IPersistableObject>(); body)
            body->deserialize(storage);
        else // an error object of a module that is not here: the chain ends
            in.skipListContent();
    }
    in.getEndOfList();
    return stored;
}

InterfacePtr<IExceptionObject> wrap_exception(const Exception& e) {
    auto object = create_object<IExceptionObject>(e.clsid());
    if (object)
        object->init(e);
    return object;
}

} // namespace core
