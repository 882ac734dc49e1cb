// SPDX-License-Identifier: Apache-2.0
#include <core/runtime/errors.h>
#include <core/runtime/exception_object.h>

namespace core {
namespace {

const SCOM_ExceptionEntry<Exception> kException("ExceptionObject");
const SCOM_ExceptionEntry<ModuleException> kModuleException("ModuleExceptionObject");
const SCOM_ExceptionEntry<ProcessException> kProcessException("ProcessExceptionObject");
const SCOM_ExceptionEntry<CtorException> kCtorException("CtorExceptionObject");
const SCOM_ExceptionEntry<ConverterException> kConverterException("ConverterExceptionObject");
const SCOM_ExceptionEntry<LocaleException> kLocaleException("LocaleExceptionObject");
const SCOM_ExceptionEntry<COMException> kCOMException("COMExceptionObject");
const SCOM_ExceptionEntry<COMTypeException> kCOMTypeException("COMTypeExceptionObject");
const SCOM_ExceptionEntry<RemotingException> kRemotingException("RemotingExceptionObject");

} // namespace
} // namespace core
