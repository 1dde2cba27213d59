#pragma once

#include <cstddef>
#include <experimental/simd>

namespace Quillet {

/// `count` values that the processor works on side by side, for what compilers do not turn into
/// vector instructions by themselves. The type is that of the Parallelism TS, which libstdc++ has.
template <typename Value, std::size_t count>
using Lanes = std::experimental::simd<Value, std::experimental::simd_abi::deduce_t<Value, count>>;

/// The values from `values` on.
template <std::size_t count, typename Value>
Lanes<Value, count> lanesAt(const Value* values) {
  return Lanes<Value, count>(values, std::experimental::element_aligned);
}

}  // namespace Quillet
