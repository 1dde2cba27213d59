#pragma once

#include <cstdint>
#include <exception>
#include <string>

namespace Tessaly {

/// An invalid word in the resource file or on the command line.
///
/// Holds the path of the file, or the name of another source, and the line number, counted from 1.
/// The text leaves out an empty path and a line of 0.
class ParseError : public std::exception {
 public:
  ParseError(std::string fileName, std::int32_t lineNumber, std::string message);

  // Virtual operations: their order is part of the class.
  ~ParseError() override;
  /// "in <file>line <number>: <message>". The text is valid until the next call or the end of the
  /// object.
  const char* what() const noexcept override;

 private:
  std::string fileName_;
  std::int32_t lineNumber_;
  std::string message_;
  mutable std::string text_;
};

}  // namespace Tessaly
