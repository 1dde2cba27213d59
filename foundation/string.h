#pragma once

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <memory>

namespace Tessaly {

/// What a String throws: a pointer to one of these constant texts, never an object.
inline constexpr const char* stringAllocationError = "ERROR: String can not be allocated.";
inline constexpr const char* stringPositionError = "ERROR: String position is out of range";
inline constexpr const char* stringParameterError = "ERROR: String parameter is invalid";

/// Whether the C locale counts the character as white space, whatever locale is set.
inline bool isWhiteSpace(char character) {
  return character == ' ' || (character >= '\t' && character <= '\r');
}

/// A run of single-byte characters and a final zero byte: names, paths and the text of numbers.
///
/// Owns its buffer; a copy has a buffer of its own. `length` does not count the final zero byte.
/// The text ends at `length`, so it may contain zero bytes. Positions and counts are in characters,
/// positions from 0. `capacity` is the size of the buffer in bytes, always at least length + 1.
/// Comparisons are byte-exact. White space is that of the C locale; so are the letters, unless the
/// program sets another locale. Every operation accepts a part of the String's own text.
/// Errors: throws one of the three texts above, leaves the String unchanged and prints nothing. A
/// null text is a parameter error; a run that comes with its count is not checked. A buffer has at
/// most 2^31 - 1 bytes. Growth doubles, so growing to 2^30 characters or more is an allocation
/// error.
class String {
 public:
  String();
  /// Empty, with room for `room` characters (none when negative).
  explicit String(std::int32_t room);
  String(const char* text);  // NOLINT(google-explicit-constructor): texts stand in for Strings
  String(const String& other);
  explicit String(char character);
  /// `count` copies of `character`; a negative count is a parameter error.
  String(char character, std::int32_t count);
  ~String();

  // Exact assignment: the capacity becomes length + 1, even when that shrinks the buffer.
  String& operator=(const String& other);
  String& operator=(const char* text);

  // Assignment that keeps a buffer that is large enough.
  void set(const String& other);
  void set(const char* text);
  void set(std::int32_t value);
  void set(double value);

  /// Becomes the first `count` characters of the source. 0, or more than it has, means all of them.
  /// A plain text ends at its first zero byte; with a positive count it needs none, since at most
  /// `count` characters are read.
  void setPrefix(const String& source, std::int32_t count);
  void setPrefix(const char* source, std::int32_t count);
  /// Becomes the characters of `source` from `position` (0..length) to its end.
  void setTail(const String& source, std::int32_t position);

  // A buffer that is too small grows to twice the new length.
  void append(const String& other);
  void append(const char* text);
  void append(char character);
  /// Appends `count` characters, zero bytes included.
  void append(const char* run, std::int32_t count);

  /// Removes the last `count` characters, or all when there are fewer.
  void removeLast(std::int32_t count);
  /// Keeps the characters before `position` (0..length - 1).
  void cut(std::int32_t position);
  void clear();

  /// Makes the buffer exactly `bytes` bytes large (at least 1). Cuts a text that does not fit.
  void setCapacity(std::int32_t bytes);
  /// Overwrites every character; the length stays.
  void fill(char character);
  /// Makes the text `count` copies of `character`.
  void fill(char character, std::int32_t count);

  bool startsWith(const String& prefix) const;
  bool startsWith(const char* prefix) const;
  bool matchesAt(const String& pattern, std::int32_t position) const;
  /// Deliberate: false for a text that equals the suffix. ".gz" does not end with ".gz".
  bool endsWith(const String& suffix) const;
  bool endsWith(const char* suffix) const;
  bool endsWith(char character) const;

