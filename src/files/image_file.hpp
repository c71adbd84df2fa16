// Image files: readers of PNG, BMP, PGM and PPM, writers of PNG, PGM and PPM.
//
// What a file becomes. Grey stays one band, colour becomes three (red, green, blue). Samples of up to 8 bits come as 8,
// wider ones as 16.
//   PNG   Every colour type and depth, interlaced or not. Grey of 1, 2 and 4 bits is scaled to 0..255 (times 255, 85,
//         17); 8 and 16 bits are unchanged. A palette is applied. An alpha channel and transparent colours are dropped:
//         the stored samples count, whether they are visible or not. Gamma and colour profiles are not applied.
//   BMP   8 bits uncompressed; bottom-up or top-down; every header since OS/2 1.x. The palette is applied; without one
//         the indices are the grey levels.
//   PNM   Plain and raw PGM and PPM (P2, P5, P3, P6). Values are kept as they are, whatever the declared maximum (a
//         camera of 12 bits has levels 0..4095, and its user measures in those). Maximum up to 255: 8 bits, else 16.
//         The first image of a file that holds several.
// With a palette: one band when every entry that a pixel uses is grey (so a grey ramp with some reserved colours in it
// is a grey image), three bands otherwise.
//
// Damage. Whatever can be seen to be wrong before the pixels are decoded is found before the sink hears of the image:
// wrong checksums, chunks out of order, a size that the bytes present cannot fill. A PNG file must be whole (from its
// signature to the end chunk); bytes behind the end of any format are ignored. Readers allocate no more than a few
// rows, and never more than the file's size can account for. Memory of the sink is touched row by row as rows have been
// decoded.
//
// Size. A file of some kilobytes can hold an image of gigabytes, and be right. What is beyond a limit of samples is
// refused before a pixel is decoded; where the pixels decide that a palette makes three bands, before the sink hears of
// the image.
#pragma once

#include <orlix/orlix.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "files/sample_limit.hpp"
#include "text/wide_string.hpp"

namespace orlix {

// A text that a file keeps under a keyword, see IsFileKeyword(). A file may hold several of one keyword; they come in
// the order of the file.
struct FileText {
    WideString keyword;
    WideString text;
};

struct FileProperties {
    int32_t width = 0, height = 0;          // from a reader: 1 .. 2^31 - 1 each
    int32_t bands = 0;                      // from a reader: 1 or 3
    int32_t bits = 0;                       // of a sample; from a reader: 8 or 16
    double micronsX = 0.0, micronsY = 0.0;  // physical size of a pixel; both above 0, or both 0: not known
    std::vector<FileText> texts;
};

// Where a reader puts the pixels.
class PixelSink {
public:
    virtual ~PixelSink() = default;

    // Called once, before any row, with all properties of the file (the texts too). Allocates; may throw.
    virtual void Begin(const FileProperties& properties) = 0;

    // Memory for the samples of a row, width of them: uint8_t for 8 bits, uint16_t in the machine's byte order for 16.
    // Rows come in any order, and the same row may be asked for again (interlaced files fill it in several passes), so
    // the memory is the final place of the samples and keeps them. Every sample is written once.
    virtual void* Row(int32_t band, int32_t y) = 0;
};

// Where a writer takes the pixels from.
class PixelSource {
public:
    virtual ~PixelSource() = default;

    // The samples of a row, laid out as above; read before the next call. A writer may ask for a row more than once.
    virtual const void* Row(int32_t band, int32_t y) = 0;
};

// Reads an image, of whatever format its content shows it to be. Failures name the reader and return DISP_E_EXCEPTION:
//   "IImageVPAEx::CreateFromFile: unknown file format."
//   "IImageVPAEx::CreateFromFile: problems reading pgm header", and so on: each text stands where it is raised.
//   "IImageVPAEx::CreateFromFile: the image has N samples, more than the limit of M.", see SampleLimit
// What the sink throws passes through. After a failure the sink may have been begun and filled in part.
FileProperties ReadImageFile(std::span<const uint8_t> bytes, PixelSink& sink, const SampleLimit& limit = {});

// Reads the file at a path. "IImageVPAEx::CreateFromFile: failed to open file." for whatever cannot be opened or is not
// a regular file (folder, device, pipe), "IImageVPAEx::CreateFromFile: failed to read file.", and as ReadImageFile().
FileProperties LoadImageFile(WideStringView path, PixelSink& sink, const SampleLimit& limit = {});

// The bytes of a file of the given format. PNG keeps the texts, and the size of a pixel in whole pixels per metre (it
// is left out where that is not in 1 .. 2^31 - 1). PGM and PPM keep the pixels only. Checked in this order:
//   "IImageFile::SaveToFile: no image." (no width or no height)
//   "IImageFile::SaveToFile: unknown file format." (IFF_ByExtension and IFF_BMP too)
//   "IImageFile::SaveToFile: the format holds 8- and 16-bit images only."
//   "IImageFile::SaveToFile: the format does not hold this number of bands."
// Texts with a keyword that IsFileKeyword() refuses, and texts that are empty, are left out; a text ends before its
// first character 0; half a surrogate pair becomes U+FFFD.
std::vector<uint8_t> WriteImageFile(ImageFileFormat format, const FileProperties& properties, PixelSource& source);

// Writes the file at a path. IFF_ByExtension chooses by the path: .png, .pgm (raw) or .ppm (raw), any case. An older
// file of that name stays as it was unless the new one is complete: "IImageFile::SaveToFile: failed to write file."
void SaveImageFile(WideStringView path, ImageFileFormat format, const FileProperties& properties, PixelSource& source);

// Whether a text may be kept under this keyword: 1 to 79 printable Latin-1 characters (32..126, 161..255), without
// leading, trailing or double blanks.
bool IsFileKeyword(WideStringView keyword) noexcept;

// For readers that know the size of the image; see SampleLimit::Require().
inline void RequireWithin(const SampleLimit& limit, int32_t width, int32_t height, int32_t bands) {
    limit.Require(width, height, bands, "IImageVPAEx::CreateFromFile", DISP_E_EXCEPTION);
}

}  // namespace orlix
