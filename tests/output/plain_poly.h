#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

/// Four channels of one length (A, C, G, T), the called bases, and one more peak than bases.
struct PolyInput {
  std::array<std::vector<std::uint16_t>, 4> channels;
  std::string bases;
  std::vector<std::int32_t> peaks;

  std::int64_t pointCount() const { return static_cast<std::int64_t>(channels[0].size()); }
  std::int32_t baseCount() const { return static_cast<std::int32_t>(bases.size()); }
};

/// The results of the peak computation: one entry per base, in each channel where there are four.
struct PolyResult {
  std::array<std::vector<std::int32_t>, 4> peakPos;
  std::array<std::vector<std::uint32_t>, 4> peakAmp;
  std::array<std::vector<std::int32_t>, 4> normAmp;
  std::string secondBase;
  std::vector<std::int32_t> secondPos;

  bool operator==(const PolyResult&) const = default;
};

/// The plain twin of the peak computation: sample by sample and base by base. The program's stages
/// must give the same results.
///
/// A sample outside the channel is 0. The time grows with the length of the search ranges, so that
/// peaks far outside the trace need tests of their own.
void plainScale(PolyInput& input);
std::array<float, 4> plainBalance(PolyInput& input);
void plainSearch(const PolyInput& input, PolyResult& result);
void plainAreas(const PolyInput& input, const std::array<float, 4>& averages, PolyResult& result);
void plainSecondPeaks(const PolyInput& input, PolyResult& result);
using PlainSearch = void (*)(const PolyInput& input, PolyResult& result);
/// All stages in order. Rescales the channels.
PolyResult plainPoly(PolyInput& input, PlainSearch search = plainSearch);
/// The text of the .poly file.
std::string plainPolyText(const std::string& sampleName, const PolyInput& input,
                          const PolyResult& result);
