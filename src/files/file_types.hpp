// What readers and writers of image files take and give.
#pragma once

#include <orlix/orlix.h>

#include <cstdint>
#include <vector>

#include "files/sample_limit.hpp"
#include "text/wide_string.hpp"

namespace orlix {

// A text that a file keeps under a keyword, see IsFileKeyword(). A file may hold several texts under one keyword; their
// order is that of the file.
struct FileText {
    WideString keyword;
    WideString text;
};

// Whether a text may be kept under this keyword: 1 to 79 printable Latin-1 characters (32..126, 161..255), without
// leading, trailing or double blanks.
bool IsFileKeyword(WideStringView keyword) noexcept;

struct FileProperties {
    int32_t width = 0, height = 0;          // from a reader: 1 .. 2^31 - 1 each
    int32_t bands = 0;                      // from a reader: 1 or 3
    int32_t bits = 0;                       // of a sample; from a reader: 8 or 16
    double micronsX = 0.0, micronsY = 0.0;  // size of a pixel: both above 0, or both 0 if it is not known
    std::vector<FileText> texts;
};

// Takes the pixels of a reader.
class PixelSink {
public:
    virtual ~PixelSink() = default;

    // Called once, before any row, with all properties of the file, texts included. Allocates; may throw.
    virtual void Begin(const FileProperties& properties) = 0;

    // Memory for the `width` samples of a row: uint8_t for 8 bits, uint16_t in the machine's byte order for 16. Readers
    // ask for rows in any order, and for the same row again (interlaced files fill it in several passes), so this is
    // the final place of the samples and keeps them. Every sample is written once.
    virtual void* Row(int32_t band, int32_t y) = 0;
};

// Gives the pixels to a writer.
class PixelSource {
public:
    virtual ~PixelSource() = default;

    // The samples of a row, laid out as above; read before the next call. A writer may ask for a row more than once.
    virtual const void* Row(int32_t band, int32_t y) = 0;
};

// For readers, as soon as they know the size of the image; see SampleLimit::Require().
inline void RequireWithin(const SampleLimit& limit, int32_t width, int32_t height, int32_t bands) {
    limit.Require(width, height, bands, "IImageVPAEx::CreateFromFile", DISP_E_EXCEPTION);
}

}  // namespace orlix
