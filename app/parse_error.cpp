#include "app/parse_error.h"

#include <utility>

namespace Tessaly {

ParseError::ParseError(std::string fileName, std::int32_t lineNumber, std::string message)
    : fileName_(std::move(fileName)), lineNumber_(lineNumber), message_(std::move(message)) {}

ParseError::~ParseError() = default;

const char* ParseError::what() const noexcept {
  text_.clear();
  if (!fileName_.empty()) text_ += "in " + fileName_;
  // Deliberate: no blank between the file name and "line"; scripts match this text.
  if (lineNumber_ != 0) text_ += "line " + std::to_string(lineNumber_);
  if (!text_.empty()) text_ += ": ";
  text_ += message_;
  return text_.c_str();
}

}  // namespace Tessaly
