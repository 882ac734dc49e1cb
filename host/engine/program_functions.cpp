// SPDX-License-Identifier: Apache-2.0
#include "host/engine/program_functions.h"

#include "host/language/script_exit.h"

#include <core/collections/value_array.h>
#include <core/context/arguments.h>
#include <core/runtime/utf8.h>
#include <core/script/errors.h>
#include <core/streams/errors.h>
#include <core/strings/integer_text.h>
#include <core/values/errors.h>

#include <algorithm>
#include <vector>

namespace core::script {

std::span<const Property<ProgramFunctions>> ProgramFunctions::properties() noexcept {
    static constexpr Property<ProgramFunctions> kTable[] = {
        {{u"Arguments", u"Аргументы"}, &ProgramFunctions::arguments, nullptr, &kFixedValueArrayType},
    };
    return kTable;
}

std::span<const Method<ProgramFunctions>> ProgramFunctions::methods() noexcept {
    static constexpr Param kExit[] = {named_param({u"Code", u"Код"}, ParamDefault::undefined)};
    static constexpr Method<ProgramFunctions> kTable[] = {
        {{u"Exit", u"ЗавершитьРаботу"}, kExit, kProcedure, &ProgramFunctions::exit},
    };
    return kTable;
}

void ProgramFunctions::setArguments(std::span<const wstring> arguments) {
    arguments_ = create_fixed_value_array({arguments.begin(), arguments.end()}).query<IValue>();
}

GenericValue ProgramFunctions::exit(std::span<GenericValue> arguments) {
    constexpr std::uint32_t kMost = 255; // what a shell sees of a code
    const std::uint32_t code = count_argument(arguments[0], 0);
    if (code > kMost)
        parameter_value_mismatch(0);
    throw ScriptExit{static_cast<int>(code)};
}

wstring read_script(const Surroundings& surroundings, const wstring& file) {
    const Bytes read = surroundings.open(file);
    std::string text;
    char piece[1 << 14];
    while (const std::size_t count = read(std::as_writable_bytes(std::span(piece))))
        text.append(piece, count);
    wstring units = from_utf8(text);
    if (const std::string same = to_utf8(units); same != text) {
        const auto fault = std::mismatch(text.begin(), text.end(), same.begin(), same.end()).first;
        throw_error<ConverterException>(messages::kTextNotUtf8, {file, string_intto(fault - text.begin())});
    }
    return units;
}

} // namespace core::script
