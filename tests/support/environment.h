#pragma once

#include <optional>
#include <string>

/// Sets one environment variable, or unsets it, and puts the former state back when it goes.
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
