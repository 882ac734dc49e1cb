// SPDX-License-Identifier: Apache-2.0
#include <core/runtime/exception.h>
#include <core/runtime/utf8.h>

#include <vector>

namespace core {

struct Exception::Message {
    std::string id;
    std::vector<wstring> parameters;
};

Exception::Exception(const wchar* description, IExceptionObject* cause)
    : Exception(kClassId, description, cause) {}

Exception::Exception(const wstring& description, IExceptionObject* cause)
    : Exception(kClassId, description, cause) {}

Exception::Exception(const GUID& clsid, const wstring& description, IExceptionObject* cause)
    : clsid_(clsid), description_(description), cause_(cause), what_(to_utf8(description)) {}

Exception::Exception(const GUID& clsid, const wchar* description, IExceptionObject* cause)
    : Exception(clsid, description != nullptr ? wstring(description) : wstring(), cause) {}

Exception::Exception(const Exception&) = default;
Exception::Exception(Exception&&) noexcept = default;
Exception& Exception::operator=(const Exception& other) {
    return *this = Exception(other);
}
Exception& Exception::operator=(Exception&&) noexcept = default;
Exception::~Exception() = default;

const char* Exception::messageId() const noexcept {
    return message_ ? message_->id.c_str() : "";
}

std::span<const wstring> Exception::parameters() const noexcept {
    return message_ ? std::span<const wstring>(message_->parameters) : std::span<const wstring>();
}

void Exception::setMessage(const char* id, std::span<const wstring> parameters) {
    if (id == nullptr || *id == '\0')
        message_ = {};
    else
        message_ = CountedPtr<Message>::make(Message{id, {parameters.begin(), parameters.end()}});
}

} // namespace core
