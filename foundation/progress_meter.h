#pragma once

#include <cstdint>

namespace Tessaly {

/// Shows on the standard error stream how far a batch has come, as in "  34% done".
///
/// Counts items; the percentage is whole and rounded up, so 0 is shown only before the first item.
/// On a terminal each drawing replaces the last one; elsewhere each is a line of its own, so that a
/// log stays readable. Numbers are 64 bits wide, since 100 times an item count may pass 32 bits.
/// A plain value that owns nothing.
/// Errors: a line that can not be written is lost in silence, like whatever follows it on the
/// stream; without memory for the line, drawing throws std::bad_alloc.
/// Use: construct, start() once, step() once for each item.
class ProgressMeter {
 public:
  /// Asks here, once, whether standard error is a terminal. Draws nothing.
  explicit ProgressMeter(std::int32_t itemCount);
  ProgressMeter(std::int32_t itemCount, bool onTerminal);

  /// Draws; on a fresh meter that is "   0% done". The percentage itself is not set back.
  void start();
  /// One more item: draws, with `label` in parentheses, if the percentage changed by it.
  void step(const char* label = nullptr);
  /// Another number of items from now on; what was counted and shown so far stays.
  void setCount(std::int32_t itemCount);
  /// Erases the line on a terminal; elsewhere does nothing.
  void clearLine() const;

  /// 100 times the item count given at construction.
  std::int64_t scaledCount() const { return scaledCount_; }

 private:
  void draw(const char* label) const;

  bool onTerminal_;
  std::int64_t itemCount_;
  std::int64_t scaledCount_;    // not consulted by the operations
  std::int64_t progress_ = 0;   // 100 times the items since start()
  std::int64_t percent_ = 0;    // as last drawn
  std::int64_t threshold_ = 0;  // percent times item count: progress up to here is drawn already
};

}  // namespace Tessaly
