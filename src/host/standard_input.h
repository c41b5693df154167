// The standard input, as it arrives.
#pragma once

#include <cstddef>
#include <span>

namespace kiln {

// Waits for bytes and reads some of them. Gives their count; 0 at the end, or when nothing can be read.
size_t readStandardInput(std::span<char> buffer);

// True when bytes can be read without waiting.
bool hasStandardInput();

}  // namespace kiln
