#pragma once

#include <string_view>

// What is the same in every page, from the files in report/page/.
namespace Quillet {

/// A text of the page, with its SHA-256 in hexadecimal digits.
struct HashedText {
  std::string_view text;
  std::string_view sha256;
};

/// The HTML, with a mark such as {{title}} for each part that differs from page to page.
std::string_view pageTemplate();
HashedText pageStyle();
HashedText pageScript();

}  // namespace Quillet
