// SPDX-License-Identifier: Apache-2.0
#include "host/commands/usage_error.h"

#include "host/commands/commands.h"

#include <core/runtime/utf8.h>
#include <core/strings/nearest.h>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <ostream>
#include <string_view>
#include <vector>

namespace host {
namespace {

using Apps = std::vector<const CLI::App*>;

/// The program, the command that was given, and the command of that.
Apps chain_of(const CLI::App& app) {
    Apps chain = {&app};
    for (auto parsed = app.get_subcommands(); !parsed.empty(); parsed = parsed.front()->get_subcommands())
        chain.push_back(parsed.front());
    return chain;
}

std::string name_of(const Apps& chain) {
    std::string name;
    for (const CLI::App* const command : chain)
        name.append(name.empty() ? "" : " ").append(command->get_name());
    return name;
}

std::vector<std::string> options_of(const Apps& chain) {
    std::vector<std::string> names;
    for (auto command = chain.rbegin(); command != chain.rend(); ++command) {
        for (const CLI::Option* const option : (*command)->get_options()) {
            for (const std::string& name : option->get_lnames())
                names.push_back("--" + name);
        }
    }
    return names;
}

std::vector<std::string> commands_of(const CLI::App& command) {
    std::vector<std::string> names;
    for (const CLI::App* const one : command.get_subcommands([](const CLI::App*) { return true; }))
        names.push_back(one->get_name());
    return names;
}

/// The words that a value may be, as the option's type lists them; none where it lists nothing.
std::vector<std::string> choices_of(const CLI::Option& option) {
    const std::string type = option.get_type_name();
    return type.find('|') != std::string::npos ? CLI::detail::split(type, '|') : std::vector<std::string>();
}

std::string joined(const std::vector<std::string>& words) {
    return CLI::detail::join(words, ", ");
}

/// Makes the sentences.
class Sentences {
  public:
    explicit Sentences(const Console& console) : console_(console) {}

    /// Puts the words into the places "{}" of a sentence.
    [[nodiscard]] std::string say(const char* english, const char* russian,
                                  std::initializer_list<std::string_view> words) const {
        std::string text = help(console_, english, russian);
        std::size_t at = 0;
        for (const std::string_view word : words) {
            at = text.find("{}", at);
            text.replace(at, 2, word);
            at += word.size();
        }
        return text;
    }
    /// The question behind a word that is wrong; empty where no name is near it.
    [[nodiscard]] std::string nearest(const std::string& word, const std::vector<std::string>& names) const {
        core::NearestName near(core::from_utf8(word));
        for (const std::string& name : names)
            near.add(core::from_utf8(name));
        if (near.best().empty())
            return {};
        return say(" Did you mean {}?", " Возможно, имелся в виду {}?", {core::to_utf8(near.best())});
    }

    [[nodiscard]] std::string unknownOption(const std::string& argument, const Apps& chain) const {
        const std::string word = argument.substr(0, argument.find('='));
        return say("{} has no option {}.", "У команды {} нет параметра {}.", {name_of(chain), word}) +
               nearest(word, options_of(chain));
    }
    [[nodiscard]] std::string unknownCommand(const std::string& word, const Apps& chain) const {
        const std::vector<std::string> names = commands_of(*chain.back());
        if (names.empty())
            return say("{} takes no further argument “{}”.", "Команде {} не нужен аргумент «{}».",
                       {name_of(chain), word});
        return say("{} has no command “{}”.", "У {} нет команды «{}».", {name_of(chain), word}) +
               nearest(word, names);
    }
    [[nodiscard]] std::string missingCommand(const Apps& chain) const {
        return say("{} needs a command: {}.", "{}: нужна команда: {}.",
                   {name_of(chain), joined(commands_of(*chain.back()))});
    }
    [[nodiscard]] std::string missing(const std::string& argument, const Apps& chain) const {
        return say("{} needs the argument {}.", "Команде {} нужен аргумент {}.", {name_of(chain), argument});
    }
    [[nodiscard]] std::string missingValue(const std::string& option) const {
        return say("The option {} needs a value.", "Параметру {} нужно значение.", {option});
    }
    [[nodiscard]] std::string wrongValue(const CLI::Option& option, const std::string& name) const {
        const std::string value = option.results().empty() ? std::string() : option.results().back();
        const std::vector<std::string> choices = choices_of(option);
        std::string text = say("The option {} does not take “{}”.", "Параметр {} не принимает значение «{}».",
                               {name, value});
        if (choices.empty())
            return text;
        const std::string near = nearest(value, choices);
        return text + (near.empty() ? say(" It takes {}.", " Возможны {}.", {joined(choices)}) : near);
    }

  private:
    const Console& console_;
};

const CLI::Option* option_named(const Apps& chain, const std::string& name) {
    for (auto command = chain.rbegin(); command != chain.rend(); ++command) {
        if (const CLI::Option* const option = (*command)->get_option_no_throw(name); option != nullptr)
            return option;
    }
    return nullptr;
}

/// The name of an option in front of what the parser says of it.
std::string subject_of(std::string_view said) {
    return std::string(said.substr(0, said.find_first_of(": ")));
}

} // namespace

std::string usage_text(const CLI::App& app, const CLI::ParseError& error, const Console& console) {
    const Apps chain = chain_of(app);
    const Sentences sentences(console);
    const std::string_view said = error.what();
    const std::string kind = error.get_name();
    // What is not known comes first: what else is wrong follows from that, as a rule.
    const std::vector<std::string> rest = app.remaining(true);
    const auto option = std::ranges::find_if(rest, [](const auto& word) { return word.starts_with('-'); });
    if (option != rest.end())
        return sentences.unknownOption(*option, chain);
    if (!rest.empty())
        return sentences.unknownCommand(rest.front(), chain);
    if (kind == "RequiredError")
        return said.starts_with("A subcommand") ? sentences.missingCommand(chain)
                                                : sentences.missing(subject_of(said), chain);
    if (kind == "ExcludesError" || kind == "RequiresError") {
        const std::string second(said.substr(said.rfind(' ') + 1));
        return kind == "ExcludesError"
                   ? sentences.say("{} and {} cannot stand together.", "{} и {} нельзя указать вместе.",
                                   {subject_of(said), second})
                   : sentences.say("{} needs {}.", "{} требует {}.", {subject_of(said), second});
    }
    const std::string name = said.starts_with("Could not convert: ")
                                 ? subject_of(said.substr(std::string_view("Could not convert: ").size()))
                                 : subject_of(said);
    const CLI::Option* const known = option_named(chain, name);
    if (known == nullptr)
        return std::string(said);
    if (kind == "ArgumentMismatch")
        return sentences.missingValue(name);
    return sentences.wrongValue(*known, name);
}

ExitCode refuse_usage(const CLI::App& app, const CLI::ParseError& error, Console& console) {
    fail(console, core::from_utf8(usage_text(app, error, console)), ExitCode::usage);
    if (!console.json)
        console.err << name_of(chain_of(app)) << " --help\n";
    return ExitCode::usage;
}

} // namespace host
