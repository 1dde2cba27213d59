#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "output/file_writer.h"

namespace Quillet {

/// A FileWriter that opens no file and gives its bytes to take(), so that the converter's own code
/// says what a result file holds.
///
/// It replaces the operations that writePhdFile and writePolyFile use. The bytes of any other would
/// be lost; a test compares with real files.
class RedirectedWriter : public Tessaly::FileWriter {
 public:
  RedirectedWriter() : FileWriter(0) {}  // no buffer is needed

  using FileWriter::open;
  using FileWriter::write;
  using FileWriter::writeBytes;

  bool open(const Tessaly::String& path) override;
  void close() override {}
  void write(const Tessaly::String& text) override;
  void write(const char* text) override;
  void write(std::int32_t value) override;
  void writeBytes(const char* data, std::int32_t count) override;

 protected:
  virtual void take(const char* bytes, std::size_t count) = 0;
};

/// Keeps the bytes in memory.
class KeptOutput : public RedirectedWriter {
 public:
  const std::string& bytes() const { return bytes_; }

 protected:
  void take(const char* bytes, std::size_t count) override { bytes_.append(bytes, count); }

 private:
  std::string bytes_;
};

}  // namespace Quillet
