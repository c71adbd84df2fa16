// Portable Network Graphics, see image_file.hpp.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "files/file_types.hpp"

namespace orlix {

// The first four bytes of the signature: what is damaged behind them is still a PNG file, though a bad one.
bool LooksLikePng(std::span<const uint8_t> bytes) noexcept;

// The structure is checked first, from the signature to the end chunk: lengths, types, order and checksum of every
// chunk. Texts (plain, compressed, international) and the pixel size are taken wherever they stand; those with
// impossible contents, with a keyword that IsFileKeyword() refuses, without text, or that decompress to more than a
// mebibyte (16 for all of them together) are skipped as if they were not there. Other optional chunks are skipped.
// Failures:
//   "IImageVPAEx::CreateFromPng: problems reading png header"
//   "IImageVPAEx::CreateFromPng: the file is truncated."
//   "IImageVPAEx::CreateFromPng: a checksum is wrong."
//   "IImageVPAEx::CreateFromPng: chunks are missing or out of order."
//   "IImageVPAEx::CreateFromPng: the file needs a chunk that is not supported."
//   "IImageVPAEx::CreateFromPng: problems reading png palette"
//   "IImageVPAEx::CreateFromPng: the file is too short for its image."
//   "IImageVPAEx::CreateFromPng: problems reading png pixels": damaged, or fewer or more than the image has
//   "IImageVPAEx::CreateFromPng: a pixel is outside the palette."
FileProperties ReadPng(std::span<const uint8_t> bytes, PixelSink& sink, const SampleLimit& limit);

// One band gives grey, three give true colour, 8 or 16 bits, not interlaced.
std::vector<uint8_t> WritePng(const FileProperties& properties, PixelSource& source);

}  // namespace orlix
