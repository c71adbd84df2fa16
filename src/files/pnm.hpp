// Portable grey, colour, arbitrary and float maps (PGM, PPM, PAM, PFM), see image_file.hpp.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "files/file_types.hpp"

namespace orlix {

// ------------------------------------------------------------------------------------------------------- PGM and PPM

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

// ----------------------------------------------------------------------------------------------------------------- PAM

// P7 and a line end.
bool LooksLikePam(std::span<const uint8_t> bytes) noexcept;

// The header has a line each for WIDTH, HEIGHT, DEPTH and MAXVAL (1..65535), perhaps one for TUPLTYPE, lines of
// comments and empty ones, and ends with the line ENDHDR. Tuples are BLACKANDWHITE (maximum 1), GRAYSCALE or RGB, with
// or without _ALPHA, and have as many samples as that says; without a type, 1 to 4 samples are grey, grey and alpha,
// RGB, and RGB and alpha. Alpha is dropped unread. Failures:
//   "IImageVPAEx::CreateFromFile: problems reading pam header"
//   "IImageVPAEx::CreateFromFile: unknown type of pam tuples."   or a depth that does not go with the type
//   "IImageVPAEx::CreateFromFile: the pam file is too short for its image."
//   "IImageVPAEx::CreateFromFile: a pam value is above the declared maximum."
FileProperties ReadPam(std::span<const uint8_t> bytes, PixelSink& sink, const ReadOptions& options);

// GRAYSCALE and RGB; the maximum as of PGM and PPM.
std::vector<uint8_t> WritePam(const FileProperties& properties, PixelSource& source, const WriteOptions& options);

// ----------------------------------------------------------------------------------------------------------------- PFM

// Pf (grey) and PF (colour), followed by a blank.
bool LooksLikePfm(std::span<const uint8_t> bytes) noexcept;

// The header holds width, height and scale, and exactly one blank follows it. The rows go from the bottom up; a
// negative scale says that samples are little-endian. The bits of all samples are kept, those of NaN too. The scale's
// absolute value is the unit of the samples, which are not multiplied by it: unless it is 1, it is kept in the header's
// digits as the text "PFM scale". Failures:
//   "IImageVPAEx::CreateFromFile: problems reading pfm header"   also for a scale that is 0, infinite or no number
//   "IImageVPAEx::CreateFromFile: the pfm file is too short for its image."
FileProperties ReadPfm(std::span<const uint8_t> bytes, PixelSink& sink, const ReadOptions& options);

// Little-endian; the scale is that of the text "PFM scale" if that is a number above 0, otherwise 1.
std::vector<uint8_t> WritePfm(const FileProperties& properties, PixelSource& source, const WriteOptions& options);

}  // namespace orlix
