// Portable grey and colour maps (PGM, PPM), plain and raw, see image_file.hpp.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "files/file_types.hpp"

namespace orlix {

// P5, P6, P2 and P3, followed by a blank or a comment.
bool LooksLikePgm(std::span<const uint8_t> bytes) noexcept;
bool LooksLikePpm(std::span<const uint8_t> bytes) noexcept;
bool LooksLikePlainPgm(std::span<const uint8_t> bytes) noexcept;
bool LooksLikePlainPpm(std::span<const uint8_t> bytes) noexcept;

// The header holds width, height and maximum (1..65535) in decimal, separated by blanks, tabs, line ends or comments,
// which go from '#' to the end of the line. In a raw file exactly one separator follows the maximum (if it is a
// comment, it ends with its line end). Plain values are separated as in the header. Failures, with pgm or ppm in each:
//   "IImageVPAEx::CreateFromFile: problems reading pgm header"
//   "IImageVPAEx::CreateFromFile: the pgm file is too short for its image."
//   "IImageVPAEx::CreateFromFile: a pgm value is above the declared maximum."
//   "IImageVPAEx::CreateFromFile: problems reading pgm values"
FileProperties ReadPnm(std::span<const uint8_t> bytes, PixelSink& sink, const ReadOptions& options);

// One band gives PGM, three give PPM; 8 or 16 bits. The maximum is 255 or 65535, or that of fewer significant bits.
// Plain files have lines of at most 70 characters, and every row starts on a new line.
std::vector<uint8_t> WriteRawPnm(const FileProperties& properties, PixelSource& source, const WriteOptions& options);
std::vector<uint8_t> WritePlainPnm(const FileProperties& properties, PixelSource& source, const WriteOptions& options);

}  // namespace orlix
