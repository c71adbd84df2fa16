// What must hold for any bytes whatever that are read as the stream of an image. A fuzzer and tests feed these
// functions.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "files/hand_made.hpp"
#include "files/seeds.hpp"

namespace orlix::test {

// Throws std::logic_error with the rule that is broken:
//  (1) A reader gives an image, or one of the documented failures.
//  (2) It asks for no more than twice of what has arrived (or 64 KiB), and its pixels can come out of that many bytes.
//  (3) What it gives is consistent; written, it takes no more bytes than announced; read again and written again, it
//      gives the same bytes.
void CheckStreamReading(std::span<const uint8_t> bytes);

// A stream that is sound up to its pixels: a small image whose type and geometry are taken from the first bytes, and
// then the rest. So damage reaches the fields behind the pixels.
Bytes WithSoundPixels(std::span<const uint8_t> bytes);

// Streams to start from, named stream-...
std::vector<Seed> MakeStreamSeeds();

}  // namespace orlix::test
