// SPDX-License-Identifier: Apache-2.0
#include <core/context/context_error.h>
#include <core/strings/integer_text.h>

namespace core {
namespace {

[[noreturn]] void mismatch(const char* id, int param) {
    throw_error<ContextException>(id, {string_intto(param + 1)});
}

} // namespace

void parameter_type_mismatch(int param) {
    mismatch("IDS_PARAMETER_N_TYPE_MISMATCH", param);
}

void parameter_value_mismatch(int param) {
    mismatch("IDS_PARAMETER_N_VALUE_MISMATCH", param);
}

} // namespace core
