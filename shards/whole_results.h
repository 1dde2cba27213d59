#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "audit/descriptor.h"

namespace Quillet {

/// Looks whether samples have whole results. Their traces are not read again.
class WholeResults {
 public:
  /// Paths of the two folders.
  WholeResults(const std::string& phdPath, const std::string& polyPath);

  /// Whether the sample has a whole .phd.1 and a whole .poly for it.
  bool has(const std::string& sample);

 private:
  /// The files of one folder, one after the other, in memory that is kept.
  class Folder {
   public:
    explicit Folder(const std::string& path);
    /// Empty when there is no such regular file or it can not be read.
    std::string_view read(const std::string& name);

   private:
    Descriptor descriptor_;  // a name is found faster from here than from the root
    std::unique_ptr<char[]> bytes_;
    std::size_t capacity_ = 0;
  };

  Folder phds_;
  Folder polys_;
};

}  // namespace Quillet
