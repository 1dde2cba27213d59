#include "output/file_writer.h"

// Text: strings, characters and decimal numbers, alone, with an end character, or padded.

#include <algorithm>

namespace Tessaly {

void FileWriter::place(std::int32_t value) {
  if (room() > static_cast<std::size_t>(String::integerTextSize)) {
    bufferPos_ += String::writeInteger(value, bufferPos_);
  } else {
    char text[String::integerTextSize];
    place(text, static_cast<std::size_t>(String::writeInteger(value, text)));
  }
}

void FileWriter::place(double value) { place(String::textOf(value)); }

void FileWriter::write(const String& text) { place(text); }
void FileWriter::write(const char* text) { place(text); }
void FileWriter::write(char character) { store({character}); }
void FileWriter::write(std::int32_t value) { place(value); }
void FileWriter::write(double value) { place(value); }

void FileWriter::newline() { place('\n'); }

void FileWriter::writeLine(const String& text) {
  place(text);
  place('\n');
}

void FileWriter::writeLine(const char* text) {
  place(text);
  place('\n');
}

void FileWriter::writeLine(char character) {
  place(character);
  place('\n');
}

void FileWriter::writeLine(std::int32_t value) {
  place(value);
  place('\n');
}

void FileWriter::writeLine(double value) {
  place(value);
  place('\n');
}

void FileWriter::writeWord(const String& text) {
  place(text);
  place(' ');
}

void FileWriter::writeWord(const char* text) {
  place(text);
  place(' ');
}

void FileWriter::writeWord(char character) {
  place(character);
  place(' ');
}

void FileWriter::writeWord(std::int32_t value) {
  place(value);
  place(' ');
}

void FileWriter::writeWord(double value) {
  place(value);
  place(' ');
}

void FileWriter::writeWithSeparator(const String& text, char separator) {
  place(text);
  place(separator);
}

void FileWriter::writeWithSeparator(const char* text, char separator) {
  place(text);
  place(separator);
}

void FileWriter::writeWithSeparator(char character, char separator) {
  place(character);
  place(separator);
}

void FileWriter::writeWithSeparator(std::int32_t value, char separator) {
  place(value);
  place(separator);
}

void FileWriter::writeWithSeparator(double value, char separator) {
  place(value);
  place(separator);
}

void FileWriter::writeRepeated(char character, std::int32_t count) {
  if (count >= 0) placeRepeated(character, static_cast<std::size_t>(count));
}

/// Places exactly `width` bytes: the text, cut or followed by spaces.
void FileWriter::placeField(const char* text, std::size_t length, std::int32_t width) {
  const std::size_t size = static_cast<std::size_t>(std::max(width, 0));
  const std::size_t kept = std::min(length, size);
  place(text, kept);
  placeRepeated(' ', size - kept);
}

void FileWriter::writeField(const String& text, std::int32_t width) {
  placeField(text.text(), static_cast<std::size_t>(text.length()), width);
}

void FileWriter::writeField(const char* text, std::int32_t width) {
  placeField(text, std::strlen(text), width);
}

/// Places at least `width` bytes: the whole text, with spaces before or after it.
void FileWriter::placeAligned(const char* text, std::size_t length, std::int32_t width,
                              bool rightJustify) {
  // Deliberate: unlike a field, the text is never cut.
  const std::size_t size = std::max(length, static_cast<std::size_t>(std::max(width, 0)));
  const std::size_t padding = size - length;
  if (rightJustify) placeRepeated(' ', padding);
  place(text, length);
  if (!rightJustify) placeRepeated(' ', padding);
}

void FileWriter::writeAligned(const String& text, std::int32_t width, bool rightJustify) {
  placeAligned(text.text(), static_cast<std::size_t>(text.length()), width, rightJustify);
}

void FileWriter::writeAligned(const char* text, std::int32_t width, bool rightJustify) {
  placeAligned(text, std::strlen(text), width, rightJustify);
}

void FileWriter::writeAligned(char character, std::int32_t width, bool rightJustify) {
  placeAligned(&character, 1, width, rightJustify);
}

void FileWriter::writeAligned(std::int32_t value, std::int32_t width, bool rightJustify) {
  char text[String::integerTextSize];
  placeAligned(text, static_cast<std::size_t>(String::writeInteger(value, text)), width,
               rightJustify);
}

void FileWriter::writeAligned(double value, std::int32_t width, bool rightJustify) {
  const String text = String::textOf(value);
  placeAligned(text.text(), static_cast<std::size_t>(text.length()), width, rightJustify);
}

FileWriter& FileWriter::operator<<(const String& text) {
  place(text);
  return *this;
}

FileWriter& FileWriter::operator<<(const char* text) {
  place(text);
  return *this;
}

FileWriter& FileWriter::operator<<(char character) {
  place(character);
  return *this;
}

FileWriter& FileWriter::operator<<(std::int32_t value) {
  place(value);
  return *this;
}

FileWriter& FileWriter::operator<<(double value) {
  place(value);
  return *this;
}

}  // namespace Tessaly
