// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/language/procedure_table.h"

#include <cstdint>
#include <functional>
#include <map>
#include <vector>

namespace core::script {

/// The files that the scripts of an engine import. A file is read once in a run, and runs again only where
/// its text has changed.
class Imports {
  public:
    /// Reads a file's text. Throws what opening and reading throw.
    using Reader = std::function<wstring(const wstring& file)>;

    void setReader(Reader reader) { reader_ = std::move(reader); }
    /// A run begins that stands in no other one.
    void beginRun() noexcept { ++run_; }

    /// Gives a module the procedures of the files that it imports. Throws ScriptError.
    void resolve(Interpreter& interpreter, Module& importer);
    /// Lets go of all files.
    void clear() noexcept { files_.clear(); }

  private:
    struct File {
        std::shared_ptr<Module> module;
        std::uint64_t run = 0; // in which it was looked at
    };

    std::shared_ptr<Module> load(Interpreter& interpreter, const wstring& file);

    Reader reader_;
    std::map<wstring, File> files_;
    std::vector<wstring> loading_; // files that wait for those that they import
    std::uint64_t run_ = 0;
};

/// The path of a file that another one imports: relative to the folder of that one.
[[nodiscard]] wstring import_path(wstring_view importer, wstring_view file);

} // namespace core::script
