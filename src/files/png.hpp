// Portable Network Graphics, see image_file.hpp.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "files/file_types.hpp"

namespace orlix {

// By the first four bytes of the signature. A file that is damaged behind them is reported as a bad PNG file, not as
// one of an unknown format.
bool LooksLikePng(std::span<const uint8_t> bytes) noexcept;

// The structure is checked first, from the signature to the end chunk: length, type, order and checksum of every chunk.
// Texts (plain, compressed, international), the pixel size and the chunks of private_chunks.hpp are read wherever they
// stand. Texts are skipped if their contents are invalid, IsFileKeyword() refuses the keyword, the text is empty,
// or it decompresses to more than 1 MiB (16 MiB for all texts together). Of the chunks that are not known here those
// that may be copied are kept. Samples of 8 and 16 bits that sBIT announces as scaled from fewer bits are scaled back
// where that loses nothing. Failures:
//   "IImageVPAEx::CreateFromPng: problems reading png header"
//   "IImageVPAEx::CreateFromPng: the file is truncated."
//   "IImageVPAEx::CreateFromPng: a checksum is wrong."
//   "IImageVPAEx::CreateFromPng: chunks are missing or out of order."
//   "IImageVPAEx::CreateFromPng: the file needs a chunk that is not supported."
//   "IImageVPAEx::CreateFromPng: problems reading png palette"
//   "IImageVPAEx::CreateFromPng: the file is too short for its image."
//   "IImageVPAEx::CreateFromPng: problems reading png pixels": damaged, or too few or too many for the image
//   "IImageVPAEx::CreateFromPng: a pixel is outside the palette."
FileProperties ReadPng(std::span<const uint8_t> bytes, PixelSink& sink, const ReadOptions& options);

// Writes one band as grey and three as true colour, 8 or 16 bits, not interlaced. Samples of fewer significant bits are
// scaled, with sBIT.
std::vector<uint8_t> WritePng(const FileProperties& properties, PixelSource& source, const WriteOptions& options);

}  // namespace orlix
