// SPDX-License-Identifier: Apache-2.0
#include <core/runtime/exception.h>
#include <core/runtime/utf8.h>

namespace core {

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

} // namespace core
