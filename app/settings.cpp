#include "app/settings.h"

#include "app/version.h"

namespace Quillet {

void ensureTrailingSlash(std::string& directory) {
  // Deliberate: an empty text (the working directory) must not become "/". For it, rfind gives npos,
  // and length() - 1 wraps to the same value.
  if (directory.rfind('/') != directory.length() - 1) directory += '/';
}

Settings::Settings()
    : version(versionText),
      buildStamp(buildStampText),
      chromatDir("chromat_dir/"),
      editDir("edit_dir/"),
      phdDir("phd_dir/"),
      polyDir("poly_dir/") {
  for (std::string* directory : {&dataDir, &chromatDir, &editDir, &phdDir, &polyDir}) {
    ensureTrailingSlash(*directory);
  }
}

bool Settings::listFile(Tessaly::String& name) const {
  if (listFile_.empty()) return false;
  name = listFile_.c_str();
  return true;
}

}  // namespace Quillet
