#pragma once

#include <optional>
#include <string>
#include <vector>

namespace Quillet {

/// What the command line asks for.
struct CommandLine {
  std::optional<std::string> answer;      // what -h or --version prints; then nothing else counts
  std::vector<std::string> projectFlags;  // those that the converter takes, in its own words
  // Names of output files; "-" is standard output. At most one of them is.
  std::optional<std::string> tsv;
  std::optional<std::string> json;
  std::optional<std::string> fastq;
  std::optional<std::string> fasta;
  std::optional<std::string> html;
  bool trim = false;     // of FASTQ and FASTA
  bool pictures = true;  // of traces, in the page
  double mixedRatio = 0.33;
};

/// Reads the words that follow the program's name. The converter's spellings -dir, -list, -nostrip,
/// -help and -version count too. Throws UsageError.
CommandLine readCommandLine(const std::vector<std::string>& words);

}  // namespace Quillet
