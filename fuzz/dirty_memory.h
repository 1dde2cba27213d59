#pragma once

/// From now on `new` fills the memory that it returns with `value` (at first with 0). Two runs with
/// different values differ when the program reads memory that it has not set.
void setDirt(unsigned char value);
