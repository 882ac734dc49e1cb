// SPDX-License-Identifier: Apache-2.0
#include "core/reports/objects/report_style_object.h"

#include <core/objects/enumeration.h>
#include <core/objects/native_enumeration.h>
#include <core/presentation/presentation_values.h>
#include <core/strings/names.h>
#include <core/strings/trim.h>

namespace core {
namespace {

constexpr EnumerationItem kAlignmentItems[] = {
    {{u"Automatic", u"Автоматически"}, "IDS_COLUMN_ALIGNMENT_AUTO", 0},
    {{u"Left", u"Слева"}, "IDS_COLUMN_ALIGNMENT_LEFT", 1},
    {{u"Center", u"ПоЦентру"}, "IDS_COLUMN_ALIGNMENT_CENTER", 2},
    {{u"Right", u"Справа"}, "IDS_COLUMN_ALIGNMENT_RIGHT", 3},
};
constexpr EnumerationInfo kAlignmentInfo = {
    .type = {.id = "ec5e838a-9dab-4502-a3d8-7ea3cb988175"_guid,
             .valueClass = "9750a053-10a1-4c69-93f1-5da94fdaf21d"_guid,
             .names = {u"ColumnAlignment", u"ВыравниваниеКолонки"},
             .presentation = "IDS_COLUMN_ALIGNMENT"},
    .factory = "6b580234-1f42-475f-ae71-1eaca5f8e4b9"_guid,
    .items = kAlignmentItems,
};
const EnumerationEntry<kAlignmentInfo> kAlignment("ColumnAlignment");

/// What a style says of one column.
class ReportColumnObject : public ScriptObject<ReportColumnObject> {
  public:
    static constexpr ScriptClass script = {
        .names = {u"ReportColumn", u"КолонкаОтчета"},
        .type = "a77b8a70-6f39-4a4b-9080-4affe677ee9d"_guid,
        .object = "b4422b42-6723-4ae5-ae58-42f05d18a970"_guid,
        .presentation = "IDS_TYPE_PRESENTATION_REPORT_COLUMN",
    };

    /// A column of no report, from which its members can be read.
    ReportColumnObject() : ReportColumnObject(std::make_shared<ReportStyle>(), u"Name") {}
    ReportColumnObject(std::shared_ptr<ReportStyle> style, wstring name) noexcept
        : style_(std::move(style)), name_(std::move(name)) {}

    static auto members() {
        using T = ReportColumnObject;
        return core::members(property(u"Name", u"Имя", &T::name),
                             property(u"Title", u"Заголовок", &T::title, &T::setTitle),
                             property(u"Format", u"Формат", &T::format, &T::setFormat),
                             property(u"Alignment", u"Выравнивание", &T::alignment, &T::setAlignment),
                             property(u"Style", u"Стиль", &T::look, &T::setLook),
                             property(u"Total", u"Итог", &T::total, &T::setTotal));
    }

    const wstring& name() const noexcept { return name_; }
    const wstring& title() const { return content().title; }
    void setTitle(const wstring& title) { content().title = title; }
    const wstring& format() const { return content().format; }
    void setFormat(const wstring& format) { content().format = format; }
    ColumnAlignment alignment() const { return content().alignment; }
    void setAlignment(ColumnAlignment alignment) { content().alignment = alignment; }
    Style look() const { return content().style; }
    void setLook(Style style) { content().style = std::move(style); }
    const wstring& total() const { return content().total; }
    void setTotal(const wstring& total) { content().total = total; }

  private:
    [[nodiscard]] ColumnStyle& content() const { return style_->column(name_); }

