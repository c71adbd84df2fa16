// The position of a picture on a drawing surface: which part of the image is shown, where, and the two maps between
// them.
#pragma once

#include <orlix/orlix.h>

#include <array>
#include <cstdint>
#include <optional>

#include "image/coordinate_map.hpp"

namespace orlix {

// Columns x .. x + width - 1, and rows likewise. 64 bits hold every sum of 32-bit coordinates. On a surface the width
// or the height may be negative: the picture is then mirrored; its first column lies at x and the others to the left of
// it.
struct Rectangle {
    int64_t x = 0, y = 0, width = 0, height = 0;
    int64_t right() const { return x + width; }
    int64_t bottom() const { return y + height; }
    bool empty() const { return width == 0 || height == 0; }
    bool operator==(const Rectangle&) const = default;
};

// The corners of a rectangle as reported to clients: values beyond 32 bits become the nearest 32-bit value.
RECT ToRect(const Rectangle& rectangle);

// The same pixels with sizes >= 0.
Rectangle Normalized(const Rectangle& rectangle);

// The area common to two rectangles, sizes >= 0; neither may be mirrored.
Rectangle Intersection(const Rectangle& a, const Rectangle& b);

struct PixelPoint {
    double x, y;
};
PixelPoint Apply(const TCoordinateMap& map, double x, double y);

// A rendered picture. Notes:
//  (1) Surface pixel X covers X .. X + 1, image pixel x covers x - 0.5 .. x + 0.5; the maps take edges to edges.
//  (2) toDest and toPixel are inverse to each other. A round trip moves a point by less than 1e-9 pixel while the image
//      size and the distance of the surface's origin, both in image pixels, stay below 2^20.
struct View {
    Rectangle source;  // inside the image, never empty once rendered
    Rectangle dest;    // never empty once rendered; mirrored like the requested rectangle
    TCoordinateMap toDest = kIdentityMap;
    TCoordinateMap toPixel = kIdentityMap;
};

// The part of the image that a zoom shows. A factor of 1.0 shows the whole image, and so does any smaller factor or
// NaN; otherwise it is width / factor by height / factor pixels about the centre, including both end pixels, moved into
// the image where it would extend beyond. A centre off the image counts as one at its edge, NaN as 0.
// width, height > 0.
Rectangle SourceRectangle(int32_t width, int32_t height, double factor, double centerX, double centerY);

// The source grown to the aspect of the destination, as far as the image permits: by one row above and one row below at
// a time (columns where the destination is relatively wider), as long as it does not become relatively taller (wider)
// than the destination. Quotients are compared in double. The time is logarithmic in the number of rows. source lies in
// the image; neither it nor dest is empty.
Rectangle GrownToAspect(const Rectangle& source, int32_t width, int32_t height, const Rectangle& dest);

enum class Placing { Centred, TopLeft };

// The largest rectangle of the source's aspect inside dest, mirrored as dest is. The shorter size is rounded half up,
// is at least one pixel, and is one more where that gives both bars the same number of pixels. TopLeft places it at
// (dest.x, dest.y). Neither rectangle is empty.
Rectangle Fitted(const Rectangle& source, const Rectangle& dest, Placing placing);

// The maps between a source and the surface rectangle that it fills: A11 = fw / sw, OrgX = fx - (sx - 0.5) A11, y
// likewise.
View ViewOf(const Rectangle& source, const Rectangle& fitted);

// Combines the steps above. nullopt for an empty destination or an image without pixels.
std::optional<View> MakeView(int32_t width, int32_t height, double factor, double centerX, double centerY,
                             const Rectangle& dest, Placing placing);

// One surface pixel per image pixel: pixel (sourceX, sourceY) lies where dest begins. Shows the part of dest that
// contains pixels of the image; nullopt when there is none.
std::optional<View> MakeUnscaledView(int32_t width, int32_t height, const Rectangle& dest, int32_t sourceX,
                                     int32_t sourceY);

// The parts of dest outside the fitted rectangle inside it: left, top, bottom, right. Disjoint; sizes >= 0, any may be
// empty.
std::array<Rectangle, 4> SurroundBands(const Rectangle& dest, const Rectangle& fitted);

}  // namespace orlix
