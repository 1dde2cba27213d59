#pragma once

#include "audit/sample_row.h"

namespace Quillet {

/// What the instrument wrote into the ABIF file at `path`. Other files have no notes; nor has an
/// entry that has another type than usual, or data that the file does not hold. Of an entry that
/// occurs more than once the last occurrence counts. Time: a walk over the directory as far as the
/// file goes, whatever its counts say.
InstrumentNotes readInstrumentNotes(const char* path);

}  // namespace Quillet
