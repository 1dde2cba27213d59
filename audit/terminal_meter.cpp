#include "audit/terminal_meter.h"

#include <cstdint>
#include <unistd.h>

namespace Quillet {

TerminalMeter::TerminalMeter(std::size_t count, bool wanted)
    : isShown_(wanted && isatty(STDERR_FILENO) != 0), meter_(static_cast<std::int32_t>(count)) {
  if (isShown_) meter_.start();
}

}  // namespace Quillet
