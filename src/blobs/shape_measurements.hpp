// Measurements of the shape of a component, from its runs.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <vector>

#include "binary/connectivity.hpp"
#include "blobs/contour.hpp"
#include "blobs/labelling.hpp"
#include "blobs/pixel_hull.hpp"
#include "blobs/skeleton_length.hpp"
#include "geometry/shape_region.hpp"
#include "numerics/plane.hpp"

namespace orlix {

// The lengths of a pixel's sides, > 0 and finite. Lengths, areas and angles are those of the plane (x sx, y sy);
// positions (of centroids, end points, centres) are in pixels, pixel centres at whole numbers. Angles are in degrees,
// from +x towards +y; those of axes are >= 0 and < 180.
struct PixelSize {
    double x = 1;
    double y = 1;
};

// What to measure: the sum of the groups wanted. The comments of ShapeMeasurements say what each group fills in; only
// that is computed.
enum ShapeGroup : uint32_t {
    SG_Size = 1,
    SG_Topology = 2,
    SG_FilledArea = 4,
    SG_Perimeter = 8,
    SG_CroftonPerimeter = 16,
    SG_Hull = 32,
    SG_Feret = 64,
    SG_OrientedBox = 128,
    SG_Ellipse = 256,
    SG_Moments = 512,
    SG_BorderContact = 1024,
    SG_InscribedCircle = 2048,
    SG_EnclosingCircle = 4096,
    SG_Skeleton = 8192,
    SG_All = 16383,
};

struct Caliper {
    double length = 0;
    double angle = 0;  // of the line from `from` to `to`
    Point from, to;
};

struct Circle {
    Point centre;
    double radius = 0;
};

struct OrientedBox {
    Point centre;
    double length = 0;  // of the longer sides
    double width = 0;
    double angle = 0;  // of the longer sides
};

struct MomentEllipse {
    double majorAxis = 0;  // full length
    double minorAxis = 0;
    double angle = 0;         // of the major axis; 0 if the axes are equal
    double eccentricity = 0;  // sqrt(1 - (minorAxis / majorAxis)^2)
};

// Two conventions occur. As an *area*, a component is the union of its pixels' squares, whose sides are sx and sy; its
// corners lie half-way between pixel centres. As a *set of points* it is its pixels' centres. Each definition says
// which one it takes. The figures in docs/accuracy.md tell how far each number is from that of the shape before it was
// digitised.
struct ShapeMeasurements {
    // SG_Size; with every other group as well.
    int64_t pixelCount = 0;       // the number N of pixels
    double area = 0;              // N sx sy
    double equivalentRadius = 0;  // of the disc of this area: sqrt(area / pi)
    Box box = {0, 0, -1, -1};     // first and last columns and rows, in pixels
    double extent = 0;            // N / ((columns of the box) (rows of the box)): at most 1, which is a full rectangle
    Point centroid;               // mean of the pixel centres: exact sums, each coordinate rounded once or twice

    // SG_Topology. A hole is a component of the background that lies in the blob: in the connectivity that the blob
    // does not have, and with the edge of the image (and whatever a region leaves out) as background.
    int64_t holes = 0;
    int64_t eulerNumber = 0;  // 1 - holes

    // SG_FilledArea: the area with all holes and what lies in them, that within the outer path of the pixels' edges.
    double filledArea = 0;

    // SG_Perimeter: of the outer border and of those of the holes, together. For each border, with the 8-connected
    // chain through the centres of the component's pixels along it (contour.hpp), of e steps across a side, d diagonal
    // steps and c corners (steps of which the one before differs, the first following the last):
    //   (0.980 e + 1.406 d - 0.091 c) s + 2 sqrt(2) s for the outer border, - 2 sqrt(2) s for a hole.
    // The coefficients are the unbiased ones of A. M. Vossepoel and A. W. M. Smeulders (1982) for straight borders of
    // random direction. The chain lies inside the border it was digitised from by (cos t) / 2 on average, where t is
    // the angle from the nearest of the two axes: (sqrt(2) / pi) s over all directions, and a parallel curve that far
    // outside is 2 pi times that longer (J. Steiner, 1840). (Half a pixel, pi s, makes discs of radius 10 too long by
    // 0.4 %.) s is the side of a pixel. Where sx and sy differ by more than 1 %, the coefficients do not hold and the
    // perimeter is NaN; otherwise s is sqrt(sx sy).
    double perimeter = 0;
    // 4 pi area / perimeter^2: 1 for a disc, less for any other shape. Where the perimeter is NaN, croftonPerimeter
    // stands for it. A blob of a few pixels may have more than 1; its border is not digitised well enough.
    double circularity = 0;

    // SG_CroftonPerimeter: of all borders together, from the mean number of crossings of lines in eight directions
    // (A. Cauchy, 1841; M. W. Crofton, 1868; J. Ohser and F. Muecklich, 2000; D. Legland, K. Kieu, M.-F. Devaux, 2007):
    //   pi sum(w_v d_v (N - C_v)) over v = (1,0), (0,1), (1,1), (-1,1), (2,1), (-2,1), (1,2), (-1,2),
    // where C_v counts the pixels p of the component for which p + v is one of it as well, d_v is the distance of
    // adjacent lines through pixel centres, sx sy / |v| with v measured in the plane, and w_v is the share of
    // directions that are nearest to v.
    double croftonPerimeter = 0;

