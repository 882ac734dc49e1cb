// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/context/context_def.h>
#include <core/context/native_function.h>
#include <core/runtime/settings.h>
#include <core/script/api.h>
#include <core/script/errors.h>
#include <core/script/text.h>

#include <array>
#include <chrono>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <iosfwd>
#include <memory>
#include <optional>
#include <span>

/// Scripts inside a program. docs/embedding.md shows such programs.
namespace core::script {

struct Program;

/// A script that has been read: it is compiled once and run as often as wanted, in any engine. Copies share
/// what was read, which never changes. Threads: any number may run one script at the same time, each in an
/// engine of its own.
class CORE_SCRIPT_API Script {
  public:
    /// A script without statements and without a name.
    Script() noexcept = default;

    /// Returns the name that the script was compiled under, borrowed: valid as long as this object. It is
    /// empty for a script without statements.
    [[nodiscard]] wstring_view name() const noexcept;

  private:
    friend struct EngineAccess;
    std::shared_ptr<const Program> program_; // null for no statements
};

/// Reads a script; `name` is what errors call it. Throws Error for the first place that is wrong, and
/// ContextException for more than 2^28 units. Messages are in the language of the thread; before a process or
/// an engine is there, they are message ids.
[[nodiscard]] CORE_SCRIPT_API Script compile(const Text& text, const Text& name = u"script");

/// How much a script may take, in one run. Each bound has its own message id; what the script did before it
/// met the bound stays done. A call into the library or into a function of the program is never cut short:
/// time and memory are looked at when it returns.
struct Limits {
    /// How deep blocks, expressions and calls may stand inside each other, runs that a function of the
    /// program starts in the same engine included. A procedure that calls itself takes three to five levels.
    static constexpr int kDepth = 5000;

    std::uint64_t steps = 0;          ///< statements and rounds of loops; 0 for any number
    std::chrono::nanoseconds time{0}; ///< from the start of the run; 0 for any time
    int depth = kDepth;               ///< see kDepth
    /// How many bytes the memory of the whole program may grow by while the script runs, as the system counts
    /// resident pages. Memory that the program had taken and freed before is not counted, what other threads
    /// take meanwhile is. It is looked at once a millisecond. 0 for any number.
    std::size_t memory = 0;
};

/// What prints a value for Print and PrintTable; of a table, or of a Report (report_of()), at most `rows`
/// rows are wanted.
using Printer = std::function<void(const Value& value, std::size_t rows)>;
/// Reads some bytes, at least one, into a span and returns their count; 0 at the end.
using Bytes = std::function<std::size_t(std::span<std::byte>)>;
/// Opens the file that a script names, and returns what reads it.
using Opener = std::function<Bytes(wstring_view file)>;

/// A function object or a pointer to a function, and not a second name.
template <class F>
concept OfferedFunction = !std::convertible_to<F, Text> && detail::Callable<F>;

/// Runs scripts. It holds the variables, which keep their values from one run to the next, and the functions
/// and objects that the program offers.
///
/// An engine works in the process of the thread that makes it, which must live longer. On a thread without
/// one it brings a process up, which all engines made there share, and which ends with the last of them.
///
/// Threads: an engine is used by one thread at a time, which may have another process or none. interrupt()
/// may be called from any thread. Engines do not disturb each other.
class CORE_SCRIPT_API Engine {
  public:
    /// Makes an engine without variables, which prints to std::cout. `settings` are those of the process that
    /// it brings up; a process that is there keeps its own. Throws what HostProcess throws.
    explicit Engine(const Settings& settings = {});
    Engine(const Engine&) = delete;
    Engine& operator=(const Engine&) = delete;
    /// Lets go of the variables, and of the process that it brought up.
    ~Engine();

    // run

