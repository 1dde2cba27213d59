#include "tests/report/faults.h"

#include <algorithm>

#include "tests/support/trace_builder.h"

namespace {

const Outcome cutPhd{"cut", "phd"};
const Outcome cutPoly{"cut", "poly"};

Outcome differs(const std::string& detail) { return {"differs", detail}; }

const std::string toolBlocks =
    "\nBEGIN_TAG\nTYPE: polymorphism\nSOURCE: other\nUNPADDED_READ_POS: 3 4\nDATE: 21/11/26\n"
    "END_TAG\n\n\nWR{\nchecked other 261121:101010\nfine\n}\n";

}  // namespace

std::vector<Fault> resultFaults() {
  using Project = const ConvertedProject&;
  return {
      {"nothing", [](Project) {}},
      {"two results swapped, as many bases",
       [](Project p) {
         p.swap(p.phdName("s00"), p.phdName("s01"));
         p.swap(p.polyName("s00"), p.polyName("s01"));
       },
       {{"s00.ab1", differs("bases,qualities,positions,header,poly")},
        {"s01.ab1", differs("bases,qualities,positions,header,poly")}}},
      {"two .phd.1 swapped, other numbers of bases",
       [](Project p) { p.swap(p.phdName("s08"), p.phdName("s16")); },
       {{"s08.ab1", differs("bases,qualities,positions,header")},
        {"s16.ab1", differs("bases,qualities,positions,header")}}},
      {"the calls of another read under the own header",
       [](Project p) { p.replace(p.phdName("s04"), p.phdBases("s04"), p.phdBases("s05")); },
       {{"s04.ab1.gz", differs("bases,qualities,positions")}}},
      {"one base", [](Project p) { p.changePhd("s02", 60, 0); }, {{"s02.scf", differs("bases")}}},
      {"one quality",
       [](Project p) { p.changePhd("s03", 0, 1); },
       {{"s03.scf", differs("qualities")}}},
      {"one position",
       [](Project p) { p.changePhd("s05", 91, 2); },
       {{"s05.scf.gz", differs("positions")}}},
      {"a base and a position",
       [](Project p) {
         p.changePhd("s06 a b", 10, 0);
         p.changePhd("s06 a b", 20, 2);
       },
       {{"s06 a b.ab1", differs("bases,positions")}}},
      {"the caller's name",
       [](Project p) { p.replace(p.phdName("s07'\"q\""), "CALL_METHOD: ", "CALL_METHOD: x"); },
       {{"s07'\"q\".scf", differs("header")}}},
      {"the sample's name in the .phd.1",
       [](Project p) { p.replace(p.phdName("s09"), "BEGIN_SEQUENCE s09", "BEGIN_SEQUENCE s08"); },
       {{"s09.ab1", differs("header")}}},
      {"a last base less, which makes the .poly too long",
       [](Project p) {
         const std::string bases = p.phdBases("s10");
         p.replace(p.phdName("s10"), bases,
                   bases.substr(0, bases.rfind('\n', bases.size() - 2) + 1));
       },
       {{"s10.scf", differs("bases,qualities,positions")}}},
      {"a .poly's second base",
       [](Project p) { p.changePoly("s11", 30, 4); },
       {{"s11.scf", differs("poly")}}},
      {"a .poly's height",
       [](Project p) { p.changePoly("s12", 0, 11); },
       {{"s12.ab1.gz", differs("poly")}}},
      {"a .poly's name",
       [](Project p) { p.replace(p.polyName("s13"), "s13 1", "s12 1"); },
       {{"s13.scf.gz", differs("poly")}}},
      {"a quality and a .poly's position",
       [](Project p) {
         p.changePhd("s14 a b", 5, 1);
         p.changePoly("s14 a b", 6, 1);
       },
       {{"s14 a b.ab1", differs("qualities,poly")}}},
      {"a quality, and the .poly cut",
       [](Project p) {
         p.changePhd("s16", 5, 1);
         p.cut(p.polyName("s16"), 100);
       },
       {{"s16.ab1", differs("qualities")}}},
      {"a quality, and the .poly gone",
       [](Project p) {
         p.changePhd("s17", 5, 1);
         p.remove(p.polyName("s17"));
       },
       {{"s17.ab1", differs("qualities")}}},
      {"another time",
       [](Project p) {
         p.replace(p.phdName("s18"), "TIME: " + p.phdTime("s18"), "TIME: Sat Jan  1 00:00:00 2000");
       }},
      {"blocks of other tools",
       [](Project p) {
         p.replace(p.phdName("s19"), "END_DNA\n", "END_DNA\n" + toolBlocks);
         p.replace(p.phdName("s20"), "END_SEQUENCE\n", "END_SEQUENCE\n" + toolBlocks);
         p.replace(p.phdName("s21"), "END_SEQUENCE\n", "\n\nEND_SEQUENCE\n\n");
       }},
      {"blocks of other tools in a result that differs",
       [](Project p) {
         p.replace(p.phdName("s19"), "END_DNA\n", "END_DNA\n" + toolBlocks);
         p.changePhd("s19", 7, 1);
       },
       {{"s19.scf", differs("qualities")}}},
      {"other lines after the bases",
       [](Project p) {
         p.replace(p.phdName("s22 a b"), "END_DNA\n", "END_DNA\nhello\n");
         p.replace(p.phdName("s24"), "END_SEQUENCE\n", "END_SEQUENCE\nhello\n");
         p.replace(p.phdName("s25"), "END_DNA\n", "END_DNA\nBEGIN_TAG\n");
         p.replace(p.phdName("s26"), "END_SEQUENCE\n", "END_SEQUENCE\nWR{\n");
       },
       {{"s22 a b.ab1", cutPhd}, {"s24.ab1", cutPhd}, {"s25.ab1", cutPhd}, {"s26.scf", cutPhd}}},
      {"a .phd.1 without its beginning",
       [](Project p) { p.replace(p.phdName("s27"), "BEGIN_SEQUENCE", "\nBEGIN_SEQUENCE"); },
       {{"s27.scf", cutPhd}}},
      {"results of no length",
       [](Project p) {
         p.write(p.phdName("s28"), "");
         p.write(p.polyName("s29"), "");
         p.write(p.phdName("s30 a b"), "");
         p.write(p.polyName("s30 a b"), "");
       },
       {{"s28.ab1.gz", cutPhd}, {"s29.scf.gz", cutPoly}, {"s30 a b.ab1", {"cut", "phd,poly"}}}},
      {"both halves cut",
       [](Project p) {
         p.cut(p.phdName("s32"), 700);
         p.cut(p.polyName("s32"), 700);
       },
       {{"s32.ab1", {"cut", "phd,poly"}}}},
      {"a .poly with a line too many",
       [](Project p) { p.write(p.polyName("s33"), p.poly("s33") + "A 1 2 0 N 0 0 0 1 2 3 4\n"); },
       {{"s33.ab1", cutPoly}}},
      {"a .poly's line with a field less",
       [](Project p) {
         std::string poly = p.poly("s34");
         poly.erase(poly.rfind(' '), poly.size() - 1 - poly.rfind(' '));
         p.write(p.polyName("s34"), poly);
       },
       {{"s34.scf", cutPoly}}},
      {"folders in the place of results",
       [](Project p) {
         p.remove(p.phdName("s35"));
         p.makeFolder(p.phdName("s35"));
         p.remove(p.polyName("s36"));
         p.makeFolder(p.polyName("s36"));
       },
       {{"s35.scf", cutPhd}, {"s36.ab1.gz", cutPoly}}},
      {"no .poly",
       [](Project p) { p.remove(p.polyName("s37")); },
       {{"s37.scf.gz", {"no-poly", ""}}}},
      {"no .phd.1",
       [](Project p) { p.remove(p.phdName("s38 a b")); },
       {{"s38 a b.ab1", {"waiting", ""}}}},
      {"no .phd.1, and a .poly that is cut",
       [](Project p) {
         p.remove(p.phdName("s40"));
         p.cut(p.polyName("s40"), 5);
       },
       {{"s40.ab1", {"waiting", ""}}}},
      {"no result where there are no calls",
       [](Project p) { p.remove(p.phdName("t_no_calls")); },
       {{"t_no_calls.ab1", {"refused", "no calls"}}}},
      {"no result where there are no qualities",
       [](Project p) { p.remove(p.phdName("t_no_qualities")); },
       {{"t_no_qualities.ab1", {"refused", "no qualities"}}}},
      {"results of no trace",
       [](Project p) {
         p.write(p.phdName("zz"), p.phd("s00"));
         p.write(p.polyName("a old"), "x");
         p.write(p.phdName("m"), "");
         p.write(p.polyName("m"), "");
         p.write(p.phdName(".hidden"), "");
         p.write(p.polyName(".hidden"), "");
         p.write("phd_dir/s00.phd.2", "");
         p.write("phd_dir/notes", "");
       },
       {},
       {},
       {},
       {{"a old", "poly"}, {"m", "phd,poly"}, {"zz", "phd"}}},
  };
}

