#include "app/sample_name.h"

#include <cstdint>

namespace Quillet {

Tessaly::String sampleName(const std::string& listedName, bool stripExtensions) {
  Tessaly::String name = listedName.c_str();
  // Deliberate: a text does not end with itself, so that the name ".gz" stays.
  if (name.endsWith(".gz")) name.removeLast(3);
  if (!stripExtensions || !name.contains('.')) return name;

  const std::int32_t dot = name.lastIndex('.');
  Tessaly::String extension;
  extension.setTail(name, dot);
  // Deliberate: any part of the list is an extension, so that ".ab", ".sc" and "." are cut off as
  // well.
  if (extension.occursIn(" .abi .ab1 .scf ")) name.cut(dot);
  return name;
}

}  // namespace Quillet
