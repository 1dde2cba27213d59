#pragma once

#include <optional>
#include <string>

/// Sets or unsets one environment variable. The destructor restores its former state.
class EnvironmentVariable {
 public:
  /// A null `value` unsets the variable.
  EnvironmentVariable(const char* name, const char* value);
  ~EnvironmentVariable();
  EnvironmentVariable(const EnvironmentVariable&) = delete;
  EnvironmentVariable& operator=(const EnvironmentVariable&) = delete;

 private:
  std::string name_;
  std::optional<std::string> former_;
};
