#pragma once

#include <cstddef>
#include <cstdint>

/// Opens the bytes as a trace file and requires what holds for every file. Opens them again with
/// other bytes in fresh memory and requires the same outcome. Skips most files that claim many
/// samples or bases which they do not hold: filling those with zeros would take most of the time.
void checkTrace(const std::uint8_t* bytes, std::size_t count);
