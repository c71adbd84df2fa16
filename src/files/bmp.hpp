// Windows and OS/2 bitmaps, see image_file.hpp.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "dib/dib_pixels.hpp"
#include "files/file_types.hpp"

namespace orlix {

bool LooksLikeBmp(std::span<const uint8_t> bytes) noexcept;

// Reads uncompressed bitmaps of 8 bits, and with options.anyBitmap all others. Failures, in the order of the checks:
//   "IImageVPAEx::CreateFromBmp: problems reading bmp header": truncated, an unknown header, no width or height
//   "IImageVPAEx::CreateFromBmp: only bitmaps with eight bits per pixel are currently supported." (not with anyBitmap)
//   "IImageVPAEx::CreateFromBmp: compressed bitmaps are not currently supported." (not with anyBitmap)
//   "IImageVPAEx::CreateFromBmp: unknown number of bits per pixel.": other than 1, 4, 8, 16, 24, 32
//   "IImageVPAEx::CreateFromBmp: unknown compression.": also one that does not go with the number of bits
//   "IImageVPAEx::CreateFromBmp: invalid colour masks.": cut off, with gaps, or none for any colour
//   "IImageVPAEx::CreateFromBmp: the file is too short for its image."
//   "IImageVPAEx::CreateFromBmp: the run lengths leave the image."
//   "IImageVPAEx::CreateFromBmp: a pixel is outside the palette."
FileProperties ReadBmp(std::span<const uint8_t> bytes, PixelSink& sink, const ReadOptions& options);

// The bitmap of a file, whose bytes must outlive it; of any kind. Raises DibFailure.
DibView ReadBmpView(std::span<const uint8_t> bytes);

// The 14 bytes at the start of a file, of which the last ones are the pixels. Both numbers are below 2^32.
constexpr size_t kBmpFileHeader = 14;
void PutBmpFileHeader(uint8_t* header, uint64_t fileSize, uint64_t pixelsAt);

// Bottom-up, with a header of 40 bytes: one band as 8 bits with a palette of grey levels, three as 24 bits. The size of
// a pixel is kept in whole pixels per metre. Failure:
//   "IImageFile::SaveToFile: the image is too large for the format.": 4 GB, the size that the header can hold
std::vector<uint8_t> WriteBmp(const FileProperties& properties, PixelSource& source, const WriteOptions& options);

}  // namespace orlix
