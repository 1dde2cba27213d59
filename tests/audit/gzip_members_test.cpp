#include "audit/gzip_members.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <string>
#include <unistd.h>

#include "tests/support/project_folder.h"

namespace {

using Quillet::GzipContent;
using Quillet::unpackMembers;

struct Unpacked {
  GzipContent content;
  std::string bytes;
};

/// Unpacks a file of these bytes until more than `limit` bytes have come.
Unpacked unpack(const std::string& packed, std::size_t limit = 1 << 30) {
  const ScratchFolder folder;
  folder.write("x.gz", packed);
  const int descriptor = open("x.gz", O_RDONLY);
  Unpacked unpacked{};
  unpacked.content = unpackMembers(descriptor, [&](const unsigned char* bytes, std::size_t count) {
    unpacked.bytes.append(reinterpret_cast<const char*>(bytes), count);
    return unpacked.bytes.size() <= limit;
  });
  close(descriptor);
  return unpacked;
}

TEST(GzipMembers, CompleteMembersAreIntact) {
  for (const auto& [packed, bytes] : {std::pair{gzipped("one"), "one"},
                                      {gzipped("one") + gzipped("two"), "onetwo"},
                                      {gzipped(""), ""}}) {
    const Unpacked unpacked = unpack(packed);

    EXPECT_EQ(unpacked.content, GzipContent::intact);
    EXPECT_EQ(unpacked.bytes, bytes);
  }
}

TEST(GzipMembers, AnythingElseIsDamaged) {
  const std::string packed = gzipped("content");
  std::string wrongChecksum = packed;
  wrongChecksum[packed.size() - 8] ^= 1;
  for (const std::string& bytes :
       {std::string(), std::string("plain"), packed.substr(0, packed.size() - 1), wrongChecksum,
        packed + '\0', packed + "x", packed + packed.substr(0, 5)}) {
    EXPECT_EQ(unpack(bytes).content, GzipContent::damaged);
  }
}

TEST(GzipMembers, NoMoreBytesComeOnceTheyAreRefused) {
  const std::size_t size = std::size_t{3} << 20;

  const Unpacked unpacked = unpack(gzipped(std::string(size, 'A')), 1 << 20);

  EXPECT_EQ(unpacked.content, GzipContent::refused);
  EXPECT_GT(unpacked.bytes.size(), std::size_t{1} << 20);
  EXPECT_LT(unpacked.bytes.size(), size);
}

}  // namespace
