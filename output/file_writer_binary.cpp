#include "output/file_writer.h"

// Raw bytes, big-endian numbers, floating-point numbers as they lie in memory, terminated text.

#include "foundation/big_endian.h"

namespace Tessaly {

void FileWriter::writeByte(char byte) { store({byte}); }

void FileWriter::writeBytes(const char* data, std::int32_t count) {
  if (count < 0) return;
  // A count of 0 may come with a null pointer, which memcpy does not accept.
  place(count == 0 ? "" : data, static_cast<std::size_t>(count));
}

void FileWriter::writeByte(unsigned char byte) {
  store({static_cast<char>(byte)});  // the same eight bits
}

void FileWriter::writeBytes(const unsigned char* data, std::int32_t count) {
  FileWriter::writeBytes(reinterpret_cast<const char*>(data), count);
}

void FileWriter::writeBigEndian(std::int16_t value) {
  FileWriter::writeBigEndian(static_cast<std::uint16_t>(value));  // the same two bytes
}

void FileWriter::writeBigEndian(const std::int16_t* values, std::int32_t count) {
  for (std::int32_t i = 0; i < count; ++i) FileWriter::writeBigEndian(values[i]);
}

void FileWriter::writeBigEndian(std::uint16_t value) {
  char image[sizeof value];
  putBigEndian16(image, value);
  store(image);
}

void FileWriter::writeBigEndian(const std::uint16_t* values, std::int32_t count) {
  for (std::int32_t i = 0; i < count; ++i) FileWriter::writeBigEndian(values[i]);
}

void FileWriter::writeBigEndian(std::int32_t value) {
  FileWriter::writeBigEndian(static_cast<std::uint32_t>(value));  // the same four bytes
}

void FileWriter::writeBigEndian(const std::int32_t* values, std::int32_t count) {
  for (std::int32_t i = 0; i < count; ++i) FileWriter::writeBigEndian(values[i]);
}

void FileWriter::writeBigEndian(std::uint32_t value) {
  char image[sizeof value];
  putBigEndian32(image, value);
  store(image);
}

void FileWriter::writeBigEndian(const std::uint32_t* values, std::int32_t count) {
  for (std::int32_t i = 0; i < count; ++i) FileWriter::writeBigEndian(values[i]);
}

void FileWriter::writeNative(float value) {
  char image[sizeof value];
  std::memcpy(image, &value, sizeof value);
  store(image);
}

void FileWriter::writeNative(const float* values, std::int32_t count) {
  for (std::int32_t i = 0; i < count; ++i) FileWriter::writeNative(values[i]);
}

void FileWriter::writeNative(double value) {
  char image[sizeof value];
  std::memcpy(image, &value, sizeof value);
  store(image);
}

void FileWriter::writeNative(const double* values, std::int32_t count) {
  for (std::int32_t i = 0; i < count; ++i) FileWriter::writeNative(values[i]);
}

void FileWriter::writeTerminated(const String& text) {
  // Every String has a zero byte after its characters.
  place(text.text(), static_cast<std::size_t>(text.length()) + 1);
}

void FileWriter::writeTerminated(const char* text) { place(text, std::strlen(text) + 1); }

}  // namespace Tessaly
