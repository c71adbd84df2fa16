// The stream form of an image: everything needed to rebuild it exactly. Numbers are little-endian, of 4 bytes where
// nothing else is said; doubles are IEEE 754; a string is the number of its UTF-16 units, then the units.
//
//   header   "qelo", double 1.0, pixel type code
//   record   "imba", double 1.3
//            coordinate map: OrgX OrgY A11 A12 A21 A22 (doubles)
//            bands, width, height, bytes per sample, row stride, size of the pixels (bands * height * stride)
//            N = max(width, height) + 400, then the offset table with its margins: N times XEntry, YEntry
//            L, then L bytes: the pixels as they lie in memory, padding included, as one zlib stream
//            description (none and empty are both length 0, which is read as none)
//            luminance range: lower, upper, one sample each
//            band to process, number of bins
//            display range: lower, upper, one sample each
//            band to display, 256 palette entries of 4 bytes, display setting: 4 bytes and 3 doubles
//            T, then T text entries: double 1.0, keyword, text
//            Z, then Z binary entries: double 1.0, keyword, number of bytes, bytes
//
// The size of a pixel in microns, where it is known, is the first binary entry: keyword "MicronsPerPixel", 16 bytes: x
// and y as doubles.
#pragma once

#include <orlix/orlix.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "files/sample_limit.hpp"
#include "image/image_store.hpp"
#include "platform/file_io.hpp"

namespace orlix {

// What a stream keeps of an image beside its content. Ranges are values of the pixel type. A reader gives a band to
// process and a band to display that exist or are BI_AllBands, and a number of bins that the pixel type allows.
struct StreamSettings {
    double luminanceLower = 0;
    double luminanceUpper = 0;
    int32_t bandToProcess = 0;
    int32_t numberOfBins = 256;
    double displayLower = 0;
    double displayUpper = 0;
    int32_t bandToDisplay = 0;
    std::array<uint8_t, 1024> palette{};       // blue, green, red, reserved
    std::array<uint8_t, 28> displaySetting{};  // as in the stream
};

// ------------------------------------------------------------------------------------------------------------- writing

// A stream in the pieces in which it is to be written. Nothing in them refers to the image any more.
struct StreamBytes {
    std::vector<uint8_t> head;  // up to and including L
    FileContent pixels;
    std::vector<uint8_t> tail;

    std::array<std::span<const uint8_t>, 3> pieces() const { return {head, pixels.bytes(), tail}; }
};

// The content has pixels that may be read. "IPersistStreamInit::Save: the image is too large for a stream." where its
// pixels, compressed or not, take 2^32 bytes or more.
StreamBytes WriteImageStream(LONG dataType, const ImageContent& content, const StreamSettings& settings);

// At least what WriteImageStream() gives; only the compressed pixels can be smaller than counted here, whose buffer has
// ceil(1.001 size) + 12 bytes.
uint64_t LargestImageStream(LONG dataType, const ImageContent& content, const StreamSettings& settings);

// ------------------------------------------------------------------------------------------------------------- reading

class ByteSource {
public:
    virtual ~ByteSource() = default;
    // The next bytes, at least one and at most `size` of them; 0 at the end. Throws what the caller is to get.
    virtual size_t Read(uint8_t* bytes, size_t size) = 0;
};

struct StreamImage {
    LONG dataType = 0;
    ImageContent content;
    StreamSettings settings;
};

// Reads up to the end of the record, and no byte beyond it. No number of the stream is believed: memory grows with what
// has arrived (twice as much at most, and 64 KiB), pixels are allocated when so many compressed bytes have arrived that
// they can be that many, sizes that follow from others must be equal to what they follow from, and the table must be
// that of the geometry (entries without meaning are not looked at). Failures:
//   "IPersistStreamInit::Load: not an image stream."               the first four bytes
//   "IPersistStreamInit::Load: version compatibility problems."    of the header, the record or an entry
//   FailedResult(E_FAIL)                                           a type that OrlixImage does not create, or no "imba"
//   "IPersistStreamInit::Load: the stream ends early."
//   "IPersistStreamInit::Load: the stream is damaged."
//   "IPersistStreamInit::Load: the image has N samples, more than the limit of M.", see SampleLimit
StreamImage ReadImageStream(ByteSource& source, const SampleLimit& limit = {});

}  // namespace orlix
