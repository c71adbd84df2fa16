// Images in files, of all formats of the table in file_formats.hpp.
//
// What a file becomes. Grey stays one band, colour becomes three (red, green, blue). Samples of up to 8 bits become 8
// bits, wider ones 16; TIFF has more types. IImageFile::LoadFromFile says what is kept besides the pixels.
//   PNG   Every colour type and depth, interlaced or not. Grey of 1, 2 and 4 bits is scaled to 0..255 (times 255, 85,
//         17); 8 and 16 bits are unchanged. A palette is applied. An alpha channel and transparent colours are dropped:
//         the stored samples count, visible or not. Gamma and colour profiles are not applied.
//   BMP   1, 4, 8, 16, 24 and 32 bits, run lengths, bottom-up or top-down, every header since OS/2 1.x. The palette is
//         applied; without one the indices are the grey levels.
//   PNM   Plain and raw PGM and PPM (P2, P5, P3, P6). Values are kept as they are, whatever the declared maximum (a
//         12-bit camera has levels 0..4095, and its user measures in those). A maximum up to 255 gives 8 bits, a larger
//         one 16. PAM (P7) likewise, but for black and white, which become 0 and 255; alpha is dropped. PFM (Pf, PF)
//         gives floats, bit by bit. Of several images in a file the first is read.
//   TIFF  tiff.hpp says it. 32-bit integers and floating point stay what they are.
//   JPEG  Grey and colour of 8 bits. Colour all of whose pixels are grey becomes one band.
//   GIF, ICO, EMF, WMF   On Windows, by the system's loader: the first picture, with 8 bits.
// A palette gives one band if every entry that a pixel uses is grey (so a grey ramp with some reserved colours is a
// grey image), and three bands otherwise.
//
// Damage. Everything that can be found wrong before the pixels are decoded is found before the sink is begun: wrong
// checksums, chunks out of order, a size that the bytes present cannot fill. A PNG file must be complete, from its
// signature to the end chunk; in all formats, bytes behind the end are ignored. Readers allocate a few rows at most,
// and never more than the file's size can account for. They touch the sink's memory row by row, as rows are decoded.
//
// Size. A valid file of some kilobytes can hold an image of gigabytes. An image with more samples than the limit is
// refused before a pixel is decoded, or, where the pixels decide whether a palette makes three bands, before the sink
// is begun.
#pragma once

#include <orlix/orlix.h>

#include <cstdint>
#include <span>
#include <vector>

#include "files/file_types.hpp"

namespace orlix {

// Reads an image; its content shows the format. Failures return DISP_E_EXCEPTION, and their texts name the reader:
//   "IImageVPAEx::CreateFromFile: unknown file format."
//   "IImageVPAEx::CreateFromFile: problems reading pgm header", and so on: the header of each reader lists its texts
//   "IImageVPAEx::CreateFromFile: the image has N samples, more than the limit of M.", see SampleLimit
//   "IImageFile::LoadFromFile: the file has no such page."
// Exceptions of the sink pass through. After a failure the sink may have been begun and partly filled.
FileProperties ReadImageFile(std::span<const uint8_t> bytes, PixelSink& sink, const ReadOptions& options = {});

// Reads the file at a path. Fails like ReadImageFile() and with:
//   "IImageVPAEx::CreateFromFile: failed to open file."   also for what is not a regular file (folder, device, pipe)
//   "IImageVPAEx::CreateFromFile: failed to read file."
FileProperties LoadImageFile(WideStringView path, PixelSink& sink, const ReadOptions& options = {});

// The number of images in the file at a path. Fails like LoadImageFile().
int32_t PagesOfImageFile(WideStringView path);

// The bytes of a file of the given format. PNG keeps all properties. PGM, PPM and PAM keep the pixels only, and the
// number of significant bits as the declared maximum; PFM keeps the pixels and the text "PFM scale". Failures, in the
// order of the checks:
//   "IImageFile::SaveToFile: no image."              no width or no height
//   "IImageFile::SaveToFile: unknown file format."   also for IFF_ByExtension and formats that are read only
//   "IImageFile::SaveToFile: the format holds 8- and 16-bit images only.", or "8-bit images only.", or, of other
//   formats, "IImageFile::SaveToFile: the format does not hold this type of pixels."
//   "IImageFile::SaveToFile: the format does not hold this number of bands."
std::vector<uint8_t> WriteImageFile(ImageFileFormat format, const FileProperties& properties, PixelSource& source,
                                    const WriteOptions& options = {});

// Writes the file at a path. IFF_ByExtension chooses the format by the extension, in upper or lower case. A file that
// exists is replaced only once the new one is complete: "IImageFile::SaveToFile: failed to write file."
void SaveImageFile(WideStringView path, ImageFileFormat format, const FileProperties& properties, PixelSource& source,
                   const WriteOptions& options = {});

}  // namespace orlix
