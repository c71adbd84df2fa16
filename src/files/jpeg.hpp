// JPEG files, see image_file.hpp. The codec is libjpeg-turbo, on Windows the system's; what a file says of its image is
// read and written here.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "files/file_types.hpp"

namespace orlix {

bool LooksLikeJpeg(std::span<const uint8_t> bytes) noexcept;

// Baseline and progressive files of one component (grey) or three (colour) of 8 bits. Three components give one band if
// every pixel is grey, as those of monochrome cameras are. Decoded levels may differ by one or two between platforms.
//   Size     What the writer below keeps exactly, unless another program has changed the resolution; else the
//            resolution of the Exif data, else that of the JFIF header.
//   Texts    A comment is the description. The texts of the Exif data as those of TIFF files.
// Colour profiles and the orientation that the Exif data ask for are not applied. Failures, in the order of the checks:
//   "IImageVPAEx::CreateFromJpeg: problems reading jpeg header"
//   "IImageVPAEx::CreateFromJpeg: the kind of compression is not supported."    lossless, arithmetic, 12 bits
//   "IImageVPAEx::CreateFromJpeg: images in CMYK are not supported."            four components
//   "IImageVPAEx::CreateFromJpeg: the file is too short for its image."         also without its end marker
//   "IImageVPAEx::CreateFromJpeg: problems reading jpeg pixels"    more than 100 scans; damaged (as far as the system's
//                                                                  codec tells); no codec
FileProperties ReadJpeg(std::span<const uint8_t> bytes, PixelSink& sink, const ReadOptions& options);

// One band or three of 8 bits, up to 65500 rows and columns. Writes a JFIF header with the resolution in whole pixels
// per centimetre where they are 1 to 65535, Exif data with the resolution at nine digits, the description as a comment,
// and everything that the format has no place for in segments of its own (APP9, "Orlix"), see private_chunks.hpp.
// Failures:
//   "IImageFile::SaveToFile: the image is too large for the format."
//   "IImageFile::SaveToFile: problems writing jpeg file"    the codec fails, or there is none
std::vector<uint8_t> WriteJpeg(const FileProperties& properties, PixelSource& source, const WriteOptions& options);

}  // namespace orlix