    std::shared_ptr<ReportStyle> style_;
    wstring name_;
};
const ScriptClassEntry<ReportColumnObject> kColumnEntry;

/// A context with a property for every name that a column can have: a style is made before its table is seen.
template <class T>
class ColumnsByName : public IContextImpl<IContextDefImpl<T>> {
  public:
    int getNProps() const override { return static_cast<int>(style().columns.size()); }
    const wchar* getPropName(int prop, int alias) const override {
        const bool isNamed = isHere(prop) && (alias == kEnglish || alias == kRussian);
        return isNamed ? style().columns[static_cast<std::size_t>(prop)].name.c_str() : nullptr;
    }
    bool isPropReadable(int prop) const override { return isHere(prop); }
    bool isPropWritable(int) const override { return false; }
    int findProp(const wchar* name) const override {
        if (name == nullptr || !is_valid_name(wstring_view(name)))
            return -1;
        return static_cast<int>(&style().column(wstring_view(name)) - style().columns.data());
    }
    void getPropVal(int prop, GenericValue& out) override {
        if (!isHere(prop))
            detail::bad_property(prop);
        out = static_cast<const T&>(*this).column(style().columns[static_cast<std::size_t>(prop)].name);
    }
    void setPropVal(int prop, const GenericValue&) override {
        if (!isHere(prop))
            detail::bad_property(prop);
        detail::unwritable_property(getPropName(prop, kEnglish));
    }

  protected:
    ~ColumnsByName() = default;

  private:
    [[nodiscard]] ReportStyle& style() const noexcept { return static_cast<const T&>(*this).style(); }
    [[nodiscard]] bool isHere(int prop) const noexcept { return prop >= 0 && prop < getNProps(); }
};

class ReportColumns : public ScriptObjectOver<ReportColumns, ColumnsByName<ReportColumns>> {
  public:
    static constexpr ScriptClass script = {
        .names = {u"ReportColumns", u"КолонкиОтчета"},
        .type = "0ac56f5e-91bb-4307-b3de-0ef36a45f407"_guid,
        .object = "02177ef2-5833-4a63-a216-fd849bd060d5"_guid,
        .presentation = "IDS_TYPE_PRESENTATION_REPORT_COLUMNS",
    };

    explicit ReportColumns(std::shared_ptr<ReportStyle> style) noexcept : style_(std::move(style)) {}

    [[nodiscard]] ReportStyle& style() const noexcept { return *style_; }
    [[nodiscard]] GenericValue column(const wstring& name) const {
        return make_object<ReportColumnObject>(style_, name);
    }

  private:
    std::shared_ptr<ReportStyle> style_;
};
const ScriptTypeEntry<ReportColumns> kColumnsEntry;

const ScriptClassEntry<ReportStyleObject> kReportStyleObjectEntry;

/// Names with "," between them.
std::vector<wstring> names_of(wstring_view text) {
    std::vector<wstring> names;
    for (std::size_t begin = 0; begin <= text.size();) {
        const std::size_t end = std::min(text.find(u',', begin), text.size());
        names.emplace_back(trim_all(text.substr(begin, end - begin)));
        begin = end + 1;
    }
    return names;
}

} // namespace

Enumeration* script_enumeration(ColumnAlignment) noexcept {
    return kAlignment.instance();
}

GenericValue ReportStyleObject::construct(std::span<GenericValue> arguments) {
    ReportStyle style;
    if (!arguments.empty())
        style.title = from_value<std::optional<wstring>>(arguments[0]).value_or(wstring());
    return make_object<ReportStyleObject>(std::move(style));
}

GenericValue ReportStyleObject::columns() const {
    return make_object<ReportColumns>(style_);
}

void ReportStyleObject::addRule(const Filter& condition, const Style& style,
                                const std::optional<wstring>& columns, const std::optional<wstring>& title) {
    style_->rules.push_back(
        {.condition = condition,
         .style = style,
         .columns = columns && !columns->empty() ? names_of(*columns) : std::vector<wstring>(),
         .title = title.value_or(wstring())});
}

ReportStyle NativeValue<ReportStyle>::from(const Value& value, ValueReceiver receiver) {
    const ReportStyleObject* const object = ReportStyleObject::of(value);
    if (object == nullptr)
        receiver.refuseType();
    return object->style();
}

Value NativeValue<ReportStyle>::to(const ReportStyle& style) {
    return make_object<ReportStyleObject>(style);
}

} // namespace core
