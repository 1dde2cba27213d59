#include "output/file_writer.h"

#include <cstdint>
#include <functional>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

#include "tests/output/written_bytes.h"
#include "tests/support/scratch_folder.h"

// Compares random runs of operations with a model that only appends to a std::string.

namespace {

using Tessaly::FileWriter;
using Tessaly::String;

/// One operation and the bytes that it must add to the file.
struct Step {
  std::function<void(FileWriter&)> action;
  std::string expected;
};

struct NumberText {
  double value;
  const char* text;
};

constexpr NumberText doubles[] = {
    {0.0, "0"},     {2.5, "2.5"},           {-0.25, "-0.25"},
    {100.0, "100"}, {-1234500, "-1234500"}, {1e15, "1000000000000000"},
    {0.05, "0.05"}, {1e-7, "1.e-07"}};

class StepMaker {
 public:
  explicit StepMaker(std::uint32_t seed) : random(seed) {}

  Step next() {
    switch (below(7)) {
      case 0:
        return textStep();
      case 1:
        return characterStep();
      case 2:
        return integerStep();
      case 3:
        return doubleStep();
      case 4:
        return fieldStep();
      case 5:
        return alignedStep();
      default:
        return binaryStep();
    }
  }

 private:
  std::uint32_t below(std::uint32_t limit) { return static_cast<std::uint32_t>(random()) % limit; }

  std::string text() {
    std::string result;
    for (std::uint32_t left = below(4) == 0 ? below(300) : below(20); left > 0; --left) {
      result += static_cast<char>('!' + below(90));
    }
    return result;
  }

  std::int32_t integer() {
    const auto bits = static_cast<std::uint32_t>(random());
    return static_cast<std::int32_t>(bits) >> below(32);  // texts of all lengths
  }

  Step textStep() {
    const std::string t = text();
    const String s(t.c_str());
    switch (below(11)) {
      case 0:
        return {[t](FileWriter& w) { w.write(t.c_str()); }, t};
      case 1:
        return {[s](FileWriter& w) { w.write(s); }, t};
      case 2:
        return {[t](FileWriter& w) { w.writeLine(t.c_str()); }, t + '\n'};
      case 3:
        return {[s](FileWriter& w) { w.writeLine(s); }, t + '\n'};
      case 4:
        return {[t](FileWriter& w) { w.writeWord(t.c_str()); }, t + ' '};
      case 5:
        return {[s](FileWriter& w) { w.writeWord(s); }, t + ' '};
      case 6:
        return {[t](FileWriter& w) { w.writeWithSeparator(t.c_str(), '|'); }, t + '|'};
      case 7:
        return {[s](FileWriter& w) { w.writeWithSeparator(s, '|'); }, t + '|'};
      case 8:
        return {[t](FileWriter& w) { w << t.c_str(); }, t};
      case 9:
        return {[s](FileWriter& w) { w << s; }, t};
      default:
        return {[](FileWriter& w) { w.newline(); }, "\n"};
    }
  }

  Step characterStep() {
    const char c = static_cast<char>('a' + below(26));
    const std::string t(1, c);
    switch (below(7)) {
      case 0:
        return {[c](FileWriter& w) { w.write(c); }, t};
      case 1:
        return {[c](FileWriter& w) { w.writeLine(c); }, t + '\n'};
      case 2:
        return {[c](FileWriter& w) { w.writeWord(c); }, t + ' '};
      case 3:
        return {[c](FileWriter& w) { w.writeWithSeparator(c, '|'); }, t + '|'};
      case 4:
        return {[c](FileWriter& w) { w.writeByte(c); }, t};
      case 5:
        return {[c](FileWriter& w) { w.writeByte(static_cast<unsigned char>(c)); }, t};
      default:
        return {[c](FileWriter& w) { w << c; }, t};
    }
  }

  Step integerStep() {
    const std::int32_t value = integer();
    const std::string t = std::to_string(value);
    switch (below(5)) {
      case 0:
        return {[value](FileWriter& w) { w.write(value); }, t};
      case 1:
        return {[value](FileWriter& w) { w.writeLine(value); }, t + '\n'};
      case 2:
        return {[value](FileWriter& w) { w.writeWord(value); }, t + ' '};
      case 3:
        return {[value](FileWriter& w) { w.writeWithSeparator(value, '|'); }, t + '|'};
      default:
        return {[value](FileWriter& w) { w << value; }, t};
    }
  }

  Step doubleStep() {
    const NumberText number = doubles[below(std::size(doubles))];
    const double value = number.value;
    const std::string t = number.text;
    switch (below(5)) {
      case 0:
        return {[value](FileWriter& w) { w.write(value); }, t};
      case 1:
        return {[value](FileWriter& w) { w.writeLine(value); }, t + '\n'};
      case 2:
        return {[value](FileWriter& w) { w.writeWord(value); }, t + ' '};
      case 3:
        return {[value](FileWriter& w) { w.writeWithSeparator(value, '|'); }, t + '|'};
      default:
        return {[value](FileWriter& w) { w << value; }, t};
    }
  }

  Step fieldStep() {
    const std::string t = text();
    const String s(t.c_str());
    const std::int32_t width = static_cast<std::int32_t>(below(80));
    const auto size = static_cast<std::size_t>(width);
    const std::string field = (t + std::string(size, ' ')).substr(0, size);
    switch (below(5)) {
      case 0:
        return {[t, width](FileWriter& w) { w.writeField(t.c_str(), width); }, field};
      case 1:
        return {[s, width](FileWriter& w) { w.writeField(s, width); }, field};
      case 2:
        return {[t](FileWriter& w) { w.writeTerminated(t.c_str()); }, t + '\0'};
      case 3:
        return {[s](FileWriter& w) { w.writeTerminated(s); }, t + '\0'};
      default:
        return {[width](FileWriter& w) { w.writeRepeated('r', width); }, std::string(size, 'r')};
    }
  }

