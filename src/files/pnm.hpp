// Portable grey and colour maps (PGM, PPM), plain and raw, see image_file.hpp.
#pragma once

#include "files/image_file.hpp"

namespace orlix {

// P2, P3, P5 or P6, followed by a blank or a comment.
bool LooksLikePnm(std::span<const uint8_t> bytes) noexcept;

// The header: width, height and maximum (1..65535) in decimal, separated by blanks, tabs or line ends; '#' starts a
// comment that lasts to the end of its line. In a raw file exactly one such separator follows the maximum (for a
// comment there, the end of its line). Plain values are separated as in the header, comments included. Failures (pgm or
// ppm in each):
//   "IImageVPAEx::CreateFromFile: problems reading pgm header"
//   "IImageVPAEx::CreateFromFile: the pgm file is too short for its image."
//   "IImageVPAEx::CreateFromFile: a pgm value is above the declared maximum."
//   "IImageVPAEx::CreateFromFile: problems reading pgm values"
FileProperties ReadPnm(std::span<const uint8_t> bytes, PixelSink& sink, const SampleLimit& limit);

// One band gives PGM, three give PPM; 8 or 16 bits. The maximum is 255 or 65535. Plain files have lines of at most 70
// characters, and every row starts on a new one.
std::vector<uint8_t> WritePnm(bool plain, const FileProperties& properties, PixelSource& source);

}  // namespace orlix
