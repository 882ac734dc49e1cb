// SPDX-License-Identifier: Apache-2.0
#include <core/lists/list_in_stream.h>
#include <core/lists/list_out_stream.h>
#include <core/persistence/persistence.h>
#include <core/runtime/exception.h>
#include <core/runtime/process.h>

namespace core {

void ListOutStorage::putFailure(const Exception& failure, std::span<const FailureField> fields) {
    const Nesting::Level level(nesting_);
    stream_.putBeginOfList();
    stream_.put(failure.description());
    for (const FailureField& field : fields)
        std::visit([this](const auto& datum) { stream_.put(datum); }, field);
    if (failure.cause() != nullptr) {
        if (const InterfacePtr<IPersistableObject> cause(failure.cause()); cause) {
            stream_.put(cause->getCLSID());
            cause->serialize(this);
        }
    }
    stream_.putEndOfList();
}

StoredFailure ListInStorage::getFailure(std::span<FailureField> fields) {
    const Nesting::Level level(nesting_);
    StoredFailure stored;
    stream_.getBeginOfList();
    stream_.get(stored.description);
    for (FailureField& field : fields)
        std::visit([this](auto& datum) { stream_.get(datum); }, field);
    if (stream_.getComma()) {
        GUID clsid;
        stream_.get(clsid);
        stored.cause = create_object<IExceptionObject>(clsid);
        if (const auto body = stored.cause.query<IPersistableObject>(); body)
            body->deserialize(this);
        else // an error object of a module that is not here: the chain ends
            stream_.skipListContent();
    }
    stream_.getEndOfList();
    return stored;
}

} // namespace core
