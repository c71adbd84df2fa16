// Structuring elements as operations on binary images use them: runs of offsets.
#pragma once

#include <orlix/orlix.h>

#include <cstdint>
#include <span>
#include <vector>

namespace orlix {

// The offsets (start, y) ... (stop, y).
struct ElementRun {
    int32_t y;
    int32_t start;
    int32_t stop;
    friend bool operator==(const ElementRun&, const ElementRun&) = default;
};

// Runs in order of y and start, apart from one another (a column lies between two of a row). Offsets that no two pixels
// of a bitmap of the given size have, |x| >= width or |y| >= height, are left out: they reach outside from every pixel.
using ElementRuns = std::vector<ElementRun>;

// Any list of offsets, in any order, with duplicates. std::bad_alloc.
ElementRuns RunsOf(std::span<const SElement> elements, int32_t width, int32_t height);

// The offsets with sqrt(x^2 + y^2) <= radius, the root rounded to double; (0, 0) alone for NaN and negative radii.
ElementRuns RunsOfDisk(double radius, int32_t width, int32_t height);

// Every offset with its signs changed.
ElementRuns Reflected(const ElementRuns& runs);

}  // namespace orlix
