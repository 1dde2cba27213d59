#pragma once

#include <cstdint>
#include <cstring>
#include <functional>
#include <gtest/gtest.h>
#include <initializer_list>
#include <string>

#include "output/file_writer.h"
#include "tests/support/scratch_folder.h"

// Helpers of the writers' tests: byte lists, and the file that an action leaves.

using Action = std::function<void(Tessaly::FileWriter&)>;

inline std::string bytes(std::initializer_list<int> values) {
  std::string result;
  for (const int value : values) result += static_cast<char>(value);
  return result;
}

/// The bytes in memory of a value or an array.
template <typename Value>
std::string memoryOf(const Value& value) {
  std::string result(sizeof value, '\0');
  std::memcpy(result.data(), &value, sizeof value);
  return result;
}

/// The file after `action` and close().
inline std::string written(std::int32_t bufferSize, const Action& action) {
  const ScratchFolder folder;
  Tessaly::FileWriter writer(bufferSize);
  EXPECT_TRUE(writer.open("out"));
  action(writer);
  writer.close();
  return folder.read("out");
}

inline std::string written(const Action& action) {
  return written(Tessaly::FileWriter::defaultBufferSize, action);
}

/// The file after `action` and destruction without close(): only the bytes that were flushed.
inline std::string flushed(std::int32_t bufferSize, const Action& action) {
  const ScratchFolder folder;
  {
    Tessaly::FileWriter writer(bufferSize);
    EXPECT_TRUE(writer.open("out"));
    action(writer);
  }
  return folder.read("out");
}
