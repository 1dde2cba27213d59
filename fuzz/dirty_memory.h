#pragma once

/// Every byte that `new` hands out holds this value: what the program leaves unset can be seen,
/// since it changes with the value. Starts at 0.
void setDirt(unsigned char value);
