// SPDX-License-Identifier: Apache-2.0
// Any bytes as a script: a tree, or an error whose place is in the text. Scripts that make no objects run,
// too, with few steps, little depth and little memory, and without functions: whatever procedures they
// declare, they end, with an error whose place is in the text if with one.
#include "host/language/interpreter.h"
#include "host/language/lexer.h"
#include "host/language/parser.h"

#include <core/runtime/utf8.h>
#include <host/host_process.h>

#include <cstdlib>

namespace {

using namespace core::script;

void check(const ScriptError& error, const Source& source) {
    const Error located = error.located(source);
    const Place& place = located.place();
    if (error.span().offset > source.text().size() || located.description().starts_with(u"IDS_") ||
        place.line < 1 || place.column < 1 || place.offset < 0 || place.offset > std::ssize(place.text))
        std::abort();
}

/// Objects open files: only what is made of the language alone is run.
bool makes_objects(const Source& source) {
    Lexer lexer(source.text());
    for (Token token = lexer.next(); token.kind != TokenKind::end; token = lexer.next()) {
        if (token.kind == TokenKind::keyNew)
            return true;
    }
    return false;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const host::HostProcess process;
    const auto source = std::make_shared<Source>(
        u"fuzz", core::from_utf8(std::string_view(reinterpret_cast<const char*>(data), size)));
    try {
        const auto program =
            std::make_shared<const Program>(parse(source, size % 2 == 0 ? Mode::file : Mode::console));
        if (!program->imports.empty() || makes_objects(*source))
            return 0;
        Interpreter interpreter;
        constexpr std::uint64_t kSteps = 3000;
        interpreter.watch().setLimits({.steps = kSteps, .depth = 300, .memory = 32U << 20U});
        static_cast<void>(interpreter.run(program));
    } catch (const ScriptError& error) {
        check(error, *source);
    }
    return 0;
}
