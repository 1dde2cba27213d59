#pragma once

#include <string>

#include "foundation/string.h"

/// The characters of a String, zero bytes included.
inline std::string textOf(const Tessaly::String& text) {
  return {text.text(), static_cast<std::size_t>(text.length())};
}
