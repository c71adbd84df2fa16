// The entries of a directory in the form of TIFF files, which JPEG files have, too (Exif): what is said about an image,
// at full precision and without limits of a library. Pixels are the business of libtiff.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "text/wide_string.hpp"

namespace orlix {

namespace tiff {

// Tags.
inline constexpr uint16_t kImageDescription = 270, kXResolution = 282, kYResolution = 283, kResolutionUnit = 296;
// Units of resolution.
inline constexpr uint16_t kNoUnit = 1, kInch = 2, kCentimetre = 3;
// Types of values.
inline constexpr uint16_t kAscii = 2, kShort = 3, kLong = 4, kRational = 5, kUndefined = 7, kFloat = 11, kDouble = 12;

}  // namespace tiff

// A positive number of at most 2^32 as files have it; the best one with a power of ten below, nine digits or so.
struct TiffRational {
    uint32_t numerator = 0, denominator = 1;
};
TiffRational RationalOf(double value);

class TiffDirectory {
public:
    // A directory of the file, whose bytes must outlive it: the first one, or the one at an offset. It is empty where
    // there is none.
    explicit TiffDirectory(std::span<const uint8_t> file);
    TiffDirectory(std::span<const uint8_t> file, uint64_t offset);

    // The bytes of a value, as the file has them; nothing if there is no such entry of this type (and, for texts and
    // undefined bytes, of any length), or if its bytes are not all in the file.
    std::span<const uint8_t> Find(uint16_t tag, uint16_t type) const;

    // A single number of an unsigned or floating-point type. There is none in a rational with the denominator 0.
    std::optional<double> Number(uint16_t tag) const;
    // A text before its first 0. UTF-8 where it is well-formed, otherwise Latin-1. Empty if there is none.
    WideString Text(uint16_t tag) const;

private:
    struct Entry {
        uint16_t type = 0;
        std::span<const uint8_t> value;
    };
    std::optional<Entry> FindAny(uint16_t tag) const;
    bool ReadHeader();
    void FindEntries(uint64_t offset);
    uint64_t Unsigned(size_t at, size_t size) const;
    uint64_t Unsigned(std::span<const uint8_t> value) const;

    std::span<const uint8_t> file_;
    bool bigEndian_ = false;
    bool large_ = false;  // BigTIFF: offsets and counts of 64 bits
    size_t entries_ = 0;  // where they start
    size_t count_ = 0;    // all of them are in the file
};

}  // namespace orlix
