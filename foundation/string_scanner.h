#pragma once

#include <cstdint>
#include <memory>

#include "foundation/string.h"

namespace Tessaly {

/// Reads the text of a String piece by piece: words, lines and pieces up to a character.
///
/// The position is a place in the scanned text, from its first character to its final zero byte.
/// White space separates words, a newline ends a line. The scanner borrows the String, which must
/// outlive it and stay unchanged meanwhile. A scanner of a plain text owns a copy for its whole
/// life.
/// Errors: throws as a String does, without moving: for lack of memory (a target is then empty),
/// for a null text, and for a target that is the scanned String (a parameter error). Any other
/// failure is a false result. A negative count moves nothing and is false.
class StringScanner {
 public:
  explicit StringScanner(const String& text);
  explicit StringScanner(const String&& text) = delete;  // a temporary would be gone at once
  explicit StringScanner(const char* text);

  /// Scans another String from its first character.
  void attach(const String& text);
  void attach(const String&& text) = delete;

  /// False, at the first character, when fewer than `count` characters come before the position.
  bool moveBack(std::int32_t count);
  /// False, at the end, when fewer than `count` characters are left.
  bool moveForward(std::int32_t count);
  /// False, without moving, unless `index` is 0..length - 1.
  bool moveTo(std::int32_t index);

  /// Returns the character at the position and moves past it. At the end: a zero byte, no move.
  char next();

  /// Stops at the next such character. False, at the end, when there is none.
  bool skipTo(char character);
  void skipWhiteSpace();
  // These stop after the last of the `count` pieces. False, at the end, when there are fewer.
  // The last line needs no newline.
  bool skipWords(std::int32_t count);
  bool skipPast(char character, std::int32_t count);
  bool skipLines(std::int32_t count);

  // These replace the target and move past what they read. False, with an empty target, at the end.
  /// Skips white space and reads the word after it. False too when only white space is left.
  bool readWord(String& target);
  /// Reads up to the next `character` and stops at it; reads the rest when there is none.
  bool readUpTo(char character, String& target);
  bool readRest(String& target);

  /// Whether the text at the position starts with `pattern`. False for an empty pattern.
  bool matches(const String& pattern) const;

  // Deliberate: the search starts at the first character of the text, not at the position. A match
  // moves the position to it. The empty text and the zero character are never found.
  bool find(const String& pattern);
  bool find(char character);

  /// The position as an index, 0..length.
  std::int32_t index() const { return static_cast<std::int32_t>(position_ - scanned_->text()); }
  bool atEnd() const { return position_ == end(); }

 private:
  const char* end() const { return scanned_->text() + scanned_->length(); }
  /// The first `character` at or after the position; the end when there is none.
  const char* placeOf(char character) const;
  /// Copies the characters from `first` up to, not including, `past` into `target` and moves to
  /// `past`. False when `first` is the end.
  bool take(const char* first, const char* past, String& target);

  std::unique_ptr<String> owned_;
  const String* scanned_;
  const char* position_;
};

}  // namespace Tessaly
