// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <unicode/ucnv.h>

#include <memory>
#include <new>
#include <utility>

namespace core::detail {

struct CloseConverter {
    void operator()(UConverter* converter) const noexcept { ucnv_close(converter); }
};
/// An ICU converter; null where ICU could not open it.
using IcuConverter = std::unique_ptr<UConverter, CloseConverter>;

/// Opens a converter that stops at what does not fit, and takes no neighbour of a character for it.
/// Throws std::bad_alloc.
[[nodiscard]] inline IcuConverter open_strict_converter(const char* name) {
    UErrorCode status = U_ZERO_ERROR;
    IcuConverter converter(ucnv_open(name, &status));
    if (status == U_MEMORY_ALLOCATION_ERROR)
        throw std::bad_alloc();
    if (U_SUCCESS(status)) {
        ucnv_setToUCallBack(converter.get(), UCNV_TO_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &status);
        ucnv_setFromUCallBack(converter.get(), UCNV_FROM_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &status);
        ucnv_setFallback(converter.get(), false);
    }
    return U_SUCCESS(status) ? std::move(converter) : nullptr;
}

} // namespace core::detail
