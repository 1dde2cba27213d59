#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <utility>

// The four channels of a trace, one for each base. In memory they are always in the order A, C, G,
// T. The order in a file may differ.
namespace Quillet {

inline constexpr int channelCount = 4;
inline constexpr int noChannel = channelCount;
inline constexpr char channelLetters[] = "ACGTN";  // N is the letter of noChannel

/// The channel of an upper-case A, C, G or T; noChannel for any other base. A table, not a chain of
/// branches: the next base is unpredictable.
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

/// The samples of a trace: four arrays of equal length, which it owns.
///
/// Samples are amplitudes, 0..65535; an index into a channel is a sample index that starts at 0.
/// Moving hands the arrays over and leaves no samples; there is no copying.
class Channels {
 public:
  Channels() = default;
  /// Room for `pointCount` samples in each channel, without setting their values.
  explicit Channels(std::uint32_t pointCount) : pointCount_(pointCount) {
    for (auto& samples : samples_) {
      samples = std::make_unique_for_overwrite<std::uint16_t[]>(pointCount);
    }
  }
  Channels(Channels&& other) noexcept { swap(other); }
  Channels& operator=(Channels&& other) noexcept {
    Channels taken(std::move(other));
    swap(taken);
    return *this;
  }

  /// Samples in each channel.
  std::uint32_t pointCount() const { return pointCount_; }

  /// All samples of channel 0..3.
  std::span<std::uint16_t> operator[](int channel) {
    return {samples_[static_cast<std::size_t>(channel)].get(), pointCount_};
  }
  std::span<const std::uint16_t> operator[](int channel) const {
    return {samples_[static_cast<std::size_t>(channel)].get(), pointCount_};
  }

 private:
  void swap(Channels& other) noexcept {
    std::swap(pointCount_, other.pointCount_);
    std::swap(samples_, other.samples_);
  }

  std::uint32_t pointCount_ = 0;
  std::array<std::unique_ptr<std::uint16_t[]>, channelCount> samples_;
};

}  // namespace Quillet
