#include "audit/trace_reading.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>
#include <vector>

#include "tests/support/ordinary_user.h"
#include "tests/support/project_folder.h"
#include "tests/support/trace_builder.h"

namespace {

namespace fs = std::filesystem;
using Quillet::readTrace;
using Quillet::TraceReading;

const std::string good = AbifBuilder().build();

TraceReading read(const ScratchFolder& folder, const std::string& name) {
  return readTrace(folder.at(name).text());
}

std::string fault(const ScratchFolder& folder, const std::string& name) {
  return read(folder, name).fault;
}

std::string faultOf(const std::string& bytes) {
  const ScratchFolder folder;
  folder.write("trace", bytes);
  return fault(folder, "trace");
}

TEST(TraceReading, GivesContentCallerAndNotes) {
  const ScratchFolder folder;
  folder.write("trace.ab1", AbifBuilder().entry("MCHN", 1, "\x09sequencer").build());

  const TraceReading reading = read(folder, "trace.ab1");

  EXPECT_EQ(reading.fault, "");
  EXPECT_EQ(reading.content.calls.count, 4U);
  EXPECT_EQ(reading.content.callerName, "built.bcp");
  EXPECT_EQ(reading.packedPath, "");
}

TEST(TraceReading, NamesWhatKeepsAFileFromBeingOpened) {
  const ScratchFolder folder;
  folder.makeFolder("folder");
  folder.makeFolder("folder.gz");
  ASSERT_EQ(mkfifo("pipe", 0600), 0);
  ASSERT_EQ(mkfifo("pipe.gz", 0600), 0);
  folder.write("file", good);
  fs::create_symlink("nowhere", "dangling");
  fs::create_symlink("loop", "loop");

  EXPECT_EQ(fault(folder, "missing"), "no such file");
  EXPECT_EQ(fault(folder, "missing.gz"), "no such file");
  EXPECT_EQ(fault(folder, "dangling"), "no such file");
  EXPECT_EQ(fault(folder, "file/below"), "no such file");
  EXPECT_EQ(fault(folder, std::string(300, 'x')), "no such file");
  EXPECT_EQ(fault(folder, "folder"), "not a file");
  EXPECT_EQ(fault(folder, "folder.gz"), "not a file");
  EXPECT_EQ(fault(folder, "pipe"), "not a file");
  EXPECT_EQ(fault(folder, "pipe.gz"), "not a file");
  EXPECT_EQ(fault(folder, "loop"), "not readable");
}

TEST(TraceReading, AClosedFileIsNotReadable) {
  const OpenScratchFolder folder;
  folder.write("trace", good);
  folder.write("trace.gz", gzipped(good));
  folder.write("closed/trace", good);
  for (const char* name : {"trace", "trace.gz", "closed"}) {
    fs::permissions(name, fs::perms::none);
  }
  const OrdinaryUser user;
  if (!user.isOrdinary()) GTEST_SKIP() << "the superuser reads every file";

  EXPECT_EQ(fault(folder, "trace"), "not readable");
  EXPECT_EQ(fault(folder, "trace.gz"), "not readable");
  EXPECT_EQ(fault(folder, "closed/trace"), "not readable");
}

TEST(TraceReading, NamesWhatKeepsAFileFromBeingATrace) {
  EXPECT_EQ(faultOf(""), "not a trace");
  EXPECT_EQ(faultOf("some text"), "not a trace");
  EXPECT_EQ(faultOf(good.substr(0, good.size() - 30)), "directory cut");
  EXPECT_EQ(faultOf(AbifBuilder().without("FWO_", 1).build()), "no base order");
  EXPECT_EQ(faultOf(AbifBuilder().baseOrder("GATX").build()), "no base order");
  EXPECT_EQ(faultOf(AbifBuilder().without("DATA", 11).build()), "no analysed channels");
  EXPECT_EQ(faultOf(AbifBuilder().count("DATA", 9, 0).build()), "no analysed channels");
  EXPECT_EQ(faultOf(AbifBuilder().count("DATA", 12, 11).last("DATA", 12).build()),
            "channel lengths differ");
  EXPECT_EQ(faultOf(AbifBuilder().count("PLOC", 1, 3).build()), "call counts differ");
  EXPECT_EQ(faultOf(AbifBuilder().dataOffset("DATA", 9, 0x80000000).build()),
            "data beyond the file");
  EXPECT_EQ(faultOf(ScfBuilder().header(4, 0xFFFFFFFF).build()), "data beyond the file");
}

TEST(TraceReading, FindsAGzippedFileUnderBothOfItsNames) {
  const ScratchFolder folder;
  folder.write("trace.ab1.gz", gzipped(good));
  const std::string packed = folder.at("trace.ab1.gz").text();

  for (const char* name : {"trace.ab1", "trace.ab1.gz"}) {
    const TraceReading reading = read(folder, name);
    EXPECT_EQ(reading.fault, "") << name;
    EXPECT_EQ(reading.content.calls.count, 4U);
    EXPECT_EQ(reading.packedPath, packed);
  }
}

TEST(TraceReading, APlainFileComesBeforeTheGzippedOneAndMayBeGzippedUnderItsName) {
  const ScratchFolder folder;
  folder.write("trace", "no trace");
  folder.write("trace.gz", good);  // not packed at all

  EXPECT_EQ(fault(folder, "trace"), "not a trace");
  EXPECT_EQ(fault(folder, "trace.gz"), "");
}

TEST(TraceReading, APackedFileThatIsNamedLikeAPlainOneIsNoTrace) {
  const ScratchFolder folder;
  folder.write("trace.ab1", gzipped(good));

  EXPECT_EQ(fault(folder, "trace.ab1"), "not a trace");
}

TEST(TraceReading, AFileNamedOnlyGzIsUnpacked) {
  const ScratchFolder folder;
  folder.write(".gz", gzipped(good));

  EXPECT_EQ(fault(folder, ".gz"), "");
}

TEST(TraceReading, ADamagedGzipFileIsOneThatCanNotBeRead) {
  const ScratchFolder folder;
  const std::string packed = gzipped(good);
  folder.write("cut.gz", packed.substr(0, packed.size() / 2));
  folder.write("followed.gz", packed + "more");
  folder.write("checksum.gz", packed.substr(0, packed.size() - 8) + std::string(8, 'x'));
  folder.write("text.gz", gzipped("some text"));
  folder.write("plain_text.gz", "some text");
  const std::string scf = gzipped(ScfBuilder().build());
  folder.write("cut_scf.gz", scf.substr(0, scf.size() - 12));

  EXPECT_EQ(fault(folder, "cut.gz"), "damaged gzip");
  EXPECT_EQ(fault(folder, "followed.gz"), "");
  EXPECT_EQ(fault(folder, "checksum.gz"), "");
  EXPECT_EQ(fault(folder, "text.gz"), "not a trace");
  EXPECT_EQ(fault(folder, "plain_text.gz"), "not a trace");
  EXPECT_EQ(fault(folder, "cut_scf.gz"), "");  // what an SCF file lacks is zero
}

TEST(TraceReading, SaysWhetherAGzippedFileIsDamaged) {
  const ScratchFolder folder;
  const std::string packed = gzipped(good);
  folder.write("plain", good);
  folder.write("intact.gz", packed);
  folder.write("two_members.gz", gzipped(good.substr(0, 99)) + gzipped(good.substr(99)));
  folder.write("followed.gz", packed + "more");
  folder.write("checksum.gz", packed.substr(0, packed.size() - 8) + std::string(8, 'x'));
  folder.write("plain.gz", good);

  EXPECT_FALSE(read(folder, "plain").isDamaged);
  EXPECT_FALSE(read(folder, "intact.gz").isDamaged);
  EXPECT_FALSE(read(folder, "intact").isDamaged);
  EXPECT_FALSE(read(folder, "two_members.gz").isDamaged);
  EXPECT_TRUE(read(folder, "followed.gz").isDamaged);
  EXPECT_TRUE(read(folder, "followed").isDamaged);
  EXPECT_TRUE(read(folder, "checksum.gz").isDamaged);
  EXPECT_TRUE(read(folder, "plain.gz").isDamaged);
}

}  // namespace
