// Leptonica for comparison with binary images. A file of its own, because its names and the contract's collide.
#pragma once

#include <cstdint>
#include <string>

namespace orlix::bench {

// `bits`: size x size pixels, size / 8 bytes a row, the first pixel in the highest bit.
void RegisterLeptonica(const std::string& picture, const uint8_t* bits, int size);

}  // namespace orlix::bench
