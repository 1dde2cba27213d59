#include "shards/cut_points.h"

#include <algorithm>
#include <cstdlib>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "tests/support/project_folder.h"
#include "tests/support/trace_builder.h"

using Quillet::CutPoints;
using Quillet::replacesCarriedCalls;
using Quillet::startsByCount;
using Quillet::startsBySize;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

using Indices = std::vector<std::size_t>;

/// Names with one sample each; a letter "x" is a trace that replaces the carried calls.
struct Row {
  std::string letters;
  std::vector<std::string> samples = {};
  Indices looked = {};  // the traces that were looked at, in order

  explicit Row(const std::string& text) : letters(text) {
    for (std::size_t index = 0; index < text.size(); ++index) {
      samples.push_back(std::to_string(index));
    }
  }
  CutPoints points() {
    return CutPoints(samples, [this](std::size_t index) {
      looked.push_back(index);
      return letters[index] == 'x';
    });
  }
};

Indices byCount(const std::string& letters, std::size_t count) {
  Row row(letters);
  CutPoints points = row.points();
  return startsByCount(points, count);
}

Indices bySize(const std::string& letters, std::size_t size) {
  Row row(letters);
  CutPoints points = row.points();
  return startsBySize(points, size);
}

/// What a trace does to the calls that are carried on.
enum class Kind { good, invalid, withoutCalls, withoutQualities };

/// A run with random traces, some of which share a sample.
struct RandomRun {
  std::vector<Kind> kinds;
  std::vector<std::string> samples;

  explicit RandomRun(unsigned seed) {
    std::mt19937 random(seed);
    const auto below = [&random](unsigned limit) {
      return static_cast<unsigned>(random() % limit);
    };
    const unsigned count = 1 + below(60);
    const unsigned good = 1 + below(6);
    const unsigned shared = 2 + below(12);
    for (unsigned index = 0; index < count; ++index) {
      kinds.push_back(below(good) == 0 ? static_cast<Kind>(1 + below(3)) : Kind::good);
      // Now and then a sample of one of the ten names before this one.
      const unsigned back = below(shared) == 0 ? std::min(index, below(10)) : 0;
      samples.push_back(back > 0 ? samples[index - back] : std::to_string(index));
    }
  }
  CutPoints points() const {
    return CutPoints(samples, [this](std::size_t index) { return kinds[index] == Kind::good; });
  }
  std::size_t size() const { return kinds.size(); }

  /// The cuts that the rule allows, by comparing every name with every other.
  Indices allowedCuts() const {
    Indices cuts;
    for (std::size_t cut = 1; cut < size(); ++cut) {
      bool isAllowed = kinds[cut] == Kind::good;
      for (std::size_t before = 0; before < cut; ++before) {
        for (std::size_t after = cut; after < size(); ++after) {
          isAllowed = isAllowed && samples[before] != samples[after];
        }
      }
      if (isAllowed) cuts.push_back(cut);
    }
    return cuts;
  }
};

/// Whose bases and whose qualities a result holds; -1 is nobody's.
struct Source {
  int bases = -1;
  int qualities = -1;
  bool operator==(const Source&) const = default;
};

/// What a converter that carries calls on would write, by sample; a sample's first result stays.
/// `starts`: where it is started anew.
std::vector<std::pair<std::string, Source>> converted(const RandomRun& run, const Indices& starts) {
  std::vector<std::pair<std::string, Source>> results;
  Source carried;
  for (std::size_t index = 0; index < run.size(); ++index) {
    if (std::count(starts.begin(), starts.end(), index) > 0) carried = {};
    const auto isThere = [&](const auto& result) { return result.first == run.samples[index]; };
    if (std::any_of(results.begin(), results.end(), isThere)) continue;
    const Kind kind = run.kinds[index];
    if (kind == Kind::invalid) continue;
    const int number = static_cast<int>(index);
    if (kind != Kind::withoutCalls) carried.bases = number;
    if (kind == Kind::good) carried.qualities = number;
    results.emplace_back(run.samples[index], carried);
  }
  return results;
}

/// For each ideal place the nearest of the cuts that have it for their nearest ideal place.
Indices plainStartsByCount(const RandomRun& run, std::size_t count) {
  count = std::min(count, run.size());
  const auto distance = [](std::size_t a, std::size_t b) { return a > b ? a - b : b - a; };
  std::vector<std::optional<std::size_t>> chosen(count);
  for (const std::size_t cut : run.allowedCuts()) {
    std::optional<std::size_t> nearest;
    const auto ideal = [&](std::size_t place) { return place * run.size() / count; };
    for (std::size_t place = 1; place < count; ++place) {
      if (!nearest || distance(cut, ideal(place)) < distance(cut, ideal(*nearest))) nearest = place;
    }
    if (!nearest) continue;
    auto& best = chosen[*nearest];
    if (!best || distance(cut, ideal(*nearest)) < distance(*best, ideal(*nearest))) best = cut;
  }
  Indices starts{0};
  for (const auto& cut : chosen) {
    if (cut) starts.push_back(*cut);
  }
  return starts;
}

