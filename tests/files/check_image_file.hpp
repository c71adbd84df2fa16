// What must hold for any bytes whatever that are read as an image file. Fuzzers and tests feed these functions.
#pragma once

#include <cstdint>
#include <span>
#include <stdexcept>

#include "files/hand_made.hpp"

namespace orlix::test {

inline void Rule(bool holds, const char* rule) {
    if (!holds) throw std::logic_error(rule);
}

constexpr int32_t kMostSamples = 1 << 24;

// Both throw std::logic_error with the rule that is broken. Images of more than kMostSamples are not looked at.
//  (1) A reader gives an image, or a Failure whose text names the reader and whose result is DISP_E_EXCEPTION.
//  (2) What it asks the sink to hold can come out of a file of this size.
//  (3) It begins the sink once, stays inside the image and writes every sample.
void CheckReading(std::span<const uint8_t> bytes);

//  (4) An image written in any format that holds it, and read again, is the same, its texts and pixel size included.
// Slower; images of more than 2^16 samples are not looked at.
void CheckWriting(std::span<const uint8_t> bytes);

// The same file with the checksum of every whole PNG chunk made right, so that damage reaches the parser.
Bytes WithRightChecksums(std::span<const uint8_t> bytes);

}  // namespace orlix::test
