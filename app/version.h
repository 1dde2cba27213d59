#pragma once

namespace Quillet {

/// The version number that the banner shows.
extern const char* const versionText;
/// Date and time of the build in UTC and the short commit. `-version` shows them.
extern const char* const buildStampText;

}  // namespace Quillet
