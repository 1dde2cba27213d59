#pragma once

#include <cstddef>
#include <cstdint>

/// Opens the bytes as a trace file, twice over memory of different contents, and requires of it
/// whatever holds for every file. Of the files that claim so much that most of the time would go
/// into zeros, only a few are opened.
void checkTrace(const std::uint8_t* bytes, std::size_t count);