  Step alignedStep() {
    const std::int32_t width = static_cast<std::int32_t>(below(80));
    const bool right = below(2) == 0;
    const auto aligned = [width, right](const std::string& t) {
      const auto size = static_cast<std::size_t>(width);
      const std::string padding(size > t.size() ? size - t.size() : 0, ' ');
      return right ? padding + t : t + padding;
    };
    const std::string t = text();
    const String s(t.c_str());
    const char c = 'c';
    const std::int32_t value = integer();
    const NumberText number = doubles[below(std::size(doubles))];
    const double numberValue = number.value;
    switch (below(5)) {
      case 0:
        return {[=](FileWriter& w) { w.writeAligned(t.c_str(), width, right); }, aligned(t)};
      case 1:
        return {[=](FileWriter& w) { w.writeAligned(s, width, right); }, aligned(t)};
      case 2:
        return {[=](FileWriter& w) { w.writeAligned(c, width, right); }, aligned("c")};
      case 3:
        return {[=](FileWriter& w) { w.writeAligned(value, width, right); },
                aligned(std::to_string(value))};
      default:
        return {[=](FileWriter& w) { w.writeAligned(numberValue, width, right); },
                aligned(number.text)};
    }
  }

  template <typename Value>
  static std::string bigEndian(Value value) {
    std::string result;
    for (int shift = 8 * (static_cast<int>(sizeof value) - 1); shift >= 0; shift -= 8) {
      result += static_cast<char>((static_cast<std::uint32_t>(value) >> shift) & 0xFF);
    }
    return result;
  }

  template <typename Value>
  Step bigEndianStep() {
    std::vector<Value> values;
    std::string expected;
    for (std::uint32_t left = below(2) == 0 ? 1 : below(30); left > 0; --left) {
      values.push_back(static_cast<Value>(random()));
      expected += bigEndian(values.back());
    }
    if (values.size() == 1) {
      return {[values](FileWriter& w) { w.writeBigEndian(values[0]); }, expected};
    }
    return {[values](FileWriter& w) {
              w.writeBigEndian(values.data(), static_cast<std::int32_t>(values.size()));
            },
            expected};
  }

  template <typename Value>
  Step nativeStep() {
    std::vector<Value> values;
    std::string expected;
    for (std::uint32_t left = below(2) == 0 ? 1 : below(30); left > 0; --left) {
      values.push_back(static_cast<Value>(integer()) / 7);
      expected += memoryOf(values.back());
    }
    if (values.size() == 1) {
      return {[values](FileWriter& w) { w.writeNative(values[0]); }, expected};
    }
    return {[values](FileWriter& w) {
              w.writeNative(values.data(), static_cast<std::int32_t>(values.size()));
            },
            expected};
  }

  Step binaryStep() {
    const std::string t = text();
    const auto count = static_cast<std::int32_t>(t.size());
    switch (below(8)) {
      case 0:
        return bigEndianStep<std::int16_t>();
      case 1:
        return bigEndianStep<std::uint16_t>();
      case 2:
        return bigEndianStep<std::int32_t>();
      case 3:
        return bigEndianStep<std::uint32_t>();
      case 4:
        return nativeStep<float>();
      case 5:
        return nativeStep<double>();
      case 6:
        return {[t, count](FileWriter& w) { w.writeBytes(t.data(), count); }, t};
      default:
        return {[t, count](FileWriter& w) {
                  w.writeBytes(reinterpret_cast<const unsigned char*>(t.data()), count);
                },
                t};
    }
  }

  std::mt19937 random;
};

TEST(FileWriterProperty, TheFileDoesNotDependOnTheBufferSize) {
  std::vector<std::int32_t> sizes = {1024};
  for (std::int32_t size = 1; size <= 64; ++size) sizes.push_back(size);
  ScratchFolder folder;

  for (std::uint32_t seed = 1; seed <= 12; ++seed) {
    StepMaker maker(seed);
    std::vector<Step> steps;
    std::string model;
    for (int i = 0; i < 150; ++i) {
      steps.push_back(maker.next());
      model += steps.back().expected;
    }

    for (const std::int32_t size : sizes) {
      FileWriter writer(size);
      ASSERT_TRUE(writer.open("out"));
      for (const Step& step : steps) step.action(writer);
      writer.close();

      ASSERT_EQ(folder.read("out"), model) << "seed " << seed << ", buffer size " << size;
    }
  }
}

TEST(FileWriterProperty, FlushedBytesAreAlwaysWholeBlocksOfTheModel) {
  ScratchFolder folder;

  for (std::int32_t size = 1; size <= 40; ++size) {
    StepMaker maker(1000 + static_cast<std::uint32_t>(size));
    std::string model;
    {
      FileWriter writer(size);
      ASSERT_TRUE(writer.open("out"));
      for (int i = 0; i < 60; ++i) {
        const Step step = maker.next();
        step.action(writer);
        model += step.expected;
      }
    }

    const std::string flushed = folder.read("out");
    EXPECT_EQ(flushed.size() % static_cast<std::size_t>(size), 0u) << size;
    EXPECT_EQ(flushed, model.substr(0, flushed.size())) << size;
    EXPECT_LE(model.size() - flushed.size(), static_cast<std::size_t>(size)) << size;
  }
}

}  // namespace
