#pragma once

#include <string>
#include <vector>

// A plate of 96 wells as a laboratory has it: most reads are good, and a few things went wrong.

/// One trace of the plate.
struct PlateTrace {
  std::string sample;  // "P01_A01_COI_F"
  std::string bytes;   // an ABIF file, with the instrument's notes
};

/// The plate P01_COI, read by an instrument of 16 capillaries in six runs of one date each. A run
/// reads two columns, so every capillary serves one well of it.
///
/// Wells without a sample: E02, G12, H11, H12.
/// - Capillary 7 fails in all runs: D01, D03, D05, D07, D09, D11.
/// - B06 has no calls, F09 is cut.
/// - E10 has one mixed base, the 247th: C, and T below it.
/// - G03 has a second template from base 381 on.
/// - B11 and C08 have fewer than 300 bases; A04, F05 and H07 fewer than 600.
/// All other reads have 700 to 950 bases and no mixed ones.
std::vector<PlateTrace> plateOf96();

/// Both templates of G03, as they pass the detector; the second starts at base 381.
struct MixedTemplates {
  std::string first;
  std::string second;
};
MixedTemplates templatesOfG03();