  bool contains(const String& pattern) const;
  bool contains(const char* pattern) const;
  bool contains(char character) const;
  bool occursIn(const char* text) const;
  // -1 when nothing is found. The empty pattern gives 0, the zero character the length.
  std::int32_t firstIndex(const String& pattern) const;
  std::int32_t firstIndex(const char* pattern) const;
  std::int32_t firstIndex(char character) const;
  /// Searches from `position` on. Stores the index found in `position`.
  bool findFrom(const String& pattern, std::int32_t& position) const;
  std::int32_t lastIndex(char character) const;
  std::int32_t lastIndex(const String& pattern) const;
  /// Searches from `position` (-1: the last character) towards the start. Stores the index found in
  /// `position`.
  bool findBackwards(const String& pattern, std::int32_t& position) const;

  void upperCase();
  void lowerCase();

  void stripLeading();
  void stripTrailing();
  void strip();
  bool isNotBlank() const;

  /// True for an optional sign, digits or a fraction or both, and an optional exponent. White space
  /// may follow, and then anything.
  bool isDecimalNumber() const;
  /// The value of the hexadecimal digits after an optional "0x"; 0 when there are none.
  std::int32_t hexadecimalValue() const;

  static constexpr std::int32_t integerTextSize = 11;  // characters of "-2147483648"
  /// Writes the decimal text of `value`, without a zero byte, and returns its length.
  static std::int32_t writeInteger(std::int32_t value, char* destination);
  static String textOf(std::int32_t value);
  /// Up to 15 significant digits. A magnitude that, rounded to them, is below 1e-6 or at least 1e16
  /// is in exponent notation. The other texts are "nan", "inf" and "-inf".
  static String textOf(double value);

  // Formatted fields. A field has `width` characters, or the length of a longer value. The value is
  // placed in it and fill characters take the rest. A negative width is a parameter error. These
  // letters make up the format; other characters are ignored:
  //   JR, JC     right-justified, centred (default: left-justified)
  //   A<digits>  shifts the value: inwards from its edge, to the right when centred; never out of
  //              the field
  //   F<c>       fill character (default: a space)
  //   P<digits>  decimals of a double, at most 15; 0 (default) gives the text of textOf()
  //   S          puts a "+" before a number that is not negative
  //   R          puts the sign at the left edge, before the fill characters
  void setField(const String& value, std::int32_t width, const char* format);
  void setField(const char* value, std::int32_t width, const char* format);
  void setField(char value, std::int32_t width, const char* format);
  void setField(std::int32_t value, std::int32_t width, const char* format);
  void setField(double value, std::int32_t width, const char* format);
  void appendField(const String& value, std::int32_t width, const char* format);
  void appendField(const char* value, std::int32_t width, const char* format);
  void appendField(char value, std::int32_t width, const char* format);
  void appendField(std::int32_t value, std::int32_t width, const char* format);
  void appendField(double value, std::int32_t width, const char* format);

  const char* text() const { return text_.get(); }
  std::int32_t length() const { return length_; }
  std::int32_t capacity() const { return capacity_; }
  /// The character at `position` (0..length - 1), unchecked.
  char operator[](std::int32_t position) const { return text_[static_cast<std::size_t>(position)]; }

 private:
  /// Becomes these `count` characters. Takes a new buffer unless the present one has `bytes` bytes.
  void store(const char* run, std::int32_t count, std::int64_t bytes);
  /// The same as store(), but keeps a buffer that is large enough.
  void keepOrStore(const char* run, std::int32_t count);
  /// Ends the text after the first `count` characters of the buffer. The capacity must be larger.
  void setLength(std::int32_t count);

  std::unique_ptr<char[]> text_;
  std::int32_t length_ = 0;
  std::int32_t capacity_ = 0;
};

String operator+(const String& left, const String& right);
String operator+(const String& left, const char* right);
bool operator==(const String& left, const String& right);
bool operator==(const String& left, const char* right);
/// Writes the characters. Neither uses nor resets the stream's width.
std::ostream& operator<<(std::ostream& stream, const String& text);

/// Reads up to a newline or to the end of the stream; takes the newline and does not store it.
/// False, with an empty line, when the stream has failed or has nothing left; the latter sets no
/// failbit. After an allocation error the line holds the characters read so far.
bool readLine(std::istream& stream, String& line);

}  // namespace Tessaly
