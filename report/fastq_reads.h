#pragma once

#include <optional>
#include <string>

#include "audit/project_audit.h"

// Calls as sequence files hold them. The id is the sample, with "_" for blanks and control
// characters.
namespace Quillet {

/// The calls of one trace, ready to be written.
struct Read {
  std::string id;
  std::string bases;      // as stored; "N" for bytes other than letters, "*", "-" and "."
  std::string qualities;  // as FASTQ writes them: 33 + quality, which is at most 93
};

/// The read of a row. None when its trace holds no calls or no qualities, when it is hidden, and
/// when `trim` leaves nothing of it.
std::optional<Read> readOf(const AuditedSample& sample, bool trim);

/// The four lines of a FASTQ record.
std::string fastqRecord(const Read& read);

/// The two lines of a FASTA record.
std::string fastaRecord(const Read& read);

}  // namespace Quillet
