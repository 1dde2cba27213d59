#include "shards/shard_names.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

using Quillet::unpackableNames;
using Quillet::unpackedName;
using Names = std::vector<std::string>;

TEST(ShardNames, OnlyAFinalGzIsAnEnding) {
  const struct {
    const char* name;
    const char* unpacked;
  } rows[] = {
      {"x.ab1.gz", "x.ab1"},
      {"x.gz", "x"},
      {"x.gz.gz", "x.gz"},
      {"..gz", "."},
      {".gz", ""},
      {"gz", "gz"},
      {"", ""},
      {"x.GZ", "x.GZ"},
      {"x.gz.ab1", "x.gz.ab1"},
      {"x.ab1gz", "x.ab1gz"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(unpackedName(row.name), row.unpacked);
    EXPECT_EQ(Quillet::isPackedName(row.name), std::string(row.name) != row.unpacked) << row.name;
  }
}

/// The names of a shard; "+" stands before those that can be unpacked.
struct Row {
  Names marked;
  const char* why;
};

void expectRows(const std::vector<Row>& rows, bool listed) {
  for (const Row& row : rows) {
    Names names;
    for (const std::string& name : row.marked) {
      names.push_back(name.substr(name.starts_with('+') ? 1 : 0));
    }
    const std::vector<bool> unpackable = unpackableNames(names, listed);
    ASSERT_EQ(unpackable.size(), names.size());
    for (std::size_t i = 0; i < names.size(); ++i) {
      EXPECT_EQ(unpackable[i], row.marked[i].starts_with('+')) << names[i] << ": " << row.why;
    }
  }
}

TEST(ShardNames, WithoutAListANameIsUnpackedWhereItKeepsItsPlace) {
  expectRows({{{}, "an empty shard"},
              {{"+a.ab1.gz", "+b.ab1.gz", "c.ab1"}, "nothing between"},
              {{"a.ab1", "a.ab1.gz"}, "its plain namesake"},
              {{"x.ab1-1.ab1", "x.ab1.gz"}, "x.ab1 sorts before x.ab1-1.ab1"},
              {{"x.ab1 1", "x.ab1.gz"}, "a blank sorts before the dot"},
              {{"+x.ab1.gz", "x.ab1.gz0"}, "what sorts after it does not matter"},
              {{"+x.ab1-1.gz", "x.ab1.gz"}, "x.ab1 sorts before x.ab1-1 too"},
              {{"+a.gz", "+a.gz0.gz"}, "a.gz0 sorts after a.gz"},
              {{"x.gz.gz"}, "the converter cuts off every .gz once"},
              {{"a.GZ", "b.gz.ab1"}, "no endings"},
              {{"a", "+b.gz"}, "b sorts after a"},
              {{"+b.gz"}, "the first name"}},
             false);
}

TEST(ShardNames, WithAListANameIsUnpackedWhereItsPlainNameIsNotListed) {
  expectRows({{{}, "an empty shard"},
              {{"z.ab1", "+b.ab1.gz", "c.ab1"}, "the order does not matter"},
              {{"+x.ab1.gz", "x.ab1-1.ab1"}, "another name"},
              {{"x.ab1.gz", "b", "x.ab1"}, "listed after it"},
              {{"x.ab1", "x.ab1.gz"}, "listed before it"},
              {{"+x.ab1.gz", "+x.ab1.gz"}, "a repetition"},
              {{"x.gz.gz", ".gz", ""}, "no endings, two, or nothing else"}},
             true);
}

// All shards of up to four names out of these, by brute force.
TEST(ShardNames, WithoutAListUnpackedNamesKeepTheOrderOfAll) {
  const Names pool = {"a",       "a-1",   "a-1.gz",   "a.ab1", "a.ab1-1", "a.ab1.gz", "a.gz",
                      "a.gz.gz", "a.gz0", "a.gz0.gz", "a0",    "a0.gz",   "aa.gz.gz", "b.gz"};
  ASSERT_TRUE(std::is_sorted(pool.begin(), pool.end()));
  for (unsigned chosen = 0; chosen < 1U << pool.size(); ++chosen) {
    Names names;
    for (std::size_t i = 0; i < pool.size(); ++i) {
      if ((chosen >> i & 1U) != 0) names.push_back(pool[i]);
    }

    const std::vector<bool> unpackable = unpackableNames(names, false);

    for (std::size_t i = 0; i < names.size(); ++i) {
      if (unpackable[i]) names[i] = unpackedName(names[i]);
    }
    for (std::size_t i = 1; i < names.size(); ++i) ASSERT_LT(names[i - 1], names[i]);
  }
}

}  // namespace
