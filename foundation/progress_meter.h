#pragma once

#include <cstdint>

namespace Tessaly {

/// Shows the progress of a batch on the standard error stream, as in "  34% done".
///
/// The percentage is rounded up to a whole number, so 0 is shown only before the first item. On a
/// terminal each drawing replaces the one before; elsewhere each is a line of its own, so that a
/// log stays readable. Numbers have 64 bits: 100 times an item count may not fit 32. A plain value
/// that owns nothing.
/// Errors: a line that can not be written is lost in silence, and so is all later output of the
/// stream. Drawing throws std::bad_alloc when there is no memory for the line.
/// Use: construct, start() once, step() once for each item.
class ProgressMeter {
 public:
  /// Finds out whether standard error is a terminal. Draws nothing.
  explicit ProgressMeter(std::int32_t itemCount);
  ProgressMeter(std::int32_t itemCount, bool onTerminal);

  /// Draws: "   0% done" on a new meter. Deliberate: a second start() keeps the percentage.
  void start();
  /// Counts one item. Draws, with `label` in parentheses, when that raises the percentage.
  void step(const char* label = nullptr);
  /// Changes the number of items. Progress and percentage stay; the threshold starts at 0 again.
  void setCount(std::int32_t itemCount);
  /// Erases the line on a terminal; elsewhere does nothing.
  void clearLine() const;

  /// 100 times the item count given at construction.
  std::int64_t scaledCount() const { return scaledCount_; }

 private:
  void draw(const char* label) const;

  bool onTerminal_;
  std::int64_t itemCount_;
  std::int64_t scaledCount_;    // only for scaledCount()
  std::int64_t progress_ = 0;   // 100 times the items since start()
  std::int64_t percent_ = 0;    // as last drawn
  std::int64_t threshold_ = 0;  // percent times item count: progress up to here is shown
};

}  // namespace Tessaly
