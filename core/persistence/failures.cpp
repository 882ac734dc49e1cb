// SPDX-License-Identifier: Apache-2.0
#include "core/persistence/failures.h"

#include <core/lists/list_in_stream.h>
#include <core/lists/list_out_stream.h>
#include <core/lists/nesting.h>
#include <core/runtime/exception.h>
#include <core/runtime/process.h>
#include <core/runtime/utf8.h>

namespace core::detail {

void put_failure(IOutPersistenceStorage& storage, const Exception& failure,
                 std::span<const FailureField> fields) {
    const Nesting::Level level(storage.nesting());
    ListOutStream& out = storage.listStream();
    out.putBeginOfList();
    out.put(failure.description());
    for (const FailureField& field : fields)
        std::visit([&out](const auto& datum) { out.put(datum); }, field);
    if (*failure.messageId() != '\0') { // where readers that do not know it find a cause of no class
        out.put(kNullGuid);
        out.putBeginOfList();
        out.put(from_utf8(failure.messageId()));
        for (const wstring& parameter : failure.parameters())
            out.put(parameter);
        out.putEndOfList();
    }
    if (failure.cause() != nullptr) {
        if (const InterfacePtr<IPersistableObject> cause(failure.cause()); cause) {
            out.put(cause->getCLSID());
            cause->serialize(&storage);
        }
    }
    out.putEndOfList();
}

namespace {

void get_message(ListInStream& in, StoredFailure& stored) {
    wstring text;
    in.getBeginOfList();
    in.get(text);
    stored.messageId = to_utf8(text);
    while (in.getComma()) {
        in.get(text);
        stored.parameters.push_back(text);
    }
    in.getEndOfList();
}

} // namespace

StoredFailure get_failure(IInPersistenceStorage& storage, std::span<FailureField> fields) {
    const Nesting::Level level(storage.nesting());
    ListInStream& in = storage.listStream();
    StoredFailure stored;
    in.getBeginOfList();
    in.get(stored.description);
    for (FailureField& field : fields)
        std::visit([&in](auto& datum) { in.get(datum); }, field);
    GUID clsid;
    bool more = in.getComma();
    if (more)
        in.get(clsid);
    if (more && clsid == kNullGuid) {
        get_message(in, stored);
        more = in.getComma();
        if (more)
            in.get(clsid);
    }
    if (more) {
        if (current_process() != nullptr)
            stored.cause = create_object<IExceptionObject>(clsid);
        if (const auto body = stored.cause.query<IPersistableObject>(); body)
            body->deserialize(&storage);
        else // an error object of a module that is not here: the chain ends
            in.skipListContent();
    }
    in.getEndOfList();
    return stored;
}

} // namespace core::detail
