#include "tests/support/hostile_traces.h"

#include <cstddef>
#include <cstdint>

#include "tests/support/trace_builder.h"

namespace {

constexpr std::size_t hostileSize = std::size_t{2} << 20;  // bytes
constexpr std::uint32_t mostUnbacked = 4'194'304;  // samples or bases that a file may invent
constexpr std::uint32_t one = 1;
constexpr std::uint32_t all32Bits = 0xFFFFFFFF;
constexpr std::uint32_t moreThanIsBacked = mostUnbacked + one;
constexpr std::uint32_t channelNumbers[4] = {9, 10, 11, 12};

std::string filled(std::string bytes, const std::string& pattern, std::size_t size = hostileSize) {
  while (bytes.size() < size) bytes += pattern;
  bytes.resize(size);
  return bytes;
}

/// Samples and calls by the million, all of them at the same place: after the rest of the file.
std::string claimingAbif(std::uint32_t claim, const std::string& pattern) {
  const auto end = static_cast<std::uint32_t>(AbifBuilder().build().size());
  AbifBuilder builder;
  for (const std::uint32_t number : channelNumbers) {
    builder.count("DATA", number, claim).dataOffset("DATA", number, end);
  }
  for (const char* name : {"PBAS", "PCON", "PLOC"}) {
    builder.count(name, 1, claim).dataOffset(name, 1, end);
  }
  builder.count("SPAC", 2, all32Bits).dataOffset("SPAC", 2, end);
  return filled(builder.build(), pattern);
}

std::string claimingScf(const std::string& version, std::uint32_t samples, std::uint32_t bases,
                        const std::string& pattern) {
  const std::string bytes = ScfBuilder()
                                .version(version)
                                .header(4, samples)
                                .header(8, 128)
                                .header(12, bases)
                                .header(24, 128)
                                .header(32, 128)
                                .truncatedTo(128)
                                .build();
  return filled(bytes, pattern);
}

std::string walkedAbif(std::uint16_t stride) {
  const std::string entry("DATA\0\0\0\x9", 8);
  return filled(
      AbifBuilder().headerStride(stride).headerEntryCount(all32Bits).directoryFirst().build(),
      entry);
}

}  // namespace

std::vector<HostileTrace> hostileTraces() {
  // Peak positions are pairs of bytes: twice 257, twice 25443, and so on. Half of the search ranges
  // between them are 12593 samples long: walked sample by sample, they would take most of the time.
  const std::string farApart = "\1\1\1\1cccc";
  const std::string mixed = "ACGTTGCATTACGGCA";
  return {
      {"abif_far_apart", claimingAbif(mostUnbacked, farApart), true},
      {"abif_mixed", claimingAbif(mostUnbacked, mixed), true},
      {"abif_more", claimingAbif(moreThanIsBacked, mixed), false},
      {"abif_most", claimingAbif(all32Bits, mixed), false},
      {"scf2_mixed", claimingScf("2.00", mostUnbacked, mostUnbacked, mixed), true},
      {"scf3_mixed", claimingScf("3.00", mostUnbacked, mostUnbacked, mixed), true},
      {"scf3_backed_bases", claimingScf("3.00", mostUnbacked, 233'000, mixed), true},
      {"scf2_more", claimingScf("2.00", moreThanIsBacked, 1, mixed), false},
      {"scf3_more", claimingScf("3.00", 1, moreThanIsBacked, mixed), false},
      {"scf3_most", claimingScf("3.00", all32Bits, all32Bits, mixed), false},
      {"scf_endless_line", claimingScf("3.00", 1, 0, "x"), true},
      {"scf_line_feeds", claimingScf("3.00", 1, 0, "\n"), true},
      {"scf_endless_caller", filled(ScfBuilder().comments("BCAL=").build(), "x"), true},
      {"walk_in_place", walkedAbif(0), false},
      {"walk_byte_by_byte", walkedAbif(1), false},
      {"nothing_but_zeros", std::string(hostileSize, '\0'), false},
  };
}
