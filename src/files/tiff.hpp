// TIFF files, see image_file.hpp. Compression, predictors, tiles, byte orders and BigTIFF are libtiff's work.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "files/file_types.hpp"

namespace orlix {

bool LooksLikeTiff(std::span<const uint8_t> bytes) noexcept;

// Reads a page: a directory of the file's chain, counted from 0 (thumbnails in the chain count, sub-directories do
// not).
//   Samples  Unsigned of 1, 2 and 4 bits become 8 bits scaled to 0..255; 8, 16 and 32 bits are unchanged. 9 to 15 bits
//            keep their values in 16 bits, with that number of significant bits. 32-bit floating point keeps its bits.
//            Signed of 8 and 16 bits become floating point, which holds them exactly; everything else would be rounded
//            and is refused: signed 32 bits, half and double precision, complex numbers.
//   Bands    Grey has one band, and one more for each further sample that the file says is no transparency; colour has
//            three. Transparency is dropped. White as zero is inverted, so that levels rise with brightness: 0 becomes
//            the largest value of the depth. Palettes of up to 8 bits are applied; their 16-bit entries lose the low
//            byte, unless all of them are below 256.
//   Storage  Strips and tiles, pixel by pixel or band by band, uncompressed or by LZW, deflate or PackBits, with
//            horizontal or floating-point predictor; both byte orders; classic and BigTIFF. Rows are as stored: the
//            orientation tag, which displays use, is ignored.
//   Size     The exact one that the writer below keeps, unless another program has changed the resolution since; else
//            by the description (OME-XML, ImageJ), else by the resolution: see FindPixelSize().
//   Texts    Image description, artist, copyright, date, software and some more, under the keywords of PNG.
// Failures, in the order of the checks:
//   "IImageVPAEx::CreateFromTiff: libtiff is not installed."      off Windows
//   "IImageVPAEx::CreateFromTiff: problems reading tiff header"   also a page whose directory is damaged
//   "IImageFile::LoadFromFile: the file has no such page."
//   "IImageVPAEx::CreateFromTiff: the compression is not supported."
//   "IImageVPAEx::CreateFromTiff: the colour model is not supported."
//   "IImageVPAEx::CreateFromTiff: the type of the samples is not supported."
//   "IImageVPAEx::CreateFromTiff: the file is too short for its image."
//   "IImageVPAEx::CreateFromTiff: problems reading tiff pixels"
FileProperties ReadTiff(std::span<const uint8_t> bytes, PixelSink& sink, const ReadOptions& options);

// The number of pages; fails with the first two texts above.
int32_t CountTiffPages(std::span<const uint8_t> bytes);

// Any number of bands and every type of pixels: deflate with a predictor, in strips of about 256 KiB, little-endian;
// BigTIFF where the pixels might exceed 4 GB. One band is grey, three are colour, others are grey with further samples,
// band by band. The resolution has nine digits, in pixels per centimetre, or per the unit of a description by ImageJ.
// The exact size and everything else that the format has no place for stand in the private tag kTiffPrivateTag, see
// private_chunks.hpp. Texts with the keywords that the reader knows are written to their tags as well. Failures:
//   "IImageFile::SaveToFile: libtiff is not installed."      off Windows
//   "IImageFile::SaveToFile: problems writing tiff file"     libtiff refuses, e.g. an image of more than 2^32 strips
std::vector<uint8_t> WriteTiff(const FileProperties& properties, PixelSource& source, const WriteOptions& options);

// Of the range that TIFF leaves to private use within an organisation; its content shows by its beginning that it is
// ours.
inline constexpr uint16_t kTiffPrivateTag = 65012;

}  // namespace orlix
