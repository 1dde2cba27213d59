#pragma once

#include <cstdint>
#include <random>

/// Random numbers that are the same with every standard library. The standard defines the engine's
/// numbers exactly, but not those of its distributions.
class Dice {
 public:
  explicit Dice(std::uint32_t seed) : engine_(seed) {}

  /// 0 .. count - 1
  std::uint32_t below(std::uint32_t count) { return static_cast<std::uint32_t>(engine_()) % count; }
  int between(int low, int high) {
    return low + static_cast<int>(below(static_cast<std::uint32_t>(high - low + 1)));
  }
  /// 0 to 1, the end exclusive.
  double unit() { return static_cast<double>(engine_()) / 4294967296.0; }
  /// Mean 0 and standard deviation 1, near a normal distribution; within 3.5.
  double deviation() {
    double sum = -2.0;
    for (int i = 0; i < 4; ++i) sum += unit();
    return sum * 1.7320508075688772;
  }

 private:
  std::mt19937 engine_;
};
