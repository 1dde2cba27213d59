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

/// A run of single bytes with a zero byte behind it: names, paths and the text of numbers.
///
/// Every String owns its buffer and copying copies the characters, which are single bytes.
/// `length` does not count the final zero byte; characters may be zero bytes themselves, since the
/// stored length rules. Positions and counts are in characters, positions from 0. `capacity` is the
/// size of the buffer in bytes, always at least length + 1. Comparisons are byte-exact. White space
/// is that of the C locale; so are the letters, as long as the program sets no other locale. A
/// piece of the String's own text may be given to every operation.
/// Errors: throws one of the three texts above and leaves the String as it was; nothing is printed.
/// A null text is a parameter error; a run that is given with its count is not examined. No buffer
/// has more than 2^31 - 1 bytes: as growth doubles, growing to 2^30 characters or more is an
/// allocation error, however much memory there is.
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

  // Exact assignment: afterwards the capacity is length + 1, even where that shrinks the buffer.
  String& operator=(const String& other);
  String& operator=(const char* text);

  // Copying set: a buffer that is large enough is kept.
  void set(const String& other);
  void set(const char* text);
  void set(std::int32_t value);
  void set(double value);

  /// The first `count` characters of the source; 0, or more than there are, means all of it.
  /// The source text is read up to its first zero byte and, for a positive count, no further than
  /// `count` characters, so that a run without a final zero byte may be given.
  void setPrefix(const String& source, std::int32_t count);
  void setPrefix(const char* source, std::int32_t count);
  /// The characters of `source` from `position` (0..length inclusive) to its end.
  void setTail(const String& source, std::int32_t position);

  // Append: a full buffer grows to twice the new length.
  void append(const String& other);
  void append(const char* text);
  void append(char character);
  /// `count` characters as they stand, zero bytes included.
  void append(const char* run, std::int32_t count);

  void removeLast(std::int32_t count);
  /// Keeps the characters before `position`, which must lie inside the text.
  void cut(std::int32_t position);
  void clear();

  /// Makes the buffer exactly `bytes` large (at least 1), cutting the text where it must.
  void setCapacity(std::int32_t bytes);
  /// Overwrites every character; the length stays.
  void fill(char character);
  /// Makes the text `count` copies of `character`.
  void fill(char character, std::int32_t count);

  bool startsWith(const String& prefix) const;
  bool startsWith(const char* prefix) const;
  bool matchesAt(const String& pattern, std::int32_t position) const;
  /// Only a text that is longer than its suffix ends with it: ".gz" does not end with ".gz".
  bool endsWith(const String& suffix) const;
  bool endsWith(const char* suffix) const;
  bool endsWith(char character) const;

  bool contains(const String& pattern) const;
  bool contains(const char* pattern) const;
  bool contains(char character) const;
  bool occursIn(const char* text) const;
  // First indices: -1 when there is none; the empty pattern gives 0, the zero character the length.
  std::int32_t firstIndex(const String& pattern) const;
  std::int32_t firstIndex(const char* pattern) const;
  std::int32_t firstIndex(char character) const;
  /// Seeks at and after `position`, and stores the index there when the pattern was found.
  bool findFrom(const String& pattern, std::int32_t& position) const;
  std::int32_t lastIndex(char character) const;
  std::int32_t lastIndex(const String& pattern) const;
  /// Seeks at and before `position` (-1: from the last character), storing the index when found.
  bool findBackwards(const String& pattern, std::int32_t& position) const;

  void upperCase();
  void lowerCase();

  void stripLeading();
  void stripTrailing();
  void strip();
  bool isNotBlank() const;

  bool isDecimalNumber() const;
  /// Value of hexadecimal digits behind an optional "0x"; 0 when there are none.
  std::int32_t hexadecimalValue() const;

  static constexpr std::int32_t integerTextSize = 11;  // characters of "-2147483648"
  /// Writes the decimal text of `value`, without a zero byte, and returns its length.
  static std::int32_t writeInteger(std::int32_t value, char* destination);
  static String textOf(std::int32_t value);
  /// Up to 15 significant digits; exponent notation for what is, after rounding to them, below 1e-6
  /// or at least 1e16. What is no finite number is "nan", "inf" or "-inf".
  static String textOf(double value);

  // Formatted fields: `width` fill characters, or as many as a longer value needs, with the value
  // placed in them. A negative width is a parameter error. The format's letters; other characters
  // are ignored:
  //   JR, JC     right-justified, centred (otherwise at the left)
  //   A<digits>  distance from that place: inwards from the edge, to the right when centred; never
  //              so far that the value would leave the field
  //   F<c>       fill character (otherwise a space)
  //   P<digits>  decimals of a double, at most 15; 0 leaves its text as textOf gives it
  //   S          a "+" before numbers that are not negative
  //   R          the sign of a number stands at the rim, before the fill characters
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
  /// Makes the text these `count` bytes, in a new buffer unless the present one has `bytes` bytes.
  void store(const char* run, std::int32_t count, std::int64_t bytes);
  /// As store(), but any buffer that is large enough is kept.
  void keepOrStore(const char* run, std::int32_t count);
  /// Ends the text behind its first `count` characters, which the buffer holds already; the
  /// capacity, larger than `count`, stays.
  void setLength(std::int32_t count);

  std::unique_ptr<char[]> text_;
  std::int32_t length_ = 0;
  std::int32_t capacity_ = 0;
};

String operator+(const String& left, const String& right);
String operator+(const String& left, const char* right);
bool operator==(const String& left, const String& right);
bool operator==(const String& left, const char* right);
/// Writes the characters and nothing else: the stream's width is neither used nor reset.
std::ostream& operator<<(std::ostream& stream, const String& text);

/// Reads up to a newline, which is taken and not stored, or to the end of the stream. False, with
/// an empty line, when the stream has failed or nothing is left to read; that alone sets no
/// failbit. After an allocation error the line holds what was read before it.
bool readLine(std::istream& stream, String& line);

}  // namespace Tessaly
