// SPDX-License-Identifier: Apache-2.0
#include <core/lists/list_in_stream.h>
#include <core/lists/list_out_stream.h>
#include <core/persistence/persistence.h>
#include <core/runtime/exception.h>
#include <core/runtime/process.h>
#include <core/runtime/utf8.h>

namespace core {

void ListOutStorage::putFailure(const Exception& failure, std::span<const FailureField> fields) {
    const Nesting::Level level(nesting_);
    stream_.putBeginOfList();
    stream_.put(failure.description());
    for (const FailureField& field : fields)
        std::visit([this](const auto& datum) { stream_.put(datum); }, field);
    if (*failure.messageId() != '\0') { // where readers that do not know it find a cause of no class
        stream_.put(kNullGuid);
        stream_.putBeginOfList();
        stream_.put(from_utf8(failure.messageId()));
        for (const wstring& parameter : failure.parameters())
            stream_.put(parameter);
        stream_.putEndOfList();
    }
    if (failure.cause() != nullptr) {
        if (const InterfacePtr<IPersistableObject> cause(failure.cause()); cause) {
            stream_.put(cause->getCLSID());
            cause->serialize(this);
        }
    }
    stream_.putEndOfList();
}

void ListInStorage::getMessage(StoredFailure& stored) {
    wstring text;
    stream_.getBeginOfList();
    stream_.get(text);
    stored.messageId = to_utf8(text);
    while (stream_.getComma()) {
        stream_.get(text);
        stored.parameters.push_back(text);
    }
    stream_.getEndOfList();
}

StoredFailure ListInStorage::getFailure(std::span<FailureField> fields) {
    const Nesting::Level level(nesting_);
    StoredFailure stored;
    stream_.getBeginOfList();
    stream_.get(stored.description);
    for (FailureField& field : fields)
        std::visit([this](auto& datum) { stream_.get(datum); }, field);
    GUID clsid;
    bool more = stream_.getComma();
    if (more)
        stream_.get(clsid);
    if (more && clsid == kNullGuid) {
        getMessage(stored);
        more = stream_.getComma();
        if (more)
            stream_.get(clsid);
    }
    if (more) {
        if (current_process() != nullptr)
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
