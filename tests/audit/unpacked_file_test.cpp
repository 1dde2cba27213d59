#include "audit/unpacked_file.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <stdexcept>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/support/environment.h"
#include "tests/support/project_folder.h"

namespace {

namespace fs = std::filesystem;
using Quillet::UnpackedFile;

std::string bytesAt(const std::string& path) {
  std::string bytes(fs::file_size(path), '\0');
  std::ifstream stream(path, std::ios::binary);
  stream.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  return bytes;
}

/// What the system's gunzip makes of a file on its standard input.
std::string gunzipped(const ScratchFolder& folder, const std::string& name) {
  const std::string command =
      "gunzip -c -f < '" + std::string(folder.at(name).text()) + "' > gunzipped 2>/dev/null";
  // Its status says whether the file was intact, which is not asked here.
  if (std::system(command.c_str()) == -1) throw std::runtime_error("no shell");
  return folder.read("gunzipped");
}

/// Text that does not pack away to nothing.
std::string content(std::size_t size) {
  std::string text;
  std::uint32_t number = 1;
  while (text.size() < size) {
    number = number * 1664525 + 1013904223;
    text += static_cast<char>('A' + (number >> 24) % 50);
  }
  return text;
}

struct Unpacked {
  std::string bytes;
  bool isIntact;
  bool isGzip;
};

Unpacked unpack(const ScratchFolder& folder, const std::string& name) {
  const UnpackedFile file(folder.at(name).text());
  return {bytesAt(file.path()), file.isIntact(), file.isGzip()};
}

std::size_t openDescriptors() {
  const fs::directory_iterator all("/proc/self/fd");
  return static_cast<std::size_t>(std::distance(fs::begin(all), fs::end(all)));
}

TEST(UnpackedFile, AnIntactFileIsUnpackedWithoutGunzip) {
  const ScratchFolder folder;
  const std::string text = content(700'000);
  folder.write("one.gz", gzipped(text));
  folder.write("two.gz", gzipped(text) + gzipped("and more") + gzipped("") + gzipped("x"));
  folder.write("empty.gz", gzipped(""));
  const EnvironmentVariable path("PATH", "/nowhere");

  for (const auto& [name, bytes] :
       {std::pair{"one.gz", text}, {"two.gz", text + "and morex"}, {"empty.gz", std::string()}}) {
    const Unpacked unpacked = unpack(folder, name);
    EXPECT_TRUE(unpacked.bytes == bytes) << name;
    EXPECT_TRUE(unpacked.isIntact) << name;
    EXPECT_TRUE(unpacked.isGzip) << name;
  }
}

/// The text as one member of exactly `size` bytes: a comment in its header fills it up.
std::string memberOfSize(const std::string& text, std::size_t size) {
  constexpr std::size_t headerSize = 10;
  constexpr std::size_t flags = 3;
  constexpr char commentFollows = 0x10;
  std::string member = gzipped(text);
  member[flags] = static_cast<char>(member[flags] | commentFollows);
  const std::string comment(size - member.size() - 1, 'c');
  return member.insert(headerSize, comment + '\0');
}

// The file is read in pieces of 256 KiB.
TEST(UnpackedFile, AMemberMayEndWhereAPieceOfTheFileEnds) {
  const ScratchFolder folder;
  const std::string text = content(100'000);
  for (const int distance : {-9, -8, -1, 0, 1, 8, 10}) {
    const auto size = static_cast<std::size_t>((1 << 18) + distance);
    const std::string member = memberOfSize(text, size);
    ASSERT_EQ(member.size(), size);

    folder.write("alone.gz", member);
    folder.write("two.gz", member + gzipped("tail"));
    folder.write("followed.gz", member + "x");

    EXPECT_TRUE(unpack(folder, "alone.gz").bytes == text);
    EXPECT_TRUE(unpack(folder, "alone.gz").isIntact) << distance;
    EXPECT_TRUE(unpack(folder, "two.gz").bytes == text + "tail");
    EXPECT_TRUE(unpack(folder, "two.gz").isIntact) << distance;
    EXPECT_FALSE(unpack(folder, "followed.gz").isIntact) << distance;
  }
}

TEST(UnpackedFile, OfAnyOtherFileItHoldsWhatGunzipMakesOfIt) {
  const ScratchFolder folder;
  const std::string packed = gzipped(content(100'000));
  std::string wrongChecksum = packed;
  wrongChecksum[packed.size() - 8] ^= 1;
  std::string wrongLength = packed;
  wrongLength[packed.size() - 4] ^= 1;
  std::string wrongByte = packed;
  wrongByte[packed.size() / 2] ^= 0x10;
  const struct {
    const char* name;
    std::string bytes;
    bool isGzip;
  } cases[] = {
      {"cut", packed.substr(0, packed.size() / 2), true},
      {"cut checksum", packed.substr(0, packed.size() - 6), true},
      {"cut header", packed.substr(0, 7), true},
      {"wrong checksum", wrongChecksum, true},
      {"wrong length", wrongLength, true},
      {"wrong byte", wrongByte, true},
      {"followed", packed + "something else", true},
      {"followed by zeros", packed + std::string(512, '\0'), true},
      {"followed by a cut member", packed + packed.substr(0, packed.size() / 2), true},
      {"plain", content(300'000), false},
      {"empty", "", false},
      {"one byte", "\x1f", false},
  };
  for (const auto& row : cases) {
    folder.write("x.gz", row.bytes);
    const Unpacked unpacked = unpack(folder, "x.gz");
    EXPECT_TRUE(unpacked.bytes == gunzipped(folder, "x.gz")) << row.name;
    EXPECT_FALSE(unpacked.isIntact) << row.name;
    EXPECT_EQ(unpacked.isGzip, row.isGzip) << row.name;
  }
  EXPECT_EQ(gunzipped(folder, "x.gz"), "\x1f") << "a byte passes";
}

TEST(UnpackedFile, EveryCutGivesWhatGunzipGives) {
  const ScratchFolder folder;
  const std::string packed = gzipped(content(3000));
  for (std::size_t size = 0; size < packed.size(); size += 97) {
    folder.write("x.gz", packed.substr(0, size));
    EXPECT_TRUE(unpack(folder, "x.gz").bytes == gunzipped(folder, "x.gz")) << size;
  }
}

TEST(UnpackedFile, NoNameReachesAShell) {
  const ScratchFolder folder;
  const std::string name = "a; touch 'made' $(touch made) `touch made` | b.gz";
  folder.write(name, "plain");

  EXPECT_EQ(unpack(folder, name).bytes, "plain");
  EXPECT_FALSE(folder.has("made"));
}

TEST(UnpackedFile, WhatCanNotBeOpenedIsEmpty) {
  const ScratchFolder folder;
  folder.makeFolder("folder.gz");
  ASSERT_EQ(mkfifo("pipe.gz", 0600), 0);

  for (const char* name : {"missing.gz", "folder.gz", "pipe.gz"}) {
    const Unpacked unpacked = unpack(folder, name);
    EXPECT_EQ(unpacked.bytes, "") << name;
    EXPECT_FALSE(unpacked.isIntact) << name;
    EXPECT_FALSE(unpacked.isGzip) << name;
  }
}

TEST(UnpackedFile, LongContentGoesToAnUnnamedFileInTmpdir) {
  const ScratchFolder folder;
  folder.makeFolder("tmp");
  const EnvironmentVariable place("TMPDIR", folder.at("tmp").text());
  const std::size_t limit = std::size_t{64} << 20;
  for (const std::size_t size : {limit, limit + 1}) {
    folder.write("x.gz", gzipped(std::string(size, 'A')));
    const UnpackedFile file(folder.at("x.gz").text());
    const std::string target = fs::read_symlink(file.path());
    EXPECT_EQ(target.starts_with("/memfd:"), size == limit) << target;
    EXPECT_EQ(target.starts_with(folder.at("tmp").text()), size > limit) << target;
    EXPECT_EQ(fs::file_size(file.path()), size);
    EXPECT_TRUE(fs::is_empty("tmp"));
    EXPECT_TRUE(bytesAt(file.path()) == std::string(size, 'A'));
  }
}

TEST(UnpackedFile, WithoutRoomOrGunzipThereIsAnError) {
  const ScratchFolder folder;
  folder.write("long.gz", gzipped(std::string((std::size_t{64} << 20) + 1, 'A')));
  folder.write("plain.gz", "plain");
  const std::size_t before = openDescriptors();
  {
    const EnvironmentVariable place("TMPDIR", folder.at("nowhere").text());
    EXPECT_THROW(UnpackedFile(folder.at("long.gz").text()), std::runtime_error);
  }
  {
    const EnvironmentVariable path("PATH", "/nowhere");
    EXPECT_THROW(UnpackedFile(folder.at("plain.gz").text()), std::runtime_error);
  }
  EXPECT_EQ(openDescriptors(), before);
}

TEST(UnpackedFile, DescriptorsAreClosedAndNotInherited) {
  const ScratchFolder folder;
  folder.write("x.gz", gzipped("content"));
  folder.write("y.gz", "plain");
  const std::size_t before = openDescriptors();
  for (int i = 0; i < 20; ++i) {
    unpack(folder, "x.gz");
    unpack(folder, "y.gz");
  }
  EXPECT_EQ(openDescriptors(), before);

  const UnpackedFile kept(folder.at("x.gz").text());
  ASSERT_EQ(std::system("ls -l /proc/self/fd > seen"), 0);
  EXPECT_EQ(folder.read("seen").find("memfd"), std::string::npos);
}

}  // namespace
