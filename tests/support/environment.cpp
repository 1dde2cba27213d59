#include "tests/support/environment.h"

#include <cstdlib>

namespace {

void put(const std::string& name, const char* value) {
  if (value != nullptr) {
    setenv(name.c_str(), value, 1);
  } else {
    unsetenv(name.c_str());
  }
}

}  // namespace

EnvironmentVariable::EnvironmentVariable(const char* name, const char* value) : name_(name) {
  if (const char* former = std::getenv(name)) former_ = former;
  put(name_, value);
}

EnvironmentVariable::~EnvironmentVariable() {
  put(name_, former_.has_value() ? former_->c_str() : nullptr);
}
