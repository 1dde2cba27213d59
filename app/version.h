#pragma once

namespace Quillet {

/// The version number, as the banner shows it.
extern const char* const versionText;
/// Date and time of the build in UTC and the short commit, as `-version` shows them.
extern const char* const buildStampText;

}  // namespace Quillet
