#include "report/base64.h"

#include <gtest/gtest.h>
#include <string>

// The first texts and their encodings are those of RFC 4648.
TEST(Base64, EncodesThreeBytesAsFourCharactersAndPadsTheRest) {
  const struct {
    std::string bytes;
    const char* text;
  } cases[] = {{"", ""},
               {"f", "Zg=="},
               {"fo", "Zm8="},
               {"foo", "Zm9v"},
               {"foob", "Zm9vYg=="},
               {"fooba", "Zm9vYmE="},
               {"foobar", "Zm9vYmFy"},
               {std::string(1, '\0'), "AA=="},
               {std::string(2, '\0'), "AAA="},
               {"\xFF\xFF\xFF", "////"},
               {"\xFB\xEF\xBE", "++++"},
               {"\xFF", "/w=="},
               {"\x80\x81", "gIE="}};
  for (const auto& row : cases) EXPECT_EQ(Quillet::base64Of(row.bytes), row.text);
}

// The bytes hold the numbers 0 to 63, in six bits each.
TEST(Base64, HasSixtyFourDigits) {
  std::string bytes;
  for (unsigned first = 0; first < 64; first += 4) {
    const unsigned bits = first << 18 | (first + 1) << 12 | (first + 2) << 6 | (first + 3);
    for (const int shift : {16, 8, 0}) bytes += static_cast<char>(bits >> shift & 0xFF);
  }

  EXPECT_EQ(Quillet::base64Of(bytes),
            "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/");
}
