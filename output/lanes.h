#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace Quillet {

// Short vectors of numbers, for loops that compilers do not vectorise by themselves. They are the
// vector types that g++ and clang share. Only this file uses what the two compilers add to the
// language: the type, its `?:`, and __builtin_shufflevector. Operators work lane by lane, without
// promotion to int. A comparison sets all bits of a lane where it holds, and none elsewhere.

template <typename Value, std::size_t count>
struct LanesType {
  using type [[gnu::vector_size(count * sizeof(Value))]] = Value;
};

/// A vector of `count` values; count * sizeof(Value) is a power of two. Lanes<...>{} has 0 in every
/// lane.
template <typename Value, std::size_t count>
using Lanes = typename LanesType<Value, count>::type;

/// Loads `count` values from `values` on, at any alignment.
template <std::size_t count, typename Value>
Lanes<Value, count> lanesAt(const Value* values) {
  Lanes<Value, count> lanes;
  std::memcpy(&lanes, values, sizeof lanes);
  return lanes;
}

/// A vector with the value in every lane.
template <std::size_t count, typename Value>
Lanes<Value, count> everyLane(Value value) {
  return Lanes<Value, count>{} + value;
}

/// Stores the lanes from `values` on, at any alignment.
template <typename Vector, typename Value>
void store(Vector lanes, Value* values) {
  std::memcpy(values, &lanes, sizeof lanes);
}

/// `yes` in the lanes where the comparison holds, `no` in the others.
template <typename Comparison, typename Vector>
Vector choose(Comparison holds, Vector yes, Vector no) {
  return holds ? yes : no;
}

template <typename Vector>
Vector larger(Vector left, Vector right) {
  return left > right ? left : right;
}

template <typename Vector>
Vector smaller(Vector left, Vector right) {
  return left < right ? left : right;
}

/// Four 32-bit numbers: lane `first` + i of `upper` is the upper half of number i, that of `lower`
/// its lower half.
template <int first>
Lanes<std::int32_t, 4> join(Lanes<std::int16_t, 8> upper, Lanes<std::int16_t, 8> lower) {
  constexpr bool lowerFirst = std::endian::native == std::endian::little;
  return std::bit_cast<Lanes<std::int32_t, 4>>(__builtin_shufflevector(
      lowerFirst ? lower : upper, lowerFirst ? upper : lower, first, first + 8, first + 1,
      first + 9, first + 2, first + 10, first + 3, first + 11));
}

/// The sum of all lanes, modulo 2^32.
inline std::uint32_t sumOf(Lanes<std::uint32_t, 4> lanes) {
  lanes += __builtin_shufflevector(lanes, lanes, 2, 3, 0, 1);
  return lanes[0] + lanes[1];
}

/// The bitwise or of all lanes.
inline std::uint16_t bitsOf(Lanes<std::uint16_t, 8> lanes) {
  const auto halves = std::bit_cast<Lanes<std::uint64_t, 2>>(lanes);
  std::uint64_t bits = halves[0] | halves[1];
  bits |= bits >> 32;
  return static_cast<std::uint16_t>(bits | bits >> 16);
}

}  // namespace Quillet
