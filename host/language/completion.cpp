// SPDX-License-Identifier: Apache-2.0
#include "host/language/completion.h"

#include "host/language/lexer.h"

#include <core/context/event_source.h>
#include <core/context/summary.h>
#include <core/runtime/process.h>
#include <core/strings/compare.h>
#include <core/strings/term.h>
#include <core/values/type_service.h>

#include <algorithm>
#include <utility>

namespace core::script {

namespace {

/// The last tokens of a text, the very last one first.
class Tail {
  public:
    explicit Tail(wstring_view text) : text_(text) {
        Lexer lexer(text);
        for (Token token = lexer.next(); token.kind != TokenKind::end; token = lexer.next()) {
            std::shift_right(std::begin(last_), std::end(last_), 1);
            last_[0] = token;
        }
    }

    [[nodiscard]] Token token(std::size_t fromEnd) const { return last_[fromEnd]; }
    [[nodiscard]] TokenKind kind(std::size_t fromEnd) const { return last_[fromEnd].kind; }
    [[nodiscard]] bool isWord(std::size_t fromEnd) const {
        return kind(fromEnd) == TokenKind::name || is_keyword(kind(fromEnd));
    }
    [[nodiscard]] wstring_view text(std::size_t fromEnd) const {
        return text_.substr(last_[fromEnd].span.offset, last_[fromEnd].span.length);
    }

  private:
    wstring_view text_;
    Token last_[5];
};

/// Collects names that begin as the word does.
class Names {
  public:
    Names(wstring_view word, int alias) : word_(word), alias_(alias) {}

    void add(wstring name) {
        if (compare_nocase(wstring_view(name).substr(0, word_.size()), word_) == 0)
            found_.push_back(std::move(name));
    }
    /// A name in both languages, by function of the alias.
    template <class Name>
    void addTerm(Name name, wstring_view behind = {}) {
        for (const int alias : {kEnglish, kRussian}) {
            const wchar* const text = word_.empty() && alias != alias_ ? nullptr : name(alias);
            if (text != nullptr)
                add(wstring(text).append(behind));
        }
    }
    void addMembers(const IContext_& context) {
        for (int prop = 0; prop < context.getNProps(); ++prop)
            addTerm([&](int alias) { return context.getPropName(prop, alias); });
        for (int method = 0; method < context.getNMethods(); ++method) {
            addTerm([&](int alias) { return context.getMethodName(method, alias); },
                    context.getNParams(method) == 0 ? u"()" : u"(");
        }
    }
    void addEvents(const IEventSource& source, wstring_view behind = {}) {
        for (int event = 0; event < source.getNEvents(); ++event)
            addTerm([&](int alias) { return source.getEventName(event, alias); }, behind);
    }
    void addProcedures(const ProcedureTable& procedures) {
        for (const auto& [name, ref] : procedures.all())
            add(name + (ref.procedure->parameters.empty() ? u"()" : u"("));
    }
    void addTypes() {
        for (const IType* const type : require_service<ITypeValueService>().types()) {
            if (type->arguments().least >= 0)
                addTerm([type](int alias) { return type->name(alias); });
        }
    }
    void addKeywords() {
        for (auto kind = TokenKind::keyIf; kind <= TokenKind::wordRemoveHandler;
             kind = static_cast<TokenKind>(static_cast<int>(kind) + 1))
            addTerm([kind](int alias) { return keyword_name(kind, alias).data(); });
    }

    [[nodiscard]] std::vector<wstring> take() {
        std::sort(found_.begin(), found_.end(),
                  [](const wstring& a, const wstring& b) { return compare_nocase(a, b) < 0; });
        found_.erase(std::unique(found_.begin(), found_.end()), found_.end());
        return std::move(found_);
    }

