#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace Quillet {

/// A read at a glance: one character for every ten bases, and one for the rest. It stands for the
/// mean quality, rounded and 61 at most, by its place in 0-9, A-Z, a-z. A quality above 127 counts
/// as 0.
std::string qualityStrip(std::span<const std::uint8_t> qualities);

}  // namespace Quillet
