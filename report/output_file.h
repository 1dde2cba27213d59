#pragma once

#include <string>
#include <string_view>

namespace Quillet {

/// One output, which appears under its name whole or not at all.
///
/// The bytes go to a hidden file in the same folder, under a short name of its own, which takes the
/// output's name at the end. It has the permissions that the name's present file has, or else those
/// that a new file gets. A symbolic link is followed first. What exists and is no regular file,
/// such as a device or a pipe, and standard output ("-") are written straight. Errors: every
/// operation throws std::runtime_error with a text that names the file. Use: construct, write(),
/// finish() once, publish() once. An output that goes before it was published leaves nothing.
class OutputFile {
 public:
  explicit OutputFile(const std::string& name);
  ~OutputFile();
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  void write(std::string_view bytes);
  /// Brings everything to the disk and closes the file, which has not its name yet.
  void finish();
  /// Gives the file its name.
  void publish();

  bool isTerminal() const { return isTerminal_; }
  /// Where the bytes will be found: the name with links followed; empty when they go straight.
  const std::string& target() const { return target_; }

 private:
  void begin();
  void flush();
  [[noreturn]] void fail(int errorNumber) const;

  std::string name_;
  std::string target_;
  std::string begun_;  // the hidden file; empty when there is none
  std::string buffer_;
  int descriptor_ = -1;
  bool isTerminal_ = false;
  int slot_ = -1;  // in the list of begun files
};

/// From now on a signal that ends the program removes the begun files first, and one that reports a
/// failed write is ignored: the write fails.
void removeBegunFilesOnSignals();

}  // namespace Quillet
