// Outlines finer than the pixels: where the grey level between the centres of neighbouring pixels crosses a level.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "blobs/contour.hpp"
#include "numerics/plane.hpp"

namespace orlix {

// The contour of a component at a grey level (marching squares: W. E. Lorensen and H. E. Cline 1987, in the plane). The
// component says what is inside:
//
//  (1) Between each pixel p of the component and each of its 4 neighbours q outside, the outline has one vertex: on the
//      line between their centres, where linear interpolation of the grey levels g(p), g(q) gives the level, at
//          p + t (q - p),  t = (level - g(p)) / (g(q) - g(p)).
//      So the outline separates the same pixels as the bitmap, for any image.
//  (2) Where the level does not lie between the two (the bitmap was changed after the threshold), where a grey level is
//      not a number, and at the edge of the image, where there is no q, t is 1/2: the edge of the pixel.
//      `interpolated` counts the other vertices; if it is far below `vertices`, the outline is that of the bitmap and
//      not of the image.
//  (3) The order of the vertices is that of the pixels' edges (PixelPaths). In a square of four centres of which two
//      diagonal ones are inside, 8-connected components pass through and 4-connected ones do not, as in labelling.
struct LevelOutline {
    std::vector<std::vector<Point>> paths;  // the outer one first, clockwise; those of holes the other way
    int64_t vertices = 0;
    int64_t interpolated = 0;
};

// Calls visit(x, y, right, down) for each pixel edge of a path in turn: the pixel of the component on the edge's right,
// and the step from it to the pixel on the left.
template <class Visit>
void ForEachPixelEdge(std::span<const PixelPaths::Corner> path, const Visit& visit) {
    for (size_t i = 0; i < path.size(); ++i) {
        const PixelPaths::Corner &a = path[i], &b = path[(i + 1) % path.size()];
        if (a.y == b.y) {
            for (int32_t x = a.x; x < b.x; ++x) visit(x, a.y, 0, -1);
            for (int32_t x = a.x; x > b.x; --x) visit(x - 1, a.y - 1, 0, 1);
        } else {
            for (int32_t y = a.y; y < b.y; ++y) visit(a.x - 1, y, 1, 0);
            for (int32_t y = a.y; y > b.y; --y) visit(a.x, y - 1, -1, 0);
        }
    }
}

// greyAt(x, y): the grey level of a pixel of the image, as a double. width, height: of the image.
template <class GreyAt>
LevelOutline LevelOutlineOf(const PixelPaths& paths, int32_t width, int32_t height, double level,
                            const GreyAt& greyAt) {
    LevelOutline out;
    for (size_t i = 0; i < paths.count(); ++i) {
        std::vector<Point>& vertices = out.paths.emplace_back();
        ForEachPixelEdge(paths.path(i), [&](int32_t x, int32_t y, int32_t right, int32_t down) {
            const int32_t outsideX = x + right, outsideY = y + down;
            double t = 0.5;
            if (outsideX >= 0 && outsideX < width && outsideY >= 0 && outsideY < height) {
                const double inside = greyAt(x, y), outside = greyAt(outsideX, outsideY);
                const double crossing = (level - inside) / (outside - inside);
                if (crossing >= 0 && crossing <= 1) {
                    t = crossing;
                    ++out.interpolated;
                }
            }
            vertices.push_back({x + t * right, y + t * down});
        });
        out.vertices += static_cast<int64_t>(vertices.size());
    }
    return out;
}

// What the outline encloses, its holes left out, in the plane where a pixel is pixelWidth by pixelHeight.
//
// A polygon through points of a curve is smaller than what the curve encloses. The curvature of a closed curve adds up
// to 2 pi whatever its shape, so with the sum S of s^3 over the edges s of a path and their sum P, both in pixels, the
// means over a path are known:
//     area       gains pi S / (6 P) for the chords. A pixel is the mean of a square and not of a point, and grey levels
//                between two of them are not linear; both draw the level half way up an edge towards the centre of
//                curvature, for which a path gains 0.47 square pixels (from integrating over positions and directions).
//     perimeter  Linear interpolation places vertices up to 0.05 pixels to either side of the curve, which makes the
//                polygon 0.28 % longer than it. So the path is measured along the means (1 2 1) / 4 of neighbouring
//                vertices. That and the chords shorten it by 7 pi^2 S / (6 P^2), which it gains (S and P measured as
//                the perimeter is; exact for circles, too little for other shapes).
// A hole loses area instead. `area` and `perimeter` include the gains, the other figures are those of the polygon. On
// discs whose pixels are covered in part, with the level at one half: docs/accuracy.md.
struct LevelMeasurements {
    double area = 0;
    double perimeter = 0;         // of the outer path and the holes
    double equivalentRadius = 0;  // sqrt(area / pi)
    double circularity = 0;       // 4 pi area / perimeter^2
    double levelShare = 0;        // interpolated / vertices
    double xCentroid = 0;         // in pixels; NaN without area
    double yCentroid = 0;
    double xx = 0, xy = 0, yy = 0;  // central second moments over the area; NaN without area

    // The ellipse of these moments: full lengths; 0 without area. Angles are in degrees, from +x towards +y, at least 0
    // and below 180.
    double majorAxis = 0, minorAxis = 0, angle = 0;

    // Of the convex hull of the outer path: the largest distance of two vertices and the least width, and the
    // directions in which they are measured.
    double feretMaximum = 0, feretMaximumAngle = 0;
    double feretMinimum = 0, feretMinimumAngle = 0;
};
LevelMeasurements MeasureLevelOutline(const LevelOutline& outline, double pixelWidth, double pixelHeight);

}  // namespace orlix
