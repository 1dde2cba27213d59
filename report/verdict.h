#pragma once

#include <cstdint>
#include <string>

#include "report/state_counts.h"

namespace Quillet {

/// A read with fewer good bases than this is short.
inline constexpr std::uint32_t shortStretch = 300;

/// What a report says of a project as a whole.
struct Verdict {
  std::string main;  // one sentence: how many samples are whole
  std::string rest;  // one sentence on what is wrong; empty when nothing is
};

/// `shortReads` is the number of whole reads whose good stretch is known and short.
Verdict projectVerdict(const StateCounts& counts, std::uint64_t shortReads);

/// "1,480".
std::string withCommas(std::uint64_t number);

}  // namespace Quillet
