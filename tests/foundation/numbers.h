#pragma once

#include <cstdint>
#include <initializer_list>
#include <vector>

#include "foundation/vector.h"

/// The kind of vector that the program uses.
using Numbers = Tessaly::Vector<std::int32_t>;

/// The text that a vector throws for an index, a count or a cursor out of range.
inline const char* const rangeText = "ERROR: Vector array parameter is out of range";

inline Numbers numbers(std::initializer_list<std::int32_t> values) {
  Numbers result;
  result.assign(values.begin(), static_cast<std::int32_t>(values.size()));
  return result;
}

template <typename T>
std::vector<T> elementsOf(const Tessaly::Vector<T>& vector) {
  return {vector.data(), vector.data() + vector.size()};
}
