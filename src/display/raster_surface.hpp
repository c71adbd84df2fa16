// Draws pictures into 32-bit memory.
#pragma once

#include <cstddef>
#include <cstdint>

#include "display/view_geometry.hpp"

namespace orlix {

// Converts 0x00BBGGRR, the clients' colour format, to a pixel 0x00RRGGBB. The high byte is dropped.
constexpr uint32_t PixelOfColor(uint32_t color) {
    return (color & 0xff) << 16 | (color & 0xff00) | (color >> 16 & 0xff);
}

// The picture to draw: width x height pixels in memory that is not owned and must outlive the drawing. stride is the
// distance in bytes from a row to the row below it, and may be negative.
struct RasterPicture {
    enum class Layout : uint8_t {
        Levels,  // one byte per pixel, shown as colors[byte] (256 entries, 0x00RRGGBB, high byte ignored)
        Pixels,  // four bytes per pixel, aligned to four: 0x00RRGGBB
    };
    Layout layout;
    const uint8_t* samples;  // of the top row
    ptrdiff_t stride;
    int32_t width, height;
    const uint32_t* colors;
};

enum class Scaling : uint8_t {
    // Destination pixel i of n, counted from where the destination begins, shows source pixel floor((2 i + 1) s / (2
    // n)) of s, the one under its centre; likewise along both axes.
    Nearest,
    // Colours are averaged where the picture shrinks and interpolated where it grows, along each axis separately: every
    // channel is (sum of wy wx p + 2^23) / 2^24, rounded down, over the pixels and weights of SmoothAxis
    // (smooth_axis.hpp). Pixels outside the source rectangle do not count. At the size of the source the result equals
    // Nearest.
    Smooth,
};

// Memory of width x height pixels 0x00RRGGBB. stride is the distance in pixels from a row to the row below it, and may
// be negative. The surface only holds a pointer: the memory is the client's. All drawing is clipped to it.
class RasterSurface {
public:
    RasterSurface(uint32_t* pixels, ptrdiff_t stride, int32_t width, int32_t height);

    // A mirrored rectangle covers the same pixels as its Normalized() form.
    void Fill(const Rectangle& rectangle, uint32_t pixel);

    // Draws source into dest, mirrored where dest is (see Rectangle). The high byte of the pixels becomes 0. Nothing is
    // drawn when source does not lie inside the picture, when either rectangle is empty, or when dest is larger than
    // 2^32 along an axis. The memory needed is proportional to the visible columns, not to the picture.
    void Draw(const RasterPicture& picture, const Rectangle& source, const Rectangle& dest, Scaling scaling);

private:
    uint32_t* PixelAt(int64_t x, int64_t y) const {
        return pixels_ + static_cast<ptrdiff_t>(y) * stride_ + static_cast<ptrdiff_t>(x);
    }
    void DrawNearest(const RasterPicture& picture, const Rectangle& source, const Rectangle& dest,
                     const Rectangle& visible);
    void DrawSmooth(const RasterPicture& picture, const Rectangle& source, const Rectangle& dest,
                    const Rectangle& visible);

    uint32_t* pixels_;
    ptrdiff_t stride_;
    Rectangle bounds_;
};

}  // namespace orlix