std::vector<Fault> borrowedFaults() {
  using Project = const ConvertedProject&;
  return {
      {"borrowed calls",
       [](Project p) {
         p.convert({"s41.ab1", "t_no_calls.ab1"});
       },
       {{"t_no_calls.ab1", {"borrowed", "calls"}}}},
      {"borrowed qualities",
       [](Project p) {
         p.convert({"s41.ab1", "t_no_qualities.ab1"});
       },
       {{"t_no_qualities.ab1", {"borrowed", "qualities"}}}},
      {"borrowed qualities of a trace that would be refused without them",
       [](Project p) {
         TraceContents content = believableTrace(102, 150);
         std::fill(content.qualities.begin(), content.qualities.end(), 9);
         p.addTrace("u.ab1", content.abif().build());
         p.convert({"s60.ab1.gz", "u.ab1"});
       },
       {},
       {{"u.ab1", {"borrowed", "qualities"}}}},
      {"borrowed qualities with another base",
       [](Project p) {
         p.convert({"s41.ab1", "t_no_qualities.ab1"});
         p.changePhd("t_no_qualities", 3, 0);
       },
       {{"t_no_qualities.ab1", differs("bases,qualities")}}},
      {"borrowed calls under another header",
       [](Project p) {
         p.convert({"s41.ab1", "t_no_calls.ab1"});
         p.replace(p.phdName("t_no_calls"), "CALL_METHOD: ", "CALL_METHOD: x");
       },
       {{"t_no_calls.ab1", differs("bases,qualities,positions,header,poly")}}},
  };
}

