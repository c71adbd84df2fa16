// What readers and writers of image files take and give.
#pragma once

#include <orlix/orlix.h>

#include <cstdint>
#include <optional>
#include <vector>

#include "files/image_settings.hpp"
#include "files/sample_limit.hpp"
#include "image/image_store.hpp"
#include "text/wide_string.hpp"

namespace orlix {

// Whether a text may be kept under this keyword by every format that keeps texts: 1 to 79 printable Latin-1 characters
// (32..126, 161..255), without leading, trailing or double blanks.
bool IsFileKeyword(WideStringView keyword) noexcept;

// An image file but for its pixels.
struct FileProperties {
    int32_t width = 0, height = 0;  // from a reader: 1 .. 2^31 - 1 each
    int32_t bands = 0;              // from a reader: 1 or more
    LONG dataType = DT_BYTE;        // of a sample; from a reader: one that OrlixImage creates

    // Whatever else the file keeps.
    ImageProperties kept;
    std::optional<TCoordinateMap> coordinates;
    std::optional<ImageSettings> settings;  // of dataType and of this number of bands
};

// Takes the pixels of a reader.
class PixelSink {
public:
    virtual ~PixelSink() = default;

    // Called once, before any row. Allocates; may throw. What depends on the pixels, the number of significant bits,
    // is known only when the reader returns.
    virtual void Begin(const FileProperties& properties) = 0;

    // Memory for the `width` samples of a row: uint8_t, uint16_t, uint32_t or float, by the type of the file, in the
    // machine's byte order. Readers ask for rows in any order, and for the same row again (interlaced files fill it in
    // several passes), so this is the final place of the samples and keeps them. Every sample is written.
    virtual void* Row(int32_t band, int32_t y) = 0;
};

// Gives the pixels to a writer.
class PixelSource {
public:
    virtual ~PixelSource() = default;

    // The samples of a row, laid out as above; read before the next call. A writer may ask for a row more than once.
    virtual const void* Row(int32_t band, int32_t y) = 0;
};

// properties.kept.significantBits if every sample keeps to them, otherwise all bits of the type. For 8 and 16 bits.
int32_t BitsInUse(const FileProperties& properties, PixelSource& source);

struct ReadOptions {
    SampleLimit limit;
    int32_t page = 0;       // readers of formats with one page are asked for page 0 only
    bool anyBitmap = true;  // BMP files of any kind; otherwise of 8 bits, uncompressed
};

struct WriteOptions {
    int32_t quality = 90;  // of formats with losses: 1 .. 100
};

// For readers, as soon as they know the size of the image; see SampleLimit::Require().
inline void RequireWithin(const SampleLimit& limit, int32_t width, int32_t height, int32_t bands) {
    limit.Require(width, height, bands, "IImageVPAEx::CreateFromFile", DISP_E_EXCEPTION);
}

}  // namespace orlix
