#include "report/state_texts.h"

namespace Quillet {

Severity severityOf(SampleState state) {
  switch (state) {
    case SampleState::differs:
    case SampleState::borrowed:
    case SampleState::cut:
    case SampleState::orphan:
      return Severity::untrusted;
    case SampleState::noPoly:
    case SampleState::invalid:
    case SampleState::refused:
      return Severity::missing;
    case SampleState::hidden:
    case SampleState::waiting:
      return Severity::waiting;
    case SampleState::converted:
      break;
  }
  return Severity::whole;
}

const char* textOf(Severity severity) {
  switch (severity) {
    case Severity::untrusted:
      return "untrusted";
    case Severity::missing:
      return "missing";
    case Severity::waiting:
      return "waiting";
    case Severity::whole:
      break;
  }
  return "whole";
}

const char* adviceOf(SampleState state) {
  switch (state) {
    case SampleState::differs:
      return "The result is not what its own trace gives. Look at both readings; then delete both "
             "files and run quillet again. Detail invalid or refused: the trace has gone bad "
             "since: keep the results.";
    case SampleState::borrowed:
      return "The trace holds no calls or no qualities, and its result has those of another trace. "
             "Do not use the result: delete it, and have the trace called or take it out of "
             "chromat_dir.";
    case SampleState::cut:
      return "A result file is not whole, or can not be read: the disk was full, or the run was "
             "stopped. Look at the file's rights, delete both files and run quillet again.";
    case SampleState::noPoly:
      return "The .phd.1 is right, and there is no .poly. Delete the .phd.1 and run quillet again.";
    case SampleState::orphan:
      return "There is a result, and no trace of this sample. Bring the trace back, or delete the "
             "result. Many at once: was the project converted with -s, and is it checked without, "
             "or the other way round?";
    case SampleState::invalid:
      return "The trace can not be read; the detail says why. Copy it from the instrument again.";
    case SampleState::refused:
      return "The trace holds no calls or no qualities, or a base from the 41st to the 60th fails "
             "the quality check. Have the trace called again, or leave it out.";
    case SampleState::hidden:
      return "Another trace has the same sample name, and the result is that one's. Rename one. Or "
             "start over with -s: empty the results folders, run quillet -s, and give "
             "quillet-report the -s too.";
    case SampleState::waiting:
      return "There is no result yet. Run quillet. If it stays, look at the disk and at the rights "
             "of the folders.";
    case SampleState::converted:
      break;
  }
  return "Both results are what the trace gives. That says nothing of its quality: look at the "
         "good stretch.";
}

}  // namespace Quillet
