// The pixel formats of camera frames.
#pragma once

#include <orlix/orlix.h>

#include <cstdint>

#include "frames/unpacking_kernels.hpp"

namespace orlix {

// How the samples of a frame lie in its rows. Bytes: one byte each. Packed: 10 to 16 bits each, see Packing. Triples:
// three bytes for a pixel. Planes: three planes of bytes, one after the other.
enum class FrameSamples : uint8_t { Bytes, Packed, Triples, Planes };

// The colour filters of the first two pixels in the first row of a mosaic. The second row begins with the filters that
// are missing: below RG lies GB, and so on.
enum class FilterOrder : uint8_t { None, RG, GB, GR, BG };

struct FrameFormat {
    FramePixelFormat code;
    FrameSamples samples;
    Packing packing;  // of Packed samples
    uint8_t bits;     // that count in a sample; more are dropped
    FilterOrder filters = FilterOrder::None;
};

// Null for a code that is none of FramePixelFormat.
const FrameFormat* FindFrameFormat(LONG code);

}  // namespace orlix