std::vector<Fault> traceFaults() {
  using Project = const ConvertedProject&;
  return {
      {"a trace gone",
       [](Project p) { p.remove("chromat_dir/s42.scf"); },
       {},
       {},
       {"s42.scf"},
       {{"s42", "phd,poly"}}},
      {"traces damaged after the run",
       [](Project p) {
         p.addTrace("s43.scf", "<html>");
         p.addTrace("s44.ab1.gz", p.read("chromat_dir/s44.ab1.gz").substr(0, 20));
         p.addTrace("s45.scf.gz", "");
       },
       {},
       {{"s43.scf", differs("invalid")},
        {"s44.ab1.gz", differs("invalid")},
        {"s45.scf.gz", differs("invalid")}}},
      {"a trace whose calls the gate refuses now",
       [](Project p) {
         TraceContents content = p.trace("s48").content;
         content.qualities[42] = 0;
         p.addTrace("s48.ab1", content.abif().callerName("caller 6").build());
       },
       {},
       {{"s48.ab1", differs("refused")}}},
      {"a trace without results that the gate refuses",
       [](Project p) {
         TraceContents content = believableTrace(103, 100);
         content.qualities[42] = 0;
         p.addTrace("u.ab1", content.abif().build());
         content.qualities[42] = 100;
         p.addTrace("v.ab1", content.abif().build());
         content.qualities[42] = 30;
         content.qualities[12] = 0;
         p.addTrace("w.ab1", content.abif().build());
       },
       {},
       {{"u.ab1", {"refused", "quality 0 at base 43"}},
        {"v.ab1", {"refused", "quality 100 at base 43"}},
        {"w.ab1", {"refused", "quality 0 at base 13"}}}},
      {"a new trace",
       [](Project p) { p.addTrace("u.ab1", believableTrace(104, 100).abif().build()); },
       {},
       {{"u.ab1", {"waiting", ""}}}},
      {"a second trace of a sample that is done",
       [](Project p) { p.addTrace("s49.scf", believableTrace(105, 100).scf().build()); },
       {},
       {{"s49.scf", {"hidden", "s49.ab1"}}}},
      {"a second trace of a sample, first in order, that is done by the other",
       [](Project p) { p.addTrace("s50.ab1", believableTrace(106, 100).abif().build()); },
       {},
       {{"s50.ab1", {"hidden", "s50.scf"}}}},
      {"a second trace of a sample that is done, unreadable",
       [](Project p) { p.addTrace("s51.ab1", "nothing"); },
       {},
       {{"s51.ab1", {"invalid", "not a trace"}}}},
      {"two traces of a sample that is not done",
       [](Project p) {
         p.addTrace("u.ab1", believableTrace(107, 100).abif().build());
         p.addTrace("u.scf", believableTrace(108, 100).scf().build());
       },
       {},
       {{"u.ab1", {"waiting", ""}}, {"u.scf", {"hidden", "u.ab1"}}}},
      {"the later trace of a sample over the earlier one's result",
       [](Project p) {
         p.addTrace("s56.scf", believableTrace(109, 100).scf().build());
         p.convert({"s56.ab1", "s56.scf"});
       },
       {{"s56.ab1", {"hidden", "s56.scf"}}},
       {{"s56.scf", {"converted", ""}}}},
      {"one of two traces gone, its result is the other's",
       [](Project p) {
         p.remove("chromat_dir/s57.ab1");
         p.addTrace("s57.scf", p.trace("s57").content.scf().build());
       },
       {},
       {{"s57.scf", differs("header")}},
       {"s57.ab1"}},
  };
}

std::string sampleOf(const std::string& trace) {
  std::string sample = trace;
  for (const char* ending : {".gz", ".ab1", ".scf"}) {
    if (sample.ends_with(ending)) sample.resize(sample.size() - std::string(ending).size());
  }
  return sample;
}
