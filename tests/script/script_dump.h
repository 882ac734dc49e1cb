// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/language/ast.h"

#include <core/runtime/utf8.h>
#include <core/script/console.h>
#include <core/strings/term.h>

#include <string>

namespace core::script {

/// A tree as text, fully bracketed, every operation and name spelled out.
class Dump {
  public:
    explicit Dump(const Program& program) : program_(program) {}

    std::string all() {
        std::string text;
        for (const Import& import : program_.imports)
            text += "import " + to_utf8(import.file) + "; ";
        for (const Procedure& procedure : program_.procedures) {
            names_ = &procedure.names;
            text += head(procedure) + " {" + block(procedure.body) + "} ";
        }
        names_ = &program_.names;
        text += block(program_.body);
        return text.empty() || text.back() != ' ' ? text : text.substr(0, text.size() - 1);
    }

  private:
    /// Parameters by value have "=" behind them; names of the script's own "&" (shared) or "^" (read).
    static std::string head(const Procedure& procedure) {
        std::string text = (procedure.returns ? "function " : "procedure ") + to_utf8(procedure.name) + "(";
        for (std::size_t i = 0; i < procedure.parameters.size(); ++i) {
            const Parameter& parameter = procedure.parameters[i];
            text += (i == 0 ? "" : ",") + to_utf8(procedure.names.name(i)) + (parameter.byValue ? "=" : "");
            if (parameter.byDefault)
                text += ":" + to_utf8(display(*parameter.byDefault, kEnglish));
        }
        text += procedure.exported ? ")!" : ")";
        for (std::size_t i = procedure.parameters.size(); i < procedure.names.size(); ++i) {
            const Binding::Kind kind = procedure.bindings[i].kind;
            text += " " + to_utf8(procedure.names.name(i)) +
                    (kind == Binding::Kind::shared ? "&"
                     : kind == Binding::Kind::read ? "^"
                                                   : "");
        }
        return text;
    }
    std::string block(const Block& statements) {
        std::string text;
        for (const Statement& statement : statements)
            text += (text.empty() ? "" : " ") + std::visit(*this, statement.node);
        return text;
    }
    std::string expression(const ExpressionPtr& e) { return e == nullptr ? "_" : std::visit(*this, e->node); }
    std::string arguments(const Arguments& list) {
        std::string text = "(";
        for (std::size_t i = 0; i < list.size(); ++i)
            text += (i == 0 ? "" : ",") + expression(list[i]);
        return text + ")";
    }

  public:
    std::string operator()(const Literal& x) {
        const wstring_view* const text = x.value.asString();
        return text != nullptr ? '"' + to_utf8(*text) + '"' : to_utf8(display(x.value, kEnglish));
    }
    std::string operator()(const Variable& x) { return to_utf8(names_->name(x.slot)); }
    std::string operator()(const Call& x) {
        return (x.procedure != kNone ? "@" : "") + to_utf8(x.name) + arguments(x.arguments);
    }
    std::string operator()(const Creation& x) { return "New " + to_utf8(x.type) + arguments(x.arguments); }
    std::string operator()(const Negation& x) { return (x.logical ? "!" : "-") + expression(x.operand); }
    std::string operator()(const Operations& x) {
        static constexpr const char* kSigns[] = {"+", "-",  "*", "/",  "%", "=", "<>",
                                                 "<", "<=", ">", ">=", "&", "|"};
        std::string text = expression(x.first);
        for (const Operation& operation : x.rest)
            text =
                "(" + text + kSigns[static_cast<int>(operation.sign)] + expression(operation.operand) + ")";
        return text;
    }
    std::string operator()(const Access& x) {
        std::string text = expression(x.object);
        for (const Link& link : x.links) {
            if (link.kind == Link::Kind::element)
                text += "[" + expression(link.arguments[0]) + "]";
            else
                text += "." + to_utf8(link.name);
            if (link.kind == Link::Kind::method)
                text += arguments(link.arguments);
        }
        return text;
    }
    std::string operator()(const Assignment& x) {
        return expression(x.target) + ":=" + expression(x.value) + ";";
    }
    std::string operator()(const Evaluation& x) { return expression(x.expression) + ";"; }
    std::string operator()(const If& x) {
        std::string text;
        for (const Branch& branch : x.branches)
            text += "if " + expression(branch.condition) + " {" + block(branch.body) + "} ";
        return text + "else {" + block(x.otherwise) + "}";
    }
    std::string operator()(const ForEach& x) {
        return "each " + to_utf8(names_->name(x.slot)) + " " + expression(x.collection) + " {" +
               block(x.body) + "}";
    }
    std::string operator()(const ForRange& x) {
        return "for " + to_utf8(names_->name(x.slot)) + " " + expression(x.first) + ".." +
               expression(x.last) + " {" + block(x.body) + "}";
    }
    std::string operator()(const While& x) {
        return "while " + expression(x.condition) + " {" + block(x.body) + "}";
    }
    std::string operator()(const Break&) { return "break;"; }
    std::string operator()(const Continue&) { return "continue;"; }
    std::string operator()(const Return& x) {
        return "return" + (x.value ? ' ' + expression(x.value) : "") + ";";
    }

    std::string operator()(const Try& x) {
        return "try {" + block(x.body) + "} except {" + block(x.handler) + "}";
    }
    std::string operator()(const Raise& x) {
        return std::string("raise") + (x.value ? ' ' + expression(x.value) : "") + ";";
    }
    std::string operator()(const Handler& x) {
        return (x.add ? "add " : "remove ") + expression(x.source) + "." + to_utf8(x.event) + " " +
               expression(x.procedure) + ";";
    }

  private:
    const Program& program_;
    const Variables* names_ = nullptr;
};

} // namespace core::script
