#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

/// Four channels (A, C, G, T, equally long) and the bases called in them; one more peak than bases.
struct PolyInput {
  std::array<std::vector<std::uint16_t>, 4> channels;
  std::string bases;
  std::vector<std::int32_t> peaks;

  std::int64_t pointCount() const { return static_cast<std::int64_t>(channels[0].size()); }
  std::int32_t baseCount() const { return static_cast<std::int32_t>(bases.size()); }
};

/// Whatever the peak computation finds: one entry per base, by channel where there are four.
struct PolyResult {
  std::array<std::vector<std::int32_t>, 4> peakPos;
  std::array<std::vector<std::uint32_t>, 4> peakAmp;
  std::array<std::vector<std::int32_t>, 4> normAmp;
  std::string secondBase;
  std::vector<std::int32_t> secondPos;

  bool operator==(const PolyResult&) const = default;
};

/// The peak computation once more, sample by sample and base by base, as slow and as literal as can
/// be: what the program's stages must agree with.
///
/// Sample reads take any index and give 0 outside the channel. The time grows with the length of
/// the search ranges, so that far-off peaks belong into tests of their own.
void plainScale(PolyInput& input);
std::array<float, 4> plainBalance(PolyInput& input);
void plainSearch(const PolyInput& input, PolyResult& result);
void plainAreas(const PolyInput& input, const std::array<float, 4>& averages, PolyResult& result);
void plainSecondPeaks(const PolyInput& input, PolyResult& result);
/// All of them, in their order; the channels end up rescaled.
PolyResult plainPoly(PolyInput& input);
/// The peak file's text.
std::string plainPolyText(const std::string& sampleName, const PolyInput& input,
                          const PolyResult& result);
