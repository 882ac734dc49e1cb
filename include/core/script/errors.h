// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/errors.h>

#include <cstdint>
#include <tuple>

/// The failure of a script. It stands in the library, so that every module knows it, also one that runs no
/// scripts.
namespace core {

namespace messages {

/// A script was stopped by Engine::interrupt(). No parameters.
inline constexpr const char* kScriptInterrupted = "IDS_SCRIPT_INTERRUPTED";
/// A script has taken as many steps as it may; {0} is that number.
inline constexpr const char* kScriptStepLimit = "IDS_SCRIPT_STEP_LIMIT";
/// A script has run as long as it may; {0} is that time in milliseconds.
inline constexpr const char* kScriptTimeLimit = "IDS_SCRIPT_TIME_LIMIT";
/// Blocks, expressions and calls of a script stand inside each other deeper than they may; {0} is that depth.
inline constexpr const char* kScriptDepthLimit = "IDS_SCRIPT_DEPTH_LIMIT";
/// A script needs more memory than it may take; {0} is that many bytes.
inline constexpr const char* kScriptMemoryLimit = "IDS_SCRIPT_MEMORY_LIMIT";
/// The program has no memory for what a script does. No parameters.
inline constexpr const char* kScriptNoMemory = "IDS_SCRIPT_NO_MEMORY";
/// The stack of the thread is nearly used up. No parameters.
inline constexpr const char* kScriptNoStack = "IDS_SCRIPT_NO_STACK";
/// A function of the program threw a std::exception; {0} is what it says.
inline constexpr const char* kScriptForeignFailure = "IDS_SCRIPT_FOREIGN_FAILURE";
/// A function of the program threw something else than a std::exception. No parameters.
inline constexpr const char* kScriptUnknownFailure = "IDS_SCRIPT_UNKNOWN_FAILURE";
/// A script raised a text as its failure; {0} is the text.
inline constexpr const char* kScriptRaised = "IDS_SCRIPT_RAISED";
/// A name cannot be that of a variable or a function; {0} is the name.
inline constexpr const char* kScriptBadName = "IDS_SCRIPT_BAD_NAME";

} // namespace messages

namespace script {

/// Where in the text of a script something is.
struct Place {
    wstring file;            ///< the name that the script was compiled under
    std::int32_t line = 0;   ///< counts from 1; 0 where the place is not known
    std::int32_t column = 0; ///< counts characters from 1: a pair of surrogates is one
    wstring text;            ///< the line, without its end
    std::int32_t offset = 0; ///< where in `text` the piece begins that is meant, in units
    std::int32_t length = 0; ///< how many units the piece has; it may reach behind the end of the line
};

/// A script that could not be compiled, or that failed while it ran. The description is the message alone,
/// without the place. Where the failure came from below, from the library or from a function of the program,
/// that failure is the cause.
class CORE_API Error : public BasicException<Error> {
  public:
    /// The class id of ErrorObject.
    static constexpr GUID kClassId = "9659b6f7-897d-4a9b-a18a-6c3894e7dd1b"_guid;
    using BasicException::BasicException;
    /// Makes a failure with a copy of `description`. Takes a reference to `cause`, which may be null.
    Error(const wstring& description, Place place, IExceptionObject* cause = nullptr)
        : BasicException(description, cause), place_(std::move(place)) {}

    /// Returns the name that the script was compiled under, borrowed: valid as long as this exception.
    [[nodiscard]] const wstring& file() const noexcept { return place_.file; }
    /// Returns the line, counted from 1; 0 where the place is not known.
    [[nodiscard]] std::int32_t line() const noexcept { return place_.line; }
    /// Returns the column, in characters counted from 1; 0 where the place is not known.
    [[nodiscard]] std::int32_t column() const noexcept { return place_.column; }
    /// Returns the place with the line's text, borrowed: valid as long as this exception.
    [[nodiscard]] const Place& place() const noexcept { return place_; }

  private:
    template <class>
    friend class core::IExceptionObjectImpl;
    static auto fields(auto& self) noexcept {
        auto& place = self.place_;
        return std::tie(place.file, place.line, place.column, place.text, place.offset, place.length);
    }

    Place place_;
};

/// The error object of Error.
using ErrorObject = IExceptionObjectImpl<Error>;

} // namespace script
} // namespace core
