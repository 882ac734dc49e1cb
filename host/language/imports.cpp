// SPDX-License-Identifier: Apache-2.0
#include "host/language/imports.h"

#include "host/language/failure.h"
#include "host/language/interpreter.h"
#include "host/language/parser.h"

#include <core/strings/path.h>
#include <core/values/errors.h>

#include <algorithm>
#include <filesystem>

namespace core::script {
namespace {

constexpr std::size_t kMostFiles = 100; // that import each other in a row

std::shared_ptr<const Program> compile_file(const wstring& file, wstring text) {
    const auto source = std::make_shared<const Source>(file, std::move(text));
    try {
        return std::make_shared<const Program>(parse(source));
    } catch (ScriptError& error) {
        error.locate(*source);
        throw;
    }
}

/// "a imports b imports a", of the files from the first one that is named twice.
wstring chain_of(const std::vector<wstring>& loading, const wstring& file) {
    wstring text;
    for (auto i = std::ranges::find(loading, file); i != loading.end(); ++i)
        text.append(*i).append(u" → ");
    return text + file;
}

} // namespace

wstring import_path(wstring_view importer, wstring_view file) {
    constexpr wstring_view kScheme = u"://";
    const PathParts own = string_splitpath(file);
    if (file.find(kScheme) != wstring_view::npos || !own.drive.empty() || file.starts_with(u'/'))
        return wstring(file);
    const PathParts parts = string_splitpath(importer);
    wstring joined = (parts.drive + parts.directory).append(file);
    if (joined.find(kScheme) != wstring::npos)
        return joined;
    return std::filesystem::path(joined).lexically_normal().generic_u16string();
}

void Imports::resolve(Interpreter& interpreter, Module& importer) {
    ProcedureTable taken; // by this script alone
    for (const Import& import : importer.program->imports) {
        const auto module = at(import.span, [&] {
            return load(interpreter, import_path(importer.program->source->name(), import.file));
        });
        const std::vector<Procedure>& procedures = module->program->procedures;
        const bool all = std::ranges::none_of(procedures, &Procedure::exported);
        for (const Procedure& procedure : procedures) {
            if (!all && !procedure.exported)
                continue;
            const ProcedureRef* const other = taken.find(procedure.name);
            if (other != nullptr && other->procedure != &procedure)
                fail_at(import.span, "IDS_SCRIPT_IMPORTED_TWICE",
                        {procedure.name, other->module->program->source->name(),
                         module->program->source->name()});
            taken.add({module, &procedure});
        }
    }
    for (const auto& [name, ref] : taken.all())
        importer.known->add(ref);
}

std::shared_ptr<Module> Imports::load(Interpreter& interpreter, const wstring& file) {
    if (std::ranges::find(loading_, file) != loading_.end())
        throw_error<ContextException>("IDS_SCRIPT_IMPORT_CIRCLE", {chain_of(loading_, file)});
    if (loading_.size() == kMostFiles) // by links that lead back, each time under another name
        throw_error<ContextException>("IDS_SCRIPT_IMPORT_CIRCLE", {file});
    File& known = files_[file];
    if (known.module != nullptr && known.run == run_)
        return known.module;
    wstring text = reader_(file);
    if (known.module == nullptr || known.module->program->source->text() != text) {
        const auto module = interpreter.makeModule(compile_file(file, std::move(text)));
        loading_.push_back(file);
        struct Loaded {
            std::vector<wstring>& loading;
            ~Loaded() { loading.pop_back(); }
        } const loaded{loading_};
        try {
            interpreter.runModule(module, nullptr);
        } catch (ScriptError& error) {
            error.locate(*module->program->source);
            throw;
        }
        known.module = module;
    }
    known.run = run_;
    return known.module;
}

} // namespace core::script
