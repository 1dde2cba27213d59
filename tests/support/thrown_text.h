#pragma once

#include <string>

/// The text that `action` throws as a pointer to constant characters; empty when it throws nothing.
template <typename Action>
std::string thrownText(Action action) {
  try {
    action();
  } catch (const char* text) {
    return text;
  }
  return {};
}
