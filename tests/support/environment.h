// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdlib>
#include <optional>
#include <string>

/// What tests ask of the system that it is run on.
namespace support {

// The variables that name the folders of temporary files and of settings.
extern const char* const kTemporaryFolder;
extern const char* const kUserConfigFolder;
extern const char* const kSystemConfigFolder;

/// Sets a variable of the environment of this process; null takes it away.
void set_environment(const char* name, const char* value);

/// What a command of the system's shell prints.
[[nodiscard]] std::string output_of(const std::string& command);

/// A variable of the environment that is set for a while, or not there with null.
class EnvironmentVariable {
  public:
    EnvironmentVariable(const char* name, const char* value) : name_(name) {
        if (const char* const before = std::getenv(name))
            before_ = before;
        set_environment(name, value);
    }
    EnvironmentVariable(const EnvironmentVariable&) = delete;
    EnvironmentVariable& operator=(const EnvironmentVariable&) = delete;
    ~EnvironmentVariable() { set_environment(name_, before_ ? before_->c_str() : nullptr); }

  private:
    const char* name_;
    std::optional<std::string> before_;
};

} // namespace support
