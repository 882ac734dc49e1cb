// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/language/display.h"
#include "host/language/interpreter.h"
#include "host/language/parser.h"
#include "host/library/functions.h"

#include <core/runtime/threads/thread.h>
#include <core/runtime/utf8.h>
#include <core/strings/term.h>
#include <host/host_process.h>

#include <gtest/gtest.h>

#include <initializer_list>
#include <sstream>
#include <string>
#include <string_view>

namespace host::script {

/// One console: its variables last from one run to the next.
class Session {
  public:
    /// What a console would answer: what is printed and the values shown, a line each; a failure as
    /// "! line:column message".
    std::string run(std::string_view text) {
        out_.str({});
        const auto source = std::make_shared<const Source>("test", core::from_utf8(text));
        try {
            interpreter_.run(parse(source, variables_, Mode::console),
                             [this](const core::GenericValue& value) {
                                 out_ << core::to_utf8(display(value, core::kEnglish)) << '\n';
                             });
        } catch (const ScriptError& error) {
            const Position at = source->position(error.span().offset);
            out_ << "! " << at.line << ':' << at.column << ' ' << error.what() << '\n';
        }
        std::string answer = out_.str();
        if (!answer.empty())
            answer.pop_back();
        return answer;
    }

    [[nodiscard]] Console& console() noexcept { return console_; }
    [[nodiscard]] Interpreter& interpreter() noexcept { return interpreter_; }
    [[nodiscard]] Variables& variables() noexcept { return variables_; }

  private:
    std::istringstream in_;
    std::ostringstream out_;
    Console console_{in_, out_, out_};
    Variables variables_;
    Interpreter interpreter_{create_globals(console_), variables_};
};

class ScriptTest : public testing::Test {
  protected:
    struct Case {
        std::string script;
        std::string answer;
    };
    /// Each script in a session of its own.
    static void check(std::initializer_list<Case> cases) {
        for (const Case& c : cases)
            EXPECT_EQ(Session().run(c.script), c.answer) << c.script;
    }

    const HostProcess process_;
};

} // namespace host::script
