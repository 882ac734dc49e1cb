// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/threads/thread.h>
#include <core/runtime/utf8.h>
#include <core/script/console.h>
#include <core/strings/term.h>
#include <host/host_process.h>

#include <gtest/gtest.h>

#include <initializer_list>
#include <sstream>
#include <string>
#include <string_view>

namespace core::script {

/// One console: its variables last from one run to the next.
class Session {
  public:
    Session() { engine_.output(out_); }

    /// What a console would answer: what is printed and the values shown, a line each; a failure as
    /// "! line:column message".
    std::string run(std::string_view text) {
        out_.str({});
        try {
            const Script entry = compile_entry(from_utf8(text), u"test", [] { return std::nullopt; });
            run_entry(engine_, entry,
                      [this](const Value& value) { out_ << to_utf8(display(value, kEnglish)) << '\n'; });
        } catch (const Error& error) {
            out_ << "! " << error.line() << ':' << error.column() << ' ' << error.what() << '\n';
        }
        std::string answer = out_.str();
        if (!answer.empty())
            answer.pop_back();
        return answer;
    }

    [[nodiscard]] Engine& engine() noexcept { return engine_; }

  private:
    std::ostringstream out_;
    Engine engine_;
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

    const host::HostProcess process_;
};

} // namespace core::script
