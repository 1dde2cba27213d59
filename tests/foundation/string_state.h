#pragma once

#include <cstdint>
#include <gtest/gtest.h>
#include <string>

#include "foundation/string.h"

// The texts that a String throws.
inline const char* const allocationText = "ERROR: String can not be allocated.";
inline const char* const positionText = "ERROR: String position is out of range";
inline const char* const parameterText = "ERROR: String parameter is invalid";

/// Checks text, length, capacity and the final zero byte.
inline void expectState(const Tessaly::String& actual, const std::string& text,
                        std::int32_t capacity) {
  EXPECT_EQ(std::string(actual.text(), static_cast<std::size_t>(actual.length())), text);
  EXPECT_EQ(actual.capacity(), capacity);
  EXPECT_EQ(actual.text()[actual.length()], '\0');
}

inline Tessaly::String withCapacity(const char* text, std::int32_t capacity) {
  Tessaly::String result(text);
  result.setCapacity(capacity);
  return result;
}
