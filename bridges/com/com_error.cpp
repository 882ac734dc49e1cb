// SPDX-License-Identifier: Apache-2.0
#include "bridges/com/com_error.h"

#include "bridges/com/errors.h"

#include <core/context/script_object.h>

namespace core::com {
namespace {

/// A number of a failure; equal to those of the same number.
class ComError : public ScriptObject<ComError> {
  public:
    static constexpr ClassNames names{u"COMError", u"COMОшибка", "COM_ERROR"};

    explicit ComError(SCODE error) noexcept : code(error) {}
    /// What New does: the number as a script writes it, with or without its sign.
    static ObjectPtr<ComError> construct(std::optional<std::int64_t> code) {
        return make_object<ComError>(code ? static_cast<SCODE>(*code) : DISP_E_PARAMNOTFOUND);
    }

    const SCODE code;

    std::int64_t number() const noexcept { return code; }
    wstring text() const { return result_text(code); }

    bool isEqual(const IValue* other) const noexcept override {
        const ComError* const error = of(other);
        return error != nullptr && error->code == code;
    }
    std::int32_t hashCode() const noexcept override { return code; }
    bool getString(wstring& out) const override {
        out = result_number(code);
        return true;
    }

    static auto members() {
        return core::members(property(u"Code", u"Код", &ComError::number),
                             property(u"Text", u"Текст", &ComError::text));
    }
};

const ScriptClassEntry<ComError> kComErrorEntry;

} // namespace

Value error_value(SCODE error) {
    return Value(make_object<ComError>(error));
}

std::optional<SCODE> error_of(const Value& value) noexcept {
    const ComError* const error = ComError::of(value);
    return error != nullptr ? std::optional(error->code) : std::nullopt;
}

} // namespace core::com
