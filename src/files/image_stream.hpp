// The stream form of an image: everything needed to rebuild it exactly. Numbers are little-endian and have 4 bytes
// unless stated otherwise. Doubles are IEEE 754. A string is the number of its UTF-16 units, then the units.
//
//   header   "qelo", double 1.0, pixel type code
//   record   "imba", double 1.3
//            coordinate map: OrgX OrgY A11 A12 A21 A22 (doubles)
//            bands, width, height, bytes per sample, row stride, size of the pixels (bands * height * stride)
//            N = max(width, height) + 400, then the offset table with its margins: N times XEntry, YEntry
//            L, then L bytes: the pixels as in memory, padding included, as one zlib stream
//            description (length 0 for none and for an empty one; read as none)
//            luminance range: lower, upper, one sample each
//            band to process, number of bins
//            display range: lower, upper, one sample each
//            band to display, 256 palette entries of 4 bytes, display setting: 4 bytes and 3 doubles
//            T, then T text entries: double 1.0, keyword, text
//            Z, then Z binary entries: double 1.0, keyword, number of bytes, bytes
//
// If the size of a pixel is known, the first binary entry holds it in microns: keyword "MicronsPerPixel", 16 bytes, x
// and y as doubles. If the number of significant bits is known, the next one holds that: "SignificantBits".
#pragma once

#include <orlix/orlix.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "files/image_settings.hpp"
#include "files/sample_limit.hpp"
#include "image/image_store.hpp"
#include "platform/file_io.hpp"

namespace orlix {

// ------------------------------------------------------------------------------------------------------------- writing

// A stream in the pieces in which it is written. They are copies: nothing in them refers to the image.
struct StreamBytes {
    std::vector<uint8_t> head;  // up to and including L
    FileContent pixels;
    std::vector<uint8_t> tail;

    std::array<std::span<const uint8_t>, 3> pieces() const { return {head, pixels.bytes(), tail}; }
};

// The pixels of the content must be readable. "IPersistStreamInit::Save: the image is too large for a stream." if they
// take 2^32 bytes or more, compressed or not.
StreamBytes WriteImageStream(LONG dataType, const ImageContent& content, const ImageSettings& settings);

// An upper bound of the size of WriteImageStream()'s stream: exact but for the compressed pixels, which count with the
// size of their buffer, ceil(1.001 size) + 12 bytes.
uint64_t LargestImageStream(LONG dataType, const ImageContent& content, const ImageSettings& settings);

// ------------------------------------------------------------------------------------------------------------- reading

class ByteSource {
public:
    virtual ~ByteSource() = default;
    // Reads at least one and at most `size` bytes and returns their number; 0 at the end. Exceptions reach the caller
    // of ReadImageStream().
    virtual size_t Read(uint8_t* bytes, size_t size) = 0;
};

struct StreamImage {
    LONG dataType = 0;
    ImageContent content;
    ImageSettings settings;
};

// Reads up to the end of the record and no byte beyond it. No number of the stream is trusted. Memory grows with the
// bytes that have arrived: at most twice as much, plus 64 KiB. Pixels are allocated once enough compressed bytes have
// arrived to hold them. Sizes that follow from others must agree with them, and the table must be that of the geometry
// (entries without meaning are ignored). Failures:
//   "IPersistStreamInit::Load: not an image stream."               the first four bytes
//   "IPersistStreamInit::Load: version compatibility problems."    of the header, the record or an entry
//   FailedResult(E_FAIL)                                           a type that OrlixImage does not create, or no "imba"
//   "IPersistStreamInit::Load: the stream ends early."
//   "IPersistStreamInit::Load: the stream is damaged."
//   "IPersistStreamInit::Load: the image has N samples, more than the limit of M.", see SampleLimit
StreamImage ReadImageStream(ByteSource& source, const SampleLimit& limit = {});

}  // namespace orlix
