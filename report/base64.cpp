#include "report/base64.h"

#include <cstddef>
#include <cstdint>

namespace Quillet {

namespace {

constexpr char digits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr char padding = '=';

std::uint32_t byteOf(char character) { return static_cast<unsigned char>(character); }

}  // namespace

std::string base64Of(std::string_view bytes) {
  std::string text((bytes.size() + 2) / 3 * 4, padding);
  std::size_t place = 0;
  const auto put = [&](std::uint32_t three, int count) {
    for (int shift = 18; count > 0; shift -= 6, --count) {
      text[place++] = digits[three >> shift & 63];
    }
  };
  std::size_t i = 0;
  for (; i + 3 <= bytes.size(); i += 3) {
    put(byteOf(bytes[i]) << 16 | byteOf(bytes[i + 1]) << 8 | byteOf(bytes[i + 2]), 4);
  }
  if (bytes.size() - i == 1) put(byteOf(bytes[i]) << 16, 2);
  if (bytes.size() - i == 2) put(byteOf(bytes[i]) << 16 | byteOf(bytes[i + 1]) << 8, 3);
  return text;
}

}  // namespace Quillet
