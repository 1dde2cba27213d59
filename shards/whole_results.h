#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

namespace Quillet {

/// Looks whether samples have whole results. Their traces are not read again.
class WholeResults {
 public:
  /// Paths of the two folders; each ends in "/".
  WholeResults(std::string phdPath, std::string polyPath);

  /// Whether the sample has a whole .phd.1 and a whole .poly for it.
  bool has(const std::string& sample);

 private:
  /// The bytes of one file after the other, in memory that is kept.
  class Content {
   public:
    /// Empty when there is no regular file or it can not be read.
    std::string_view read(const std::string& path);

   private:
    std::unique_ptr<char[]> bytes_;
    std::size_t capacity_ = 0;
  };

  const std::string phdPath_;
  const std::string polyPath_;
  Content phd_;
  Content poly_;
};

}  // namespace Quillet
