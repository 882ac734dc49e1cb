// SPDX-License-Identifier: Apache-2.0
#include <core/context/script_object.h>
#include <core/exchange/table_view.h>
#include <core/reports/report.h>

namespace core {
namespace {

class ReportObject : public ScriptObject<ReportObject> {
  public:
    static constexpr ScriptClass script = {
        .names = {u"Report", u"Отчет"},
        .type = kReportType,
        .object = "5a6d6851-afc3-4f8d-83df-41a624d669b3"_guid,
        .presentation = "IDS_TYPE_PRESENTATION_REPORT",
        .arguments = {1, 2},
    };

    explicit ReportObject(Report report = {}) noexcept : report_(std::move(report)) {}

    /// New Report(Table, [Style]).
    static GenericValue construct(std::span<GenericValue> arguments) {
        if (!table_view(arguments[0]))
            ValueReceiver::parameter(0).refuseType();
        ReportStyle style;
        if (arguments.size() > 1)
            style = from_value<std::optional<ReportStyle>>(arguments[1], ValueReceiver::parameter(1))
                        .value_or(ReportStyle());
        return make_object<ReportObject>(Report{arguments[0], std::move(style)});
    }
    static auto members() {
        using T = ReportObject;
        return core::members(property(u"Table", u"Таблица", &T::table),
                             property(u"Style", u"Стиль", &T::style));
    }

    [[nodiscard]] const Report& report() const noexcept { return report_; }
    const Value& table() const noexcept { return report_.table; }
    ReportStyle style() const { return report_.style; }

  private:
    Report report_;
};

const ScriptClassEntry<ReportObject> kReportObjectEntry;

} // namespace

std::optional<Report> report_of(const Value& value) {
    const ReportObject* const object = ReportObject::of(value);
    return object != nullptr ? std::optional(object->report()) : std::nullopt;
}

Report NativeValue<Report>::from(const Value& value, ValueReceiver receiver) {
    auto report = report_of(value);
    if (!report)
        receiver.refuseType();
    return std::move(*report);
}

Value NativeValue<Report>::to(const Report& report) {
    return make_object<ReportObject>(report);
}

} // namespace core
