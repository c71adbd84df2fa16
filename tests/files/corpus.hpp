// What must hold for any bytes whatever that are read as an image file or as the stream of an image, and small ones of
// every kind to start from. Fuzzers and tests feed these functions.
#pragma once

#include <cstdint>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

#include "files/hand_made.hpp"

namespace orlix::test {

inline void Rule(bool holds, const char* rule) {
    if (!holds) throw std::logic_error(rule);
}

constexpr int32_t kMostSamples = 1 << 14;

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

// Throws std::logic_error with the rule that is broken:
//  (1) A reader gives an image, or one of the documented failures.
//  (2) It asks for no more than twice of what has arrived (or 64 KiB), and its pixels can come out of that many bytes.
//  (3) What it gives is consistent.
void CheckStreamReading(std::span<const uint8_t> bytes);

//  (4) It is read by these rules; written, it takes no more bytes than announced; read again and written again, it
//      gives the same bytes. Slower.
void CheckStreamWriting(std::span<const uint8_t> bytes);

// A stream that is sound up to its pixels: a small image whose type and geometry are taken from the first bytes, and
// then the rest. So damage reaches the fields behind the pixels.
Bytes WithSoundPixels(std::span<const uint8_t> bytes);

struct Seed {
    std::string name;  // a file name: png-..., bmp-..., pnm-..., tiff-..., jpeg-..., stream-...
    Bytes bytes;
};
std::vector<Seed> MakeSeeds();
std::vector<Seed> MakeStreamSeeds();

}  // namespace orlix::test
