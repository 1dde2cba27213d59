#pragma once

#include <array>

// The four channels of a trace are always in the order A, C, G, T. The order in a file may differ.
namespace Quillet {

inline constexpr int channelCount = 4;
inline constexpr int noChannel = channelCount;
inline constexpr char channelLetters[] = "ACGTN";  // N stands for noChannel

/// The channel of an upper-case A, C, G or T; noChannel for any other base.
/// A table look-up is branch-free: the order of the bases is unpredictable.
inline int channelOf(char base) {
  static constexpr auto channels = [] {
    std::array<unsigned char, 256> table{};
    table.fill(noChannel);
    for (unsigned char channel = 0; channel < noChannel; ++channel) {
      table[static_cast<unsigned char>(channelLetters[channel])] = channel;
    }
    return table;
  }();
  return channels[static_cast<unsigned char>(base)];
}

}  // namespace Quillet