    // SG_Hull: the convex hull of the area.
    double hullArea = 0;  // exact, but for the factor sx sy
    double hullPerimeter = 0;
    double solidity = 0;  // area / hullArea: at most 1, which is a convex area of pixels (a rectangle)

    // SG_Feret: of the convex hull of the area, by rotating calipers (M. I. Shamos, 1978) in whole numbers.
    Caliper feretMaximum;  // the two corners farthest apart; of several pairs the first found from the top left corner
    Caliper feretMinimum;  // of the narrowest parallel strip: from the foot on one side to the corner on the other
    double roundness = 0;  // 4 area / (pi feretMaximum^2)
    double compactness = 0;  // sqrt(4 area / pi) / feretMaximum (ISO 9276-6): the root of the roundness

    // SG_OrientedBox: the rectangle of least area around the area; one of its sides lies on a side of the hull
    // (H. Freeman and R. Shapira, 1975; G. Toussaint, 1983). Of equal ones the first found from the top left corner.
    OrientedBox orientedBox;

    // SG_Ellipse: the ellipse that has the second moments of the area: those of the pixel centres, and of a pixel about
    // its own centre, sx^2 / 12 and sy^2 / 12. Its centre is the centroid.
    MomentEllipse ellipse;
    double aspectRatio = 0;  // majorAxis / minorAxis

    // SG_Moments, of the set of points, each with the weight sx sy. Orders (p, q): x^p y^q.
    //   raw         sx sy sum((x sx)^p (y sy)^q), about pixel (0, 0):  00 10 01 20 11 02 30 21 12 03
    //   central     the same about the centroid:                       20 11 02 30 21 12 03
    //   normalised  central / area^(1 + (p + q) / 2)                   20 11 02 30 21 12 03
    //   hu          the seven invariants of M.-K. Hu (1962), which do not change when the plane is moved, turned or
    //               scaled; a reflection changes the sign of the seventh and no other
    // Sums are exact for any number of pixels. Raw moments are rounded once before they are scaled; central ones are
    // formed from sums about the pixel next to the centroid, so that nothing large cancels.
    std::array<double, 10> rawMoments = {};
    std::array<double, 7> centralMoments = {};
    std::array<double, 7> normalisedMoments = {};
    std::array<double, 7> huMoments = {};

    // SG_BorderContact.
    int64_t imageBorderPixels = 0;   // in the first or last row or column
    int64_t regionBorderPixels = 0;  // beside a pixel of the image that the region of the labelling leaves out

    // SG_InscribedCircle: the largest circle in the area about a pixel centre, corner or middle of a side; its radius
    // is the distance to the nearest point of another pixel's square (or of the edge of the image), exact but for the
    // last rounding if sx = sy. Of equal ones the topmost, then the leftmost. Takes time in proportion to the pixels.
    Circle inscribedCircle;

    // SG_EnclosingCircle: the smallest circle around the area (E. Welzl, 1991; by pivoting on the farthest corner,
    // B. Gaertner, 1999). No corner is outside by more than rounding, some 1e-15 of the radius.
    Circle enclosingCircle;

    // SG_Skeleton, of the component alone, thinned with eight neighbours whatever its connectivity (Skeleton in
    // binary/thinning.hpp): one pixel wide, around holes as well.
    //  (1) A pixel is linked to its neighbours, to a diagonal one only if no straight step leads half of the way there.
    //      Branches run between nodes, the pixels that have not two links. No step counts twice.
    //  (2) The length of a branch is that of the polyline of its pixels, each moved to the mean (1 2 1) / 4 with those
    //      before and after it four times over; its two nodes stay. This takes out the steps of the grid in every
    //      direction and for every size of pixels. A ring without nodes has no ends to stay.
    //  (3) Each end (one link) adds what is missing to the tip of the blob: the straight line from the pixel four links
    //      back goes on from the centre of the end to the edge of the area.
    //  (4) A skeleton of one pixel: the mean of the horizontal and the vertical chord through it.
    // Strips of any width and direction with square or round ends are measured from tip to tip, in square pixels with a
    // bias below half a pixel. A radius of curvature of r pixels costs 1 / r^2 of the length.
    double skeletonLength = 0;
    double meanWidth = 0;  // area / skeletonLength: of the rectangle of the same area and length
};

// Measures components one after the other; memory is used again. A measurement is linear in the runs (the convex hull
// and its followers too), except where stated; skeletons take time with the pixels of boxes (SkeletonRuler).
class ShapeMeasurer {
public:
    // Refers to the labelling.
    ShapeMeasurer(const Labelling& labelling, uint32_t groups, PixelSize pixel = {});

    // Fills in the fields of the groups; others stay. std::bad_alloc leaves some of them filled in.
    void Measure(uint32_t label, ShapeMeasurements& shape);

private:
    const Labelling& labelling_;
    uint32_t groups_;
    PixelSize pixel_;
    std::vector<uint32_t> rows_;  // the first run of each row of the component, and the number of runs
    PixelPaths paths_;
    Hull hull_;
    std::vector<uint32_t> distances_;
    SkeletonRuler skeleton_;
};

}  // namespace orlix
