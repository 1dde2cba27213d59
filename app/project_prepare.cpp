#include "app/project.h"

#include <iostream>
#include <string>

#include "foundation/directory.h"

namespace Quillet {

namespace {

bool isAbsolute(const std::string& path) { return path.starts_with('/'); }

}  // namespace

void Project::prepare(ProjectUse use) {
  const bool mustBeWriteable = use == ProjectUse::write;
  try {
    resolveRoot();
    resolve(settings_.chromatDir, false, chromatPath_);
    resolve(settings_.phdDir, mustBeWriteable, phdPath_);
    resolve(settings_.polyDir, mustBeWriteable, polyPath_);
  } catch (const Tessaly::Directory::Exception& exception) {
    std::cerr << "ERROR: " << exception.message() << ' ' << exception.path() << std::endl;
    throw 1;
  }
  tempName_ = startTime_.format("temp%y%M%D%h%m%s");
}

void Project::resolveRoot() {
  workPath_ = settings_.dataDir;
  if (!isAbsolute(workPath_)) {
    workPath_ = workingDir_.text() + settings_.dataDir;
    const std::string& editDir = settings_.editDir;
    // Users start the program inside the edit directory; its parent is then the project.
    // Deliberate: the ending is compared as plain text, so that "my_edit_dir/" loses it as well.
    if (!isAbsolute(editDir) && workPath_.ends_with(editDir)) {
      workPath_.erase(workPath_.length() - editDir.length());
    }
  }
  Tessaly::Directory::check(workPath_.c_str(), true, false);
  rootDir_ = workPath_.c_str();
}

void Project::resolve(const std::string& directory, bool mustBeWriteable, Tessaly::String& path) {
  workPath_ = isAbsolute(directory) ? directory : rootDir_.text() + directory;
  Tessaly::Directory::check(workPath_.c_str(), true, mustBeWriteable);
  path = workPath_.c_str();
}

}  // namespace Quillet