/// The fewest shards, where one may be longer than `size` only without a cut inside.
std::size_t fewestShards(const RandomRun& run, std::size_t size) {
  Indices bounds = run.allowedCuts();
  bounds.insert(bounds.begin(), 0);
  bounds.push_back(run.size());
  std::vector<std::size_t> fewest(bounds.size(), std::numeric_limits<int>::max());
  fewest[0] = 0;
  for (std::size_t end = 1; end < bounds.size(); ++end) {
    for (std::size_t start = 0; start < end; ++start) {
      const bool fits = bounds[end] - bounds[start] <= size || start + 1 == end;
      if (fits) fewest[end] = std::min(fewest[end], fewest[start] + 1);
    }
  }
  return fewest.back();
}

}  // namespace

TEST(CutPoints, CutOnlyInFrontOfWhatReplacesTheCarriedCalls) {
  Row row("xx.x");
  CutPoints points = row.points();

  EXPECT_TRUE(points.allows(0));
  EXPECT_TRUE(points.allows(1));
  EXPECT_FALSE(points.allows(2));
  EXPECT_TRUE(points.allows(3));
}

TEST(CutPoints, AlwaysAllowTheFirstWithoutLooking) {
  Row row("..");
  CutPoints points = row.points();

  EXPECT_TRUE(points.allows(0));
  EXPECT_THAT(row.looked, IsEmpty());
}

TEST(CutPoints, NeverCutBetweenTheNamesOfASample) {
  Row row("xxxxxxx");
  row.samples = {"a", "b", "c", "b", "d", "d", "e"};
  CutPoints points = row.points();

  EXPECT_TRUE(points.allows(1));   // a | b
  EXPECT_FALSE(points.allows(2));  // b | c, and b comes again
  EXPECT_FALSE(points.allows(3));
  EXPECT_TRUE(points.allows(4));
  EXPECT_FALSE(points.allows(5));
  EXPECT_TRUE(points.allows(6));
  EXPECT_THAT(row.looked, ElementsAre(1, 4, 6));
}

TEST(CutPoints, LookAtATraceOnce) {
  Row row("x.x");
  CutPoints points = row.points();

  for (int time = 0; time < 3; ++time) {
    points.allows(1);
    points.allows(2);
  }

  EXPECT_THAT(row.looked, ElementsAre(1, 2));
}

TEST(CutPoints, ByCountAreEven) {
  EXPECT_THAT(byCount("xxxxxxxxxx", 2), ElementsAre(0, 5));
  EXPECT_THAT(byCount("xxxxxxxxxx", 3), ElementsAre(0, 3, 6));
  EXPECT_THAT(byCount("xxxxxxxxxx", 1), ElementsAre(0));
}

TEST(CutPoints, ByCountAreNoMoreThanNames) {
  EXPECT_THAT(byCount("xxx", 9), ElementsAre(0, 1, 2));
  EXPECT_THAT(byCount("x", 9), ElementsAre(0));
  EXPECT_THAT(byCount("", 9), IsEmpty());
}

TEST(CutPoints, ByCountMoveToTheNearestAllowedCut) {
  EXPECT_THAT(byCount("xxxx..xxxx", 2), ElementsAre(0, 6));
  EXPECT_THAT(byCount("xxxxx.xxxx", 2), ElementsAre(0, 4));  // the lower one of two
  EXPECT_THAT(byCount("x........x", 2), ElementsAre(0, 9));
  EXPECT_THAT(byCount("xx........", 2), ElementsAre(0, 1));
  EXPECT_THAT(byCount("x.........", 2), ElementsAre(0));
  EXPECT_THAT(byCount("x...x...........", 4), ElementsAre(0, 4));
}

TEST(CutPoints, ByCountLookOnlyAtCandidates) {
  Row row(std::string(100000, 'x'));
  CutPoints points = row.points();

  startsByCount(points, 100);

  EXPECT_EQ(row.looked.size(), 99U);
}

