#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace Quillet {

/// Whether the trace at `path` replaces everything that the converter carries from one trace to the
/// next: it opens and holds calls and qualities. A .gz that is not intact never does. A run that
/// begins with such a trace gives what a longer run gives from there on. False, too, where there is
/// no room to unpack it.
bool replacesCarriedCalls(const std::string& path);

/// Where the names of a run may be cut into shards.
///
/// A shard may begin with a name whose trace replaces the carried calls, unless a sample has names
/// on both sides of the cut. Each trace is looked at once at most, and only when a cut in front of
/// it is asked for. Indices are 0-based.
class CutPoints {
 public:
  /// `samples`: that of each name. `replaces`: whether the trace of a name replaces the carried
  /// calls.
  CutPoints(const std::vector<std::string>& samples,
            std::function<bool(std::size_t index)> replaces);

  std::size_t nameCount() const { return states_.size(); }
  /// Whether a shard may begin with the name `index`; always true of the first.
  bool allows(std::size_t index);

 private:
  enum class State : char { unknown, allowed, refused };

  std::vector<State> states_;
  std::function<bool(std::size_t)> replaces_;
};

// Both give the indices of the names that the shards begin with, in ascending order; the first is
// 0. Without names there are none.

/// At most `count` shards, as even as the cuts allow: each cut is the one nearest to its ideal
/// place among those that are nearer to it than to the next ideal place.
std::vector<std::size_t> startsByCount(CutPoints& points, std::size_t count);

/// As few shards as there can be with at most `size` names each. One is longer only where no cut
/// is allowed for so long; then it is as short as it can be.
std::vector<std::size_t> startsBySize(CutPoints& points, std::size_t size);

}  // namespace Quillet