    /// Runs a script and returns what its Return says; Undefined without one. Throws Error for the first
    /// failure that the script does not handle; what was done before stays done. A function of the program
    /// may run scripts while one runs. Procedures that the script declares stay with the engine, as variables
    /// do.
    Value run(const Script& script);
    /// Compiles a script and runs it; `name` is what errors call it.
    Value run(const Text& text, const Text& name = u"script");
    /// Calls a procedure or function that a script of this engine has declared or imported, and returns what
    /// it returns, of a procedure Undefined. The arguments convert by NativeValue; parameters behind them
    /// take their defaults. A call counts as a run: bounds and interrupt() end it, and Exit ends it as it
    /// ends a run. Throws Error for a failure that the procedure does not handle, for a name that no
    /// procedure has, and for too many or too few arguments.
    template <class... Args>
    requires(ToValue<std::decay_t<const Args&>>&&...) Value call(const Text& name, const Args&... arguments) {
        std::array<GenericValue, sizeof...(Args)> values{to_value<std::decay_t<const Args&>>(arguments)...};
        return callWith(name, values);
    }
    /// Calls a procedure as above, and stores in `arguments` what parameters by reference pass back. Throws
    /// as above.
    Value callWith(const Text& name, std::span<GenericValue> arguments);
    /// Returns what the last run asked to exit with, 0 to 255; nothing where it did not. Such a run ends at
    /// once and returns the code.
    [[nodiscard]] std::optional<int> exitCode() const noexcept;
    /// Makes the running script fail with "IDS_SCRIPT_INTERRUPTED" at its next statement or round of a loop,
    /// or in long work that it has called; no effect while none runs. Threads: any; signal handlers, too.
    void interrupt() noexcept;
    /// Sets the bounds of the runs to come.
    void limits(const Limits& limits);
    /// Returns the bounds, borrowed: valid until the engine changes them.
    [[nodiscard]] const Limits& limits() const noexcept;

    // variables

    /// Gives a variable a value: what converts by NativeValue, objects in an InterfacePtr among it. Throws
    /// ContextException for a name that no variable can have.
    template <class T>
    requires ToValue<std::decay_t<const T&>>
    void set(const Text& name, const T& value) { setValue(name, to_value<std::decay_t<const T&>>(value)); }
    /// Returns the value of a variable; Undefined while it has none.
    [[nodiscard]] Value get(const Text& name) const;
    /// Returns the value of a variable as a `T`. Throws ContextException for a value of another type.
    template <FromValue T>
    [[nodiscard]] T get(const Text& name) const {
        const Value value = get(name);
        return T(from_value<T>(value));
    }
    /// Returns whether a variable has a value.
    [[nodiscard]] bool has(const Text& name) const;
    /// Takes the value of a variable away; no effect while it has none.
    void remove(const Text& name);

    // functions

    /// Offers a function under one name, in place of an earlier one of that name: a function object or a
    /// pointer to a function, whose parameters and result convert by NativeValue. `parameters` names the
    /// first parameters and gives their defaults; their texts are borrowed. What the function throws becomes
    /// the cause of the script's failure. Throws ContextException for a name that no function can have.
    template <OfferedFunction F>
    void function(const Text& name, F callable, std::initializer_list<Parameter> parameters = {}) {
        addFunction(name, name, NativeFunction(std::move(callable), parameters));
    }
    /// Offers a function under an English and a Russian name, as above.
    template <OfferedFunction F>
    void function(const Text& english, const Text& russian, F callable,
                  std::initializer_list<Parameter> parameters = {}) {
        addFunction(english, russian, NativeFunction(std::move(callable), parameters));
    }
    /// Offers the properties and methods of an object as variables and functions, and takes a reference to
    /// it. Of equal names those win that were offered last; the functions above come before all. The numbers
    /// of its members must not change.
    void offer(IContext_* context);

    /// Sets what scripts read as `Arguments`: an array of copies of the texts.
    void arguments(std::span<const wstring> arguments);

    // output and input

    /// Lets Print write to `out` in UTF-8, which must outlive its use: a table as lines of up to 100 columns,
    /// another value as its presentation and a line end. It takes what scripts save as "-", too.
    void output(std::ostream& out);
    /// Lets `print` show what scripts print. What they save as "-" goes to std::cout.
    void output(Printer print);
    /// Lets `print` show what scripts print, and `out` take what they save as "-", in bytes; it must outlive
    /// its use.
    void output(Printer print, std::ostream& out);
    /// Lets `open` open the files of LoadCsv and of Import. Without it they are paths and URLs.
    void input(Opener open);

  private:
    friend struct EngineAccess;
    struct Impl;

    void setValue(const Text& name, const GenericValue& value);
    void addFunction(const Text& english, const Text& russian, NativeFunction function);

    std::unique_ptr<Impl> impl_;
};

} // namespace core::script
