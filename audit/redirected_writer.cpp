#include "audit/redirected_writer.h"

#include <cstring>

namespace Quillet {

bool RedirectedWriter::open(const Tessaly::String& /*path*/) { return true; }

void RedirectedWriter::write(const Tessaly::String& text) {
  take(text.text(), static_cast<std::size_t>(text.length()));
}

void RedirectedWriter::write(const char* text) { take(text, std::strlen(text)); }

void RedirectedWriter::write(std::int32_t value) {
  char text[Tessaly::String::integerTextSize];
  take(text, static_cast<std::size_t>(Tessaly::String::writeInteger(value, text)));
}

void RedirectedWriter::writeBytes(const char* data, std::int32_t count) {
  if (count > 0) take(data, static_cast<std::size_t>(count));
}

}  // namespace Quillet
