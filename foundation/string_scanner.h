#pragma once

#include <cstdint>
#include <memory>

#include "foundation/string.h"

namespace Tessaly {

/// Walks through the text of a String: words, lines and pieces up to a character.
///
/// The position points into the scanned text, from its first character to its zero byte. Words are
/// separated by white space, lines by the newline character. The scanner borrows the String, which
/// must outlive it and stay unchanged meanwhile; built from plain text it owns a copy for its whole
/// life, also when it is attached to another String later.
/// Errors: throws what a String throws, without moving: for an allocation (a target is then empty),
/// for a null text, and for a read into the scanned String itself (a parameter error). Everything
/// else is a false result. A negative count moves nothing and is false.
class StringScanner {
 public:
  explicit StringScanner(const String& text);
  explicit StringScanner(const String&& text) = delete;  // it would be gone at once
  explicit StringScanner(const char* text);

  /// Scans another String from its first character.
  void attach(const String& text);
  void attach(const String&& text) = delete;

  /// Stops at the first character, and is false, where there are fewer than `count` before.
  bool moveBack(std::int32_t count);
  /// Stops at the end, and is false, where there are fewer than `count` left.
  bool moveForward(std::int32_t count);
  /// False, without moving, unless `index` is that of a character.
  bool moveTo(std::int32_t index);

  /// The character at the position, which then moves on; at the end the zero byte, without moving.
  char next();

  /// Stops at the character, or, false, at the end.
  bool skipTo(char character);
  void skipWhiteSpace();
  // These stop behind what they skip, or, false, at the end when there were fewer than `count`.
  // The last line needs no newline.
  bool skipWords(std::int32_t count);
  bool skipPast(char character, std::int32_t count);
  bool skipLines(std::int32_t count);

  // These are false, and clear the target, when the position is already at the end.
  /// The word behind any white space; false too when only white space is left.
  bool readWord(String& target);
  /// The text before the next `character` (not taken), or the rest when there is none.
  bool readUpTo(char character, String& target);
  bool readRest(String& target);

  /// Whether `pattern` stands at the position; never for an empty one.
  bool matches(const String& pattern) const;

  // Deliberate: the search starts at the first character of the text, not at the position. Found,
  // the position moves to the match. The empty text and the zero character are never found.
  bool find(const String& pattern);
  bool find(char character);

  /// The position as an index, 0..length.
  std::int32_t index() const { return static_cast<std::int32_t>(position_ - scanned_->text()); }
  bool atEnd() const { return position_ == end(); }

 private:
  const char* end() const { return scanned_->text() + scanned_->length(); }
  /// The next place of `character` from the position on; the end when there is none.
  const char* placeOf(char character) const;
  /// Copies the text from `first` to before `behind` into `target` and moves there; false where
  /// `first` is the end.
  bool take(const char* first, const char* behind, String& target);

  std::unique_ptr<String> owned_;
  const String* scanned_;
  const char* position_;
};

}  // namespace Tessaly
