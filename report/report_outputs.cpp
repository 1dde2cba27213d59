#include "report/report_outputs.h"

#include <algorithm>
#include <ctime>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <vector>

#include "audit/companion_program.h"
#include "audit/descriptor.h"
#include "report/fastq_reads.h"
#include "report/json_table.h"
#include "report/tsv_table.h"

namespace Quillet {

namespace fs = std::filesystem;

namespace {

constexpr const char* standardOutput = "-";

bool usesStandardOutput(const CommandLine& line) {
  const auto names = {&line.tsv, &line.json, &line.fastq, &line.fasta, &line.html};
  return std::any_of(names.begin(), names.end(),
                     [](const auto* name) { return *name == std::string(standardOutput); });
}

/// Where the bytes wait that a page will hold: beside the page, or else where temporary files lie.
std::string spoolFolder(const OutputFile& page) {
  if (!page.target().empty()) return fs::path(page.target()).parent_path().string();
  return temporaryFolder();
}

}  // namespace

ReportOutputs::ReportOutputs(const CommandLine& line, const std::string& project)
    : trim_(line.trim) {
  if (line.tsv) tsv_.emplace(*line.tsv);
  if (line.json) json_.emplace(*line.json);
  if (line.fastq) fastq_.emplace(*line.fastq);
  if (line.fasta) fasta_.emplace(*line.fasta);
  if (line.html) html_.emplace(*line.html);
  if (!usesStandardOutput(line)) console_.emplace(standardOutput);
  refuseOneFileTwice();
  if (tsv_) tsv_->write(tsvHeader());
  if (json_) json_->write(jsonStart(project));
  if (!html_) return;
  page_.emplace(
      HtmlPage::About{
          .project = project, .hasPictures = line.pictures, .moment = std::time(nullptr)},
      spoolFolder(*html_));
}

void ReportOutputs::refuseOneFileTwice() const {
  std::vector<fs::path> targets;
  for (const File* file : {&tsv_, &json_, &fastq_, &fasta_, &html_}) {
    if (!*file || (*file)->target().empty()) continue;
    const fs::path target = fs::weakly_canonical(fs::absolute((*file)->target()));
    if (std::find(targets.begin(), targets.end(), target) != targets.end()) {
      throw UsageError("two outputs are the same file: " + target.string());
    }
    targets.push_back(target);
  }
}

void ReportOutputs::add(const AuditedSample& sample) {
  summary_.add(sample.row);
  if (tsv_) tsv_->write(tsvLine(sample.row, tsv_->isTerminal()));
  if (json_) json_->write(jsonRow(sample.row, isFirst_));
  isFirst_ = false;
  if (page_) page_->add(sample);
  if (!fastq_ && !fasta_) return;
  const std::optional<Read> read = readOf(sample, trim_);
  if (!read) return;
  if (fastq_) fastq_->write(fastqRecord(*read));
  if (fasta_) fasta_->write(fastaRecord(*read));
}

void ReportOutputs::finish() {
  if (json_) json_->write(jsonEnd(summary_.counts()));
  if (page_) page_->writeTo(*html_);
  if (console_) console_->write(summary_.text(console_->isTerminal()));
  for (File* file : {&tsv_, &json_, &fastq_, &fasta_, &html_, &console_}) {
    if (*file) (*file)->finish();
  }
  for (File* file : {&tsv_, &json_, &fastq_, &fasta_, &html_}) {
    if (*file) (*file)->publish();
  }
}

bool ReportOutputs::fillTerminal() const {
  const auto files = {&tsv_, &json_, &fastq_, &fasta_};
  return std::any_of(files.begin(), files.end(),
                     [](const File* file) { return *file && (*file)->isTerminal(); });
}

}  // namespace Quillet
