#pragma once

namespace Quillet {

/// Has the C library keep freed memory for the next trace. By default it hands the few hundred
/// KiB of a trace back to the system in between, and getting them anew takes longer than reading
/// the trace.
/// Call it once, before the first trace.
void keepFreedMemory();

}  // namespace Quillet
