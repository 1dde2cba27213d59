#include "app/quality_gate.h"

#include <cctype>

namespace Quillet {

std::optional<UnusableQuality> firstUnusableQuality(const Tessaly::String& bases,
                                                    const Tessaly::String& qualities) {
  // Deliberate: a fixed window, whatever the number of bases.
  for (std::int32_t i = 40; i <= 59 && i < bases.length(); ++i) {
    if (std::toupper(static_cast<unsigned char>(bases[i])) == 'N') continue;
    // Deliberate: a base after the end of the qualities has the quality 0.
    const int quality = i < qualities.length() ? static_cast<unsigned char>(qualities[i]) : 0;
    if (quality == 0 || quality >= 100) return UnusableQuality{.baseIndex = i, .quality = quality};
  }
  return std::nullopt;
}

}  // namespace Quillet
