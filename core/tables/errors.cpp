// SPDX-License-Identifier: Apache-2.0
#include <core/runtime/exception_object.h>
#include <core/tables/errors.h>

namespace core {
namespace {

const SCOM_ExceptionEntry<ConversionException> kConversionException("ConversionExceptionObject");
const SCOM_ExceptionEntry<DataSourceException> kDataSourceException("DataSourceExceptionObject");
const SCOM_ExceptionEntry<ExpressionException> kExpressionException("ExpressionExceptionObject");
const SCOM_ExceptionEntry<PivotSourceException> kPivotSourceException("PivotSourceExceptionObject");

} // namespace
} // namespace core
