#pragma once

#include <functional>
#include <string>
#include <vector>

#include "tests/report/report_run.h"
#include "tests/support/project_folder.h"
#include "tests/support/trace_generator.h"

/// A project of 66 believable traces with all their results: every format, plain and gzipped, names
/// with blanks and quotes, one trace without calls and one without qualities, which the converter
/// met alone. Tests change it and put it back.
class ConvertedProject : public ProjectFolder {
 public:
  struct Trace {
    std::string name;
    std::string sample;
    TraceContents content;
  };

  ConvertedProject();

  /// In the converter's order.
  const std::vector<Trace>& traces() const { return traces_; }
  /// The trace of a sample.
  const Trace& trace(const std::string& sample) const;

  /// Undoes every change to traces and results.
  void restore() const;

  std::string phdName(const std::string& sample) const { return "phd_dir/" + sample + ".phd.1"; }
  std::string polyName(const std::string& sample) const { return "poly_dir/" + sample + ".poly"; }

  void remove(const std::string& name) const;
  void cut(const std::string& name, std::size_t size) const;
  void swap(const std::string& one, const std::string& other) const;
  /// Replaces field `field` (from 0) of the line of base `base` (from 0) by another text.
  void changePhd(const std::string& sample, int base, int field) const;
  void changePoly(const std::string& sample, int base, int field) const;
  /// Replaces the first `from` in a file, which must be there.
  void replace(const std::string& name, const std::string& from, const std::string& to) const;
  /// Converts these names in this order, over what is there.
  void convert(const std::vector<std::string>& names) const;

 private:
  std::vector<Trace> traces_;
};
