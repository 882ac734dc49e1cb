// SPDX-License-Identifier: Apache-2.0
#include "host/commands/describe_reference.h"

#include "host/commands/describe_report.h"

#include <core/exchange/whole_file.h>
#include <core/runtime/process.h>
#include <core/runtime/utf8.h>
#include <core/streams/text_file.h>
#include <core/values/type_service.h>

#include <algorithm>
#include <filesystem>
#include <utility>
#include <vector>

namespace host::describe {
namespace {

const Names kReference{"Reference", "Справочник"};
const Names kIntroduction{
    "What scripts can work with. Every name has an English and a Russian form; a script may use either, in "
    "any "
    "case. `scripts/reference` writes these pages: names and parameters come from the library itself, the "
    "sentences stand in `core/resources/`.",
    "С чем работают скрипты. У каждого имени есть английская и русская форма; в скрипте годится любая, в "
    "любом "
    "регистре. Эти страницы пишет `scripts/reference`: имена и параметры берутся из самой библиотеки, "
    "предложения "
    "лежат в `core/resources/`."};
const Names kOther{"по-русски", "in English"};
const Names kAll{"all types", "все типы"};
const Names kTypes{"Types", "Типы"};
const Names kGlobals{"Functions", "Функции"};
const Names kGlobalsSummary{"What scripts use without an object in front.",
                            "Что скрипты используют без объекта впереди."};
const Names kNew{"New", "Новый"};
const Names kElements{"Elements", "Элементы"};
const Names kValues{"Values", "Значения"};
const Names kProperties{"Properties", "Свойства"};
const Names kMethods{"Methods", "Методы"};
const Names kEvents{"Events", "События"};
const Names kAnything{"any value", "любое значение"};
const Names kReadOnly{"read only", "только чтение"};

template <class T>
std::vector<T> sorted(std::vector<T> all, Language language) {
    std::ranges::sort(all, {}, [language](const T& one) { return in_language(one.names, language); });
    return all;
}

/// One page in one language.
class Page {
  public:
    explicit Page(Language language) : language_(language) {}

    [[nodiscard]] const std::string& text() const noexcept { return text_; }

    void title(const Names& names, const std::string& file, bool inList) {
        text_ += "# " + in(names) + "\n\n";
        if (inList)
            text_ += '`' + in_other(names) + "` · ";
        text_ += '[' + in(kOther) + "](../" + (language_ == Language::russian ? "en/" : "ru/") + file + ')';
        if (inList)
            text_ += " · [" + in(kAll) + "](README.md)";
        text_ += '\n';
    }
    void paragraph(const Names& text) {
        if (!in(text).empty())
            text_ += '\n' + in(text) + '\n';
    }
    void heading(const Names& names) { text_ += "\n## " + in(names) + '\n'; }
    void item(const Names& names, const std::string& file, const Names& summary) {
        text_ += "- [" + in(names) + "](" + file + ")";
        if (!in(summary).empty())
            text_ += ": " + in(summary);
        text_ += '\n';
    }
    void blank() { text_ += '\n'; }

    void type(const TypeReport& report) {
        if (report.arguments.least >= 0 || report.members.isCollection)
            blank();
        if (report.arguments.least >= 0)
            constructor(report);
        if (report.members.isCollection)
            text_ += "- **" + in(kElements) + "**: " + links(report.members.elements) + '\n';
        if (report.isEnumeration)
            values(report.members.properties);
        else
            members(report.members);
    }
    void members(const Members& members, const Names& calls = kMethods) {
        each(kProperties, members.properties, [this](const Property& property) {
            text_ += call(property.names, "") + " · " + links(property.kinds);
            if (!property.writable)
                text_ += ", " + in(kReadOnly);
        });
        each(calls, members.methods, [this](const Method& method) {
            text_ += call(method.names, '(' + in(method.parametersText) + ')');
            if (method.isFunction)
                text_ += " → " + links(method.kinds);
        });
        each(kEvents, members.events, [this](const Event& event) {
            std::string arguments;
            for (const Event::Argument& argument : event.arguments)
                arguments += (arguments.empty() ? "" : ", ") + in(argument.names);
            text_ += call(event.names, '(' + arguments + ')');
        });
    }

