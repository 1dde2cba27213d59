#pragma once

#include <cstdint>
#include <exception>
#include <string>

namespace Tessaly {

/// A word of the resource file or of the command line that can not be understood.
///
/// Carries where it was read: the path of the file (or the label of another source) and the 1-based
/// line, each left out of the text when empty or 0.
class ParseError : public std::exception {
 public:
  ParseError(std::string fileName, std::int32_t lineNumber, std::string message);

  // Virtual operations; their order is part of the class.
  ~ParseError() override;
  /// "in <file>line <number>: <message>", composed anew at each call; lives as long as the object.
  const char* what() const noexcept override;

 private:
  std::string fileName_;
  std::int32_t lineNumber_;
  std::string message_;
  mutable std::string text_;
};

}  // namespace Tessaly
