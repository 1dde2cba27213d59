#include "app/project.h"

#include "foundation/directory.h"

namespace Quillet {

Project::Project(const Settings& settings)
    : settings_(settings),
      workingDir_(Tessaly::Directory::currentDirectory()),
      timeText_(startTime_.asText()) {}

}  // namespace Quillet
