// Erosion, dilation, opening and closing of binary images.
//
// With a structuring element B (offsets), on the pixels D of the bitmap, of which X are set:
//
//     dilation   {p in D : p - b is in X for some b of B}
//     erosion    {p in D : p + b is in X or outside D for all b of B}
//     opening    the erosion, then the dilation
//     closing    the dilation, then the erosion
//
// Pixels outside the bitmap do not take part: an erosion removes no pixel because of them, and a dilation adds none. So
// erosion and dilation are adjoint, opening and closing are idempotent, an opening only removes and a closing only adds
// pixels, up to the edges of the bitmap.
//
// `from` has the size of `to` and may lie in its memory in any way; the result is as if it had been copied before, and
// is computed from all pixels of `from`. The pixels of the region take it; all others of `to` stay. Rows that the
// region has are marked. When memory runs out (std::bad_alloc), nothing has been changed.
//
// Cost, with the time T of copying the bits once: 3x3 less than 2 T, in place; a rectangle 5 T, the largest 10 T;
// a disk some 5 T for each different length of its rows, up to kMostRectangles of them, and then a few nanoseconds a
// pixel at any size; another element about T for each run.
#pragma once

#include <orlix/orlix.h>

#include <cstdint>
#include <span>

#include "binary/bit_plane.hpp"
#include "binary/connectivity.hpp"
#include "binary/element_runs.hpp"

namespace orlix {

enum class Morphology : uint8_t { Erosion, Dilation, Opening, Closing };

// The element is the pixel with its eight neighbours, or with its four, applied `times` times: an opening is so many
// erosions and then so many dilations. That is a square of 2 * times + 1 pixels, or a diamond. times <= 0 copies; more
// than width + height times change nothing further.
void ApplySquare(const BitRows& from, Morphology operation, Connectivity neighbours, int32_t times, BitmapStore& to,
                 const RegionRows& region);

// The element of width >= 1 by height >= 1 pixels: columns -(width - 1) / 2 ... width / 2 and rows alike, the quotients
// rounded down. (A dilation uses the reflected window by its definition, so opening and closing move nothing.)
void ApplyRectangle(const BitRows& from, Morphology operation, int32_t width, int32_t height, BitmapStore& to,
                    const RegionRows& region);

// The element of IStructuringElement::CreateDisk, for any radius of at least 0.
void ApplyDisk(const BitRows& from, Morphology operation, double radius, BitmapStore& to, const RegionRows& region);

// Any offsets, in any order, duplicates included. Without offsets, the erosion is everything and the dilation nothing.
// MethodFailure("the structuring element has too many runs for a bitmap of this size.") when the words of the bitmap,
// times the rows that its runs take for each row (one for each run; some more for different ones of several pixels),
// are more than kMostElementWork, which takes ten seconds; disks and what resembles them are exempt.
constexpr double kMostElementWork = 3e10;
void ApplyElement(const BitRows& from, Morphology operation, std::span<const SElement> elements, BitmapStore& to,
                  const RegionRows& region);

// An element like a disk is taken apart into rectangles, one for each different length of its rows. One of more than
// these is measured from the set pixels instead (morphology_sweep.hpp).
constexpr size_t kMostRectangles = 120;

// The dilation (or else erosion) of a plane by runs that RunsOf or RunsOfDisk made for its size.
BitPlane Dilated(const BitPlane& plane, const ElementRuns& runs);
BitPlane Eroded(const BitPlane& plane, const ElementRuns& runs);

// Every pixel inverted.
BitPlane Complement(BitPlane plane);

}  // namespace orlix
