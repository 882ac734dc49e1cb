// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/context/script_object.h>
#include <core/reports/report_style.h>

#include <memory>

namespace core {

/// A style that scripts change; its columns and each of them are objects that share the content.
class ReportStyleObject : public ScriptObject<ReportStyleObject, IPersistableObject> {
  public:
    static constexpr ScriptClass script = {
        .names = {u"ReportStyle", u"СтильОтчета"},
        .type = kReportStyleType,
        .object = "f7b688d3-c505-49c7-816c-3439e96ef58a"_guid,
        .presentation = "IDS_TYPE_PRESENTATION_REPORT_STYLE",
        .arguments = {0, 1},
    };

    explicit ReportStyleObject(ReportStyle style = {})
        : style_(std::make_shared<ReportStyle>(std::move(style))) {}

    /// New ReportStyle([Title]).
    static GenericValue construct(std::span<GenericValue> arguments);
    static auto members() {
        using T = ReportStyleObject;
        return core::members(property(u"Title", u"Заголовок", &T::title, &T::setTitle),
                             property(u"Style", u"Стиль", &T::look, &T::setLook),
                             property(u"Columns", u"Колонки", &T::columns),
                             method(u"Rule", u"Правило", &T::addRule, {u"Condition", u"Условие"},
                                    {u"Style", u"Стиль"}, {u"Columns", u"Колонки"}, {u"Title", u"Заголовок"}),
                             method(u"ClearRules", u"ОчиститьПравила", &T::clearRules));
    }

    [[nodiscard]] const ReportStyle& style() const noexcept { return *style_; }

    const wstring& title() const noexcept { return style_->title; }
    void setTitle(const wstring& title) { style_->title = title; }
    /// Undefined for that of the process.
    std::optional<Style> look() const { return style_->style; }
    void setLook(std::optional<Style> style) noexcept { style_->style = std::move(style); }
    GenericValue columns() const;
    void addRule(const Filter& condition, const Style& style, const std::optional<wstring>& columns,
                 const std::optional<wstring>& title);
    void clearRules() noexcept { style_->rules.clear(); }

    // IValue
    bool isEqual(const IValue* other) const noexcept override {
        const ReportStyleObject* const same = of(other);
        return same != nullptr && *same->style_ == *style_;
    }
    std::int32_t hashCode() const noexcept override { return style_->hash(); }

    // IPersistableObject
    void serialize(IOutPersistenceStorage* storage) const override { style_->serialize(storage); }
    void deserialize(IInPersistenceStorage* storage) override { *style_ = ReportStyle::deserialize(storage); }

  private:
    std::shared_ptr<ReportStyle> style_;
};

} // namespace core
