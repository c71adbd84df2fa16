// What must hold for any bytes whatever that are read as an image file. Fuzzers and tests feed it.
#pragma once

#include <cstdint>
#include <span>

#include "files/hand_made.hpp"

namespace orlix::test {

// Throws std::logic_error with the rule that is broken:
//  (1) a reader gives an image, or a Failure whose text names the reader and whose result is DISP_E_EXCEPTION;
//  (2) what it asks the sink to hold can come out of a file of this size;
//  (3) it begins the sink once, stays inside the image and writes every sample;
//  (4) an image written in any format that holds it, and read again, is the same, its texts and pixel size included.
// Images of more than 2^24 samples are not read, larger ones than 2^16 not written.
void CheckImageFile(std::span<const uint8_t> bytes);

// The same file with the checksum of every whole PNG chunk made right, so that damage reaches the parser.
Bytes WithRightChecksums(std::span<const uint8_t> bytes);

}  // namespace orlix::test
