// Frames as cameras deliver them, and what becomes of them.
#pragma once

#include <orlix/orlix.h>

#include <cstdint>
#include <span>

#include "frames/frame_formats.hpp"
#include "image/image_layout.hpp"

namespace orlix {

// Width and height are positive. Notes:
//  (1) rowPitch is the number of bytes from a row to the next, at least RowBytes(). With 0 the samples of all rows are
//      one stream: a row begins directly behind the last bit of the row before it, even within a byte or a group;
//  (2) planes follow one another directly, with height rows each;
//  (3) row 0 of the frame is the bottom of the image if bottomUp is set. The order of the colour filters is that of
//      rows 0 and 1 of the frame.
struct CameraFrame {
    FrameFormat format;
    int32_t width, height;
    uint64_t rowPitch;
    bool bottomUp;
    FrameMosaic mosaic;  // for formats with colour filters; else it does not matter
};

// Bytes of one row that begins in a new byte, and of the whole frame up to its last sample. Image() of the frame must
// have a layout (MakeLayout), which keeps all sizes within 64 bits.
uint64_t RowBytes(const CameraFrame& frame);
uint64_t FrameBytes(const CameraFrame& frame);

// The image that a frame becomes: three bands (red, green, blue) or one, DT_BYTE or DT_WORD.
int32_t BandsOfImage(const CameraFrame& frame);
LONG TypeOfImage(const CameraFrame& frame);

// Fills the samples of an image of that layout, row padding included (with zeros). bytes are FrameBytes() and do not
// overlap the samples. Samples are kept as numbers: those of 12 bits become 0..4095. Of a mosaic,
//     FM_Keep   keeps the samples;
//     FM_Grey   is (R + 2G + B) / 4 by binomial weights (1 2 1) along both axes, over 16 and rounded down: at each
//               pixel the weights of the filters add up to 1/4, 1/2 and 1/4, whichever lies under it, and the weights
//               are symmetric, so that nothing is displaced;
//     FM_Bands  is completed to three colours (mosaic_kernels.hpp).
// Border: the mosaic is mirrored without repeating the edge, which keeps the order of its filters. Memory is taken
// before the first sample is written.
void ConvertFrame(const CameraFrame& frame, std::span<const uint8_t> bytes, const ImageLayout& layout,
                  uint8_t* samples);

}  // namespace orlix