  private:
    [[nodiscard]] const std::string& in(const Names& names) const { return in_language(names, language_); }
    [[nodiscard]] const std::string& in_other(const Names& names) const {
        return in_language(names, language_ == Language::russian ? Language::english : Language::russian);
    }
    [[nodiscard]] std::string links(const Kinds& kinds) const {
        std::string text;
        for (const Names& names : kinds)
            text += (text.empty() ? "[" : ", [") + in(names) + "](" + names.english + ".md)";
        return kinds.empty() ? in(kAnything) : text;
    }
    /// As a script writes it, and the other name.
    [[nodiscard]] std::string call(const Names& names, const std::string& parameters) const {
        return '`' + in(names) + parameters + "` · `" + in_other(names) + '`';
    }
    void constructor(const TypeReport& report) {
        text_ += "- **" + in(kNew) + ' ' + in(report.names) + "**";
        const std::string& parameters = in(report.constructorParameters);
        text_ += " `" + (parameters.empty() ? "()" : parameters) + '`';
        if (!in(report.constructorSummary).empty())
            text_ += ": " + in(report.constructorSummary);
        text_ += '\n';
    }
    void values(const std::vector<Property>& all) {
        heading(kValues);
        text_ += "\n| | | |\n|---|---|---|\n";
        for (const Property& value : all)
            text_ += "| `" + in(value.names) + "` | `" + in_other(value.names) + "` | " + in(value.summary) +
                     " |\n";
    }
    template <class T, class Line>
    void each(const Names& title, const std::vector<T>& all, Line line) {
        if (all.empty())
            return;
        heading(title);
        for (const T& one : all) {
            text_ += "\n### " + in(one.names) + "\n\n";
            line(one);
            text_ += '\n';
            paragraph(one.summary);
        }
    }

    Language language_;
    std::string text_;
};

class Reference {
  public:
    Reference(const std::string& folder, Language language)
        : folder_(std::filesystem::path(folder) / (language == Language::russian ? "ru" : "en")),
          language_(language) {
        std::error_code ignored; // opening a file says what is wrong
        std::filesystem::create_directories(folder_, ignored);
    }

    void write(const std::vector<TypeReport>& types, const Members& globals) const {
        Page list(language_);
        list.title(kReference, "README.md", false);
        list.paragraph(kIntroduction);
        list.blank();
        list.item(kGlobals, "functions.md", kGlobalsSummary);
        list.heading(kTypes);
        list.blank();
        for (const TypeReport& report : sorted(types, language_)) {
            const std::string file = report.names.english + ".md";
            list.item(report.names, file, report.summary);
            Page page(language_);
            page.title(report.names, file, true);
            page.paragraph(report.summary);
            page.type(report);
            save(file, page);
        }
        save("README.md", list);
        Page page(language_);
        page.title(kGlobals, "functions.md", true);
        page.paragraph(kGlobalsSummary);
        Members members;
        members.properties = sorted(globals.properties, language_);
        members.methods = sorted(globals.methods, language_);
        page.members(members, kGlobals);
        save("functions.md", page);
    }

  private:
    void save(const std::string& file, const Page& page) const {
        core::write_text_file((folder_ / file).string(), [&page](core::wostream& out) {
            core::put_text(out, core::from_utf8(page.text()));
        });
    }

    std::filesystem::path folder_;
    Language language_;
};

} // namespace

void write_reference(const std::string& folder) {
    std::vector<TypeReport> types;
    for (core::IType* const type : core::require_service<core::ITypeValueService>().types())
        types.push_back(report_on(*type, alias_of(Language::english)));
    const Members globals = global_members(alias_of(Language::english));
    for (const Language language : {Language::english, Language::russian})
        Reference(folder, language).write(types, globals);
}

} // namespace host::describe
