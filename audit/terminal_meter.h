#pragma once

#include <cstddef>

#include "foundation/progress_meter.h"

namespace Quillet {

/// The percent meter on a terminal, gone with the object; nothing elsewhere.
class TerminalMeter {
 public:
  /// `wanted`: whether there is to be a meter where standard error is a terminal.
  explicit TerminalMeter(std::size_t count, bool wanted = true);
  ~TerminalMeter() { clear(); }
  TerminalMeter(const TerminalMeter&) = delete;
  TerminalMeter& operator=(const TerminalMeter&) = delete;

  void step() {
    if (isShown_) meter_.step();
  }
  /// Makes room for a message.
  void clear() const {
    if (isShown_) meter_.clearLine();
  }

 private:
  bool isShown_;
  Tessaly::ProgressMeter meter_;
};

}  // namespace Quillet
