// SPDX-License-Identifier: Apache-2.0
#include "host/terminal/column_types.h"

#include <core/descriptions/qualifier_values.h>
#include <core/objects/enumeration.h>
#include <core/strings/integer_text.h>
#include <core/tables/terms.h>
#include <core/tables/value_table.h>

namespace host {

using namespace core;

namespace {

/// As in "(10,2)"; nothing for qualifiers that admit everything.
class Qualifiers {
  public:
    explicit Qualifiers(int alias) noexcept : alias_(alias) {}

    void add(std::uint32_t number) { add(string_intto(number)); }
    /// Adds one of the values of an enumeration by its name.
    void add(const Enumeration& enumeration, std::int32_t number) {
        for (const EnumerationItem& item : enumeration.info().items) {
            if (item.number == number)
                add(item.names[alias_]);
        }
    }
    [[nodiscard]] wstring text() const { return text_.empty() ? text_ : text_ + u')'; }

  private:
    void add(const wstring& text) { text_.append(text_.empty() ? u"(" : u",").append(text); }

    int alias_;
    wstring text_;
};

wstring qualifiers_text(const TypeDomain& domain, const GUID& type, int alias) {
    Qualifiers texts(alias);
    if (type == kNumberType && domain.numericQualifiers().digits() > 0) {
        texts.add(domain.numericQualifiers().digits());
        if (domain.numericQualifiers().fractionDigits() > 0)
            texts.add(domain.numericQualifiers().fractionDigits());
    }
    if (type == kNumberType && domain.numericQualifiers().nonnegative())
        texts.add(allowed_sign(), 1);
    if (type == kStringType && domain.stringQualifiers().length() > 0) {
        texts.add(domain.stringQualifiers().length());
        if (!domain.stringQualifiers().varying())
            texts.add(allowed_length(), 0);
    }
    if (type == kDateType && domain.dateQualifiers().fractions() != DateFractions::dateTime)
        texts.add(date_fractions(), static_cast<std::int32_t>(domain.dateQualifiers().fractions()));
    return texts.text();
}

} // namespace

wstring type_text(const TypeDomain& domain, int alias) {
    wstring text;
    for (const GUID& type : domain.types())
        text.append(text.empty() ? u"" : u", ")
            .append(Type(type).name(alias))
            .append(qualifiers_text(domain, type, alias));
    return text;
}

Value table_of_columns(const IValueColumns& columns, int alias) {
    const auto table = create_value_table();
    table->addColumn(kCodePropTerm[kEnglish], {}, kCodePropTerm[alias]);
    table->addColumn(kTypePropTerm[kEnglish], {}, kTypePropTerm[alias]);
    for (std::size_t i = 0; i < columns.count(); ++i) {
        const ValueColumn column = columns.get(i);
        const Value cells[] = {Value(column.name), Value(type_text(column.domain, alias))};
        table->appendRow(cells);
    }
    return table.query<IValue>();
}

} // namespace host