TEST(CutPoints, BySizeFillTheShards) {
  EXPECT_THAT(bySize("xxxxxxxxxx", 4), ElementsAre(0, 4, 8));
  EXPECT_THAT(bySize("xxxxxxxxxx", 10), ElementsAre(0));
  EXPECT_THAT(bySize("xxxxxxxxxx", 9), ElementsAre(0, 9));
  EXPECT_THAT(bySize("xxx", 1), ElementsAre(0, 1, 2));
  EXPECT_THAT(bySize("", 1), IsEmpty());
}

TEST(CutPoints, BySizeExceedItOnlyWhereNoCutIsAllowed) {
  EXPECT_THAT(bySize("xxx.xxxxxx", 3), ElementsAre(0, 2, 5, 8));
  EXPECT_THAT(bySize("x....xxx", 3), ElementsAre(0, 5));
  EXPECT_THAT(bySize("x.......", 3), ElementsAre(0));
}

TEST(CutPoints, OfRandomRunsAgreeWithThePlainRule) {
  for (unsigned seed = 0; seed < 2000; ++seed) {
    const RandomRun run(seed);
    Indices allowed;
    CutPoints points = run.points();
    for (std::size_t index = 1; index < run.size(); ++index) {
      if (points.allows(index)) allowed.push_back(index);
    }
    EXPECT_EQ(allowed, run.allowedCuts()) << seed;

    const std::size_t number = 1 + seed % 13;
    CutPoints forCount = run.points();
    EXPECT_EQ(startsByCount(forCount, number), plainStartsByCount(run, number)) << seed;
    CutPoints forSize = run.points();
    EXPECT_EQ(startsBySize(forSize, number).size(), fewestShards(run, number)) << seed;
  }
}

TEST(CutPoints, OfRandomRunsChangeNoResult) {
  for (unsigned seed = 0; seed < 2000; ++seed) {
    const RandomRun run(seed);
    const auto whole = converted(run, {});
    const std::size_t number = 1 + seed % 13;

    CutPoints points = run.points();
    EXPECT_EQ(converted(run, startsByCount(points, number)), whole) << seed;
    EXPECT_EQ(converted(run, startsBySize(points, number)), whole) << seed;
  }
}

TEST(CutPoints, OfAnyOtherKindWouldChangeResults) {
  // What the tests above would find: a cut that the rule refuses changes a result in many runs.
  int changed = 0;
  for (unsigned seed = 0; seed < 200; ++seed) {
    const RandomRun run(seed);
    if (converted(run, {0, run.size() / 2}) != converted(run, {})) ++changed;
  }

  EXPECT_GT(changed, 20);
}

TEST(ReplacesCarriedCalls, IsTrueOfATraceWithCallsAndQualities) {
  const ScratchFolder folder;
  const std::string good = AbifBuilder().build();
  folder.write("good.ab1", good);
  folder.write("good.scf", ScfBuilder().build());
  folder.write("packed.gz", gzipped(good));
  folder.write("twice.gz", gzipped(good.substr(0, 100)) + gzipped(good.substr(100)));
  folder.write("refused.ab1",
               AbifBuilder()
                   .bases(std::string(60, 'A'))
                   .qualities([] {
                     std::vector<int> values(60, 30);
                     values[50] =
                         0;  // the converter's gate refuses the trace, after taking its calls
                     return values;
                   }())
                   .build());

  for (const char* name :
       {"good.ab1", "good.scf", "packed.gz", "packed", "twice.gz", "refused.ab1"}) {
    EXPECT_TRUE(replacesCarriedCalls(folder.at(name).text())) << name;
  }
}

TEST(ReplacesCarriedCalls, IsFalseOfAnythingElse) {
  const ScratchFolder folder;
  const std::string good = AbifBuilder().build();
  const std::string packed = gzipped(good);
  folder.write("text", "no trace");
  folder.write("none.ab1", AbifBuilder().bases("").build());
  folder.write("placeholder.ab1", AbifBuilder().qualities({9, 9, 9, 9}).build());
  folder.write("followed.gz", packed + "more");
  folder.write("zeros.gz", packed + std::string(512, '\0'));
  folder.write("checksum.gz", packed.substr(0, packed.size() - 8) + std::string(8, 'x'));
  folder.write("plain.gz", good);
  folder.write("packed.ab1", packed);
  folder.write("none.gz", gzipped(AbifBuilder().bases("").build()));
  folder.makeFolder("folder");

  for (const char* name :
       {"text", "none.ab1", "placeholder.ab1", "followed.gz", "followed", "zeros.gz", "checksum.gz",
        "plain.gz", "packed.ab1", "none.gz", "folder", "missing", "missing.gz"}) {
    EXPECT_FALSE(replacesCarriedCalls(folder.at(name).text())) << name;
  }
}