  private:
    wstring_view word_;
    int alias_;
    std::vector<wstring> found_;
};

/// The value of a variable, or of a property of the globals.
GenericValue value_of(wstring_view name, const Interpreter& interpreter) {
    if (const auto value = interpreter.value(name))
        return *value;
    GenericValue value;
    if (const auto prop = interpreter.globals().findProp(wstring(name)); prop.context != nullptr)
        prop.context->getPropVal(prop.number, value);
    return value;
}

/// What is known of a call: its parameters and what it does.
struct Called {
    wstring parameters;
    wstring summary;
};

Called call_of_function(const Globals::Place& place, int alias, const Locale& locale) {
    if (place.context == nullptr)
        return {};
    return {display_parameters(*place.context, place.number, alias),
            function_summary(place.context->getMethodName(place.number, kEnglish), locale)};
}

Called call_of_method(const GenericValue& object, const wstring& name, int alias, const Locale& locale) {
    const auto context = object.query<IContext_>();
    const int method = context ? context->findMethod(name.c_str()) : -1;
    if (method < 0)
        return {};
    return {display_parameters(*context, method, alias),
            member_summary(*object.object()->getType(), context->getMethodName(method, kEnglish), locale)};
}

/// What is called where the text ends behind "name(" or "variable.name(".
Called call_behind(const Tail& tail, const Interpreter& interpreter, int alias) {
    if (tail.kind(0) != TokenKind::open || !tail.isWord(1) || tail.kind(2) == TokenKind::keyNew)
        return {};
    const Locale locale(alias == kRussian ? "ru" : "en");
    const wstring name(tail.text(1));
    if (tail.kind(2) != TokenKind::dot) {
        if (const ProcedureRef* const procedure = interpreter.procedures().find(name))
            return {display_parameters(*procedure->procedure, alias), {}};
        return call_of_function(interpreter.globals().findMethod(name), alias, locale);
    }
    if (!tail.isWord(3) || tail.kind(4) == TokenKind::dot)
        return {};
    return call_of_method(value_of(tail.text(3), interpreter), name, alias, locale);
}

/// Whether the word is AddHandler or RemoveHandler, behind which an object's events stand.
bool handles_events(const Tail& tail, std::size_t fromEnd) {
    const TokenKind word = tail.isWord(fromEnd) ? soft_keyword(tail.text(fromEnd)) : TokenKind::name;
    return word == TokenKind::wordAddHandler || word == TokenKind::wordRemoveHandler;
}

/// Inside the second argument of Connect, the events of the first one.
Completion complete_event(const Interpreter& interpreter, wstring_view before, int alias) {
    const std::size_t quote = before.rfind(u'"');
    if (quote == wstring_view::npos)
        return {};
    try {
        const Tail tail(before.substr(0, quote));
        const bool inConnect = tail.kind(0) == TokenKind::comma && tail.isWord(1) &&
                               tail.kind(2) == TokenKind::open && tail.isWord(3) &&
                               tail.kind(4) != TokenKind::dot &&
                               (compare_nocase(tail.text(3), u"Connect") == 0 ||
                                compare_nocase(tail.text(3), u"Соединить") == 0);
        const auto source = inConnect ? value_of(tail.text(1), interpreter).query<IEventSource>()
                                      : InterfacePtr<IEventSource>();
        if (!source)
            return {};
        const wstring_view word = before.substr(quote + 1);
        Names names(word, alias);
        names.addEvents(*source, u"\"");
        return {word.size(), names.take(), {}, {}};
    } catch (const Exception&) {
        return {};
    }
}

} // namespace

wstring Completion::common() const {
    if (names.empty())
        return {};
    std::size_t length = names.front().size();
    for (const wstring& name : names) {
        length = std::min(length, name.size());
        while (length > 0 && compare_nocase(wstring_view(name).substr(0, length),
                                            wstring_view(names.front()).substr(0, length)) != 0)
            --length;
    }
    return names.front().substr(0, length);
}

Completion complete_names(const Interpreter& interpreter, wstring_view before, int alias) {
    try {
        const Tail tail(before);
        const bool inWord = tail.token(0).span.end() == before.size() && tail.isWord(0);
        const bool behindLast = before.size() > tail.token(0).span.end();
        if (!inWord && behindLast &&
            before.substr(tail.token(0).span.end()).find(u"//") != wstring_view::npos)
            return {}; // a comment
        if (!inWord && !behindLast &&
            (tail.kind(0) == TokenKind::number || tail.kind(0) == TokenKind::string))
            return complete_event(interpreter, before, alias);
        const wstring_view word = inWord ? tail.text(0) : wstring_view();
        const std::size_t front = inWord ? 1 : 0; // the token in front of the word
        Names names(word, alias);
        if (tail.kind(front) == TokenKind::dot) {
            if (!tail.isWord(front + 1) || tail.kind(front + 2) == TokenKind::dot)
                return {}; // only running it would tell what object that is
            const GenericValue object = value_of(tail.text(front + 1), interpreter);
            const auto context = object.query<IContext_>();
            const auto source =
                handles_events(tail, front + 2) ? object.query<IEventSource>() : InterfacePtr<IEventSource>();
            if (source)
                names.addEvents(*source);
            else if (context)
                names.addMembers(*context);
        } else if (tail.kind(front) == TokenKind::keyNew) {
            names.addTypes();
        } else {
            const Variables& variables = interpreter.variables();
            for (std::size_t slot = 0; slot < variables.size(); ++slot) {
                if (interpreter.value(variables.name(slot)))
                    names.add(variables.name(slot));
            }
            names.addProcedures(interpreter.procedures());
            names.addKeywords();
            for (const auto& context : interpreter.globals().contexts())
                names.addMembers(*context);
        }
        Called call = call_behind(tail, interpreter, alias);
        if (!call.parameters
                 .empty()) // anything may stand here: the parameters say what, a list of all would hide them
            return {0, {}, std::move(call.parameters), std::move(call.summary)};
        return {word.size(), names.take(), {}, {}};
    } catch (const ScriptError&) {
        return complete_event(interpreter, before, alias); // or behind text that is not a script
    } catch (const Exception&) { // an object of a module that cannot say what it has
        return {};
    }
}

} // namespace core::script
