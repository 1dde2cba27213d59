#pragma once

#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/trace_generator.h"

// The traces of a trap project, and what makes them odd gzipped files.

/// Small traces of a seed, each with samples, bases and peaks of its own, so that no two are
/// mistaken for each other. The same with every standard library.
class TrapTraces {
 public:
  explicit TrapTraces(std::uint32_t seed) : dice_(seed) {}

  /// A trace that opens and holds calls and qualities. Every sixth is long enough for the check of
  /// the bases 41 to 60.
  std::string called();
  std::string calledScf(int baseCount);
  std::string withoutCalls();
  /// Qualities of which no caller made any: all below 10, or all above 127.
  std::string withPlaceholders();
  /// Calls and qualities that a run refuses, and hands on all the same.
  std::string refused();
  /// No trace, or the start of one.
  std::string damaged();

  /// 0 .. count - 1
  std::uint32_t below(std::uint32_t count) { return static_cast<std::uint32_t>(dice_()) % count; }
  int between(int low, int high) {
    return low + static_cast<int>(below(static_cast<std::uint32_t>(high - low + 1)));
  }
  template <typename Value>
  const Value& anyOf(const std::vector<Value>& values) {
    return values[below(static_cast<std::uint32_t>(values.size()))];
  }
  /// std::shuffle would not be the same with every standard library.
  template <typename Value>
  void shuffle(std::vector<Value>& values) {
    for (std::size_t i = values.size(); i > 1; --i) {
      std::swap(values[i - 1], values[below(static_cast<std::uint32_t>(i))]);
    }
  }

 private:
  TraceContents contents(int baseCount);

  std::mt19937 dice_;
};

/// One gzip member.
std::string gzip(const std::string& bytes);
std::string inTwoMembers(const std::string& bytes);

constexpr std::size_t checksumFromEnd = 8;  // bytes from the end of a member; then the length
constexpr std::size_t lengthFromEnd = 4;

std::string withFlippedByte(std::string bytes, std::size_t offset);
