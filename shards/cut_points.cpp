#include "shards/cut_points.h"

#include <algorithm>
#include <optional>
#include <stdexcept>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "audit/trace_reading.h"

namespace Quillet {

namespace {

/// The allowed cut nearest to `ideal` from `low` to `high`, both included.
std::optional<std::size_t> nearestCut(CutPoints& points, std::size_t ideal, std::size_t low,
                                      std::size_t high) {
  for (std::size_t distance = 0;; ++distance) {
    const bool hasLower = ideal >= low + distance;
    const bool hasUpper = ideal + distance <= high;
    if (!hasLower && !hasUpper) return std::nullopt;
    if (hasLower && points.allows(ideal - distance)) return ideal - distance;
    if (hasUpper && points.allows(ideal + distance)) return ideal + distance;
  }
}

}  // namespace

bool replacesCarriedCalls(const std::string& path) {
  TraceReading reading;
  try {
    reading = readTrace(path);
  } catch (const std::runtime_error&) {
    return false;  // nothing is known of it
  }
  if (!reading.fault.empty() || reading.isDamaged) return false;
  const BaseCalls& calls = reading.content.calls;
  return calls.count > 0 && calls.hasUsableQualities();
}

CutPoints::CutPoints(const std::vector<std::string>& samples,
                     std::function<bool(std::size_t index)> replaces)
    : states_(samples.size(), State::unknown), replaces_(std::move(replaces)) {
  std::unordered_map<std::string_view, std::size_t> last;
  for (std::size_t index = 0; index < samples.size(); ++index) last[samples[index]] = index;

  std::size_t open = 0;  // the last name of all samples that have begun
  for (std::size_t index = 0; index < samples.size(); ++index) {
    if (index > 0 && open >= index) states_[index] = State::refused;
    open = std::max(open, last[samples[index]]);
  }
  if (!states_.empty()) states_[0] = State::allowed;
}

bool CutPoints::allows(std::size_t index) {
  State& state = states_[index];
  if (state == State::unknown) state = replaces_(index) ? State::allowed : State::refused;
  return state == State::allowed;
}

std::vector<std::size_t> startsByCount(CutPoints& points, std::size_t count) {
  const std::size_t nameCount = points.nameCount();
  if (nameCount == 0) return {};
  count = std::min(count, nameCount);
  const auto ideal = [=](std::size_t cut) { return cut * nameCount / count; };

  std::vector<std::size_t> starts{0};
  std::size_t low = 1;
  for (std::size_t cut = 1; cut < count; ++cut) {
    const bool isLast = cut + 1 == count;
    const std::size_t high = isLast ? nameCount - 1 : (ideal(cut) + ideal(cut + 1)) / 2;
    if (const auto start = nearestCut(points, ideal(cut), low, high)) starts.push_back(*start);
    low = high + 1;
  }
  return starts;
}

std::vector<std::size_t> startsBySize(CutPoints& points, std::size_t size) {
  const std::size_t nameCount = points.nameCount();
  if (nameCount == 0) return {};
  std::vector<std::size_t> starts{0};
  while (nameCount - starts.back() > size) {
    const std::size_t previous = starts.back();
    std::size_t start = previous + size;
    while (start > previous && !points.allows(start)) --start;
    if (start == previous) {
      start = previous + size + 1;
      while (start < nameCount && !points.allows(start)) ++start;
    }
    if (start == nameCount) break;
    starts.push_back(start);
  }
  return starts;
}

}  // namespace Quillet
