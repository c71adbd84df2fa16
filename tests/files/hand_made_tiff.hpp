// TIFF files built from the format's definition, slowly and without libtiff.
#pragma once

#include <functional>

#include "files/hand_made.hpp"

namespace orlix::test {

// An entry of a directory. The value is given in the file's byte order, see TiffNumbers.
struct TiffEntry {
    uint32_t tag, type, count;
    Bytes value;
};

// Numbers in the byte order of a file.
struct TiffNumbers {
    bool bigEndian = false;
    Bytes operator()(uint64_t value, int bytes) const;
};

enum TiffCompression : uint32_t { kTiffNone = 1, kTiffLzw = 5, kTiffDeflate = 8, kTiffPackBits = 32773 };

struct TiffPage {
    uint32_t width = 1, height = 1, bits = 8, samples = 1;
    uint32_t photometric = 1;  // 0 white is zero, 1 black is zero, 2 colour, 3 palette
    uint32_t format = 0;       // 1 unsigned, 2 signed, 3 floating point; 0: the entry is left out
    uint32_t compression = kTiffNone, predictor = 1;
    bool planar = false;
    bool reversedBits = false;               // fill order 2
    uint32_t rowsPerStrip = 0;               // 0: one strip
    uint32_t tileWidth = 0, tileHeight = 0;  // 0: strips
    std::vector<TiffEntry> more = {};        // replaces the entry of the same tag; count 0 removes it
    std::function<uint32_t(uint32_t x, uint32_t y, uint32_t sample)> value = [](uint32_t, uint32_t, uint32_t) {
        return 0u;
    };
};

struct TiffFile {
    TiffNumbers numbers = {};
    bool large = false;  // BigTIFF
    std::vector<TiffPage> pages = {{}};
};
Bytes MakeTiff(const TiffFile& file);

// One page, little-endian.
Bytes MakeTiff(const TiffPage& page);

Bytes LittleRational(uint32_t numerator, uint32_t denominator);
TiffEntry TiffAscii(uint32_t tag, std::string_view text);
TiffEntry TiffShort(uint32_t tag, uint32_t value);  // little-endian

}  // namespace orlix::test
