// Anything that looks at a pixel and its eight neighbours: a table with the result of each of the 512 neighbourhoods.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "binary/bit_plane.hpp"
#include "binary/connectivity.hpp"
#include "binary/element_runs.hpp"
#include "binary/plane_kernels.hpp"

namespace orlix {

// The index of a neighbourhood has a bit for each pixel in reading order, the first one the highest:
//
//     256 128  64
//      32  16   8
//       4   2   1
//
// Pixels outside the bitmap count as clear.
using NeighbourhoodTable = std::array<bool, 512>;

// A table as a program of choices ("if this pixel is set then this value, else that one") that is worked through for
// many pixels at once: its binary decision diagram (Bryant 1986), in which equal parts are kept once. Tables in use
// take 10 to 60 choices.
class NeighbourhoodProgram {
public:
    explicit NeighbourhoodProgram(const NeighbourhoodTable& table);

    // A row of `words` words from the rows above, at and below it; null for one outside. `to` is none of these. Bits
    // beyond the last pixel are left to the caller.
    void Apply(const uint64_t* above, const uint64_t* row, const uint64_t* below, uint64_t* to, size_t words) const;

    size_t choices() const { return choices_.size(); }

private:
    std::vector<TableChoice> choices_;
    uint16_t result_ = 0;  // the value that is the table's
    ChooseWordsFn choose_ = Choose(kChooseWords);
};

struct TablePasses {
    int32_t passes;  // how many times the table was applied
    bool stable;     // whether another pass would change nothing
};

// The plane after the table has been applied `times` times to all pixels at once, or fewer times when nothing changes
// any more: the pass that changes nothing is not counted. A pass visits the rows whose neighbourhood has changed in the
// pass before. When the plane is the same as two passes before, it goes back and forth for ever; then passes are
// counted to the end without being made, and stable is false. times <= 0 changes nothing.
//
// No pass begins after kMostTableWork choices of words, which take a second or two, whatever the client asks for;
// `passes` tells how many there were.
constexpr double kMostTableWork = 1e10;
TablePasses ApplyTable(BitPlane& plane, const NeighbourhoodTable& table, int32_t times);

// Hit or miss: the pixels p with p + b in X for all b of `hits`, and p + c not in X for all c of `misses`, offsets that
// lead out of the bitmap excepted. An empty list is met everywhere. The elements are those of the plane's size.
BitPlane HitOrMiss(const BitPlane& plane, const ElementRuns& hits, const ElementRuns& misses);

enum class Boundary : uint8_t {
    Inner,  // set pixels with a clear neighbour
    Outer,  // clear pixels with a set neighbour
};

// Neighbours are four or eight. (A boundary of four neighbours is eight-connected, and the other way round.) The edge
// of the bitmap is no boundary: an object that it cuts has none there.
BitPlane BoundaryOf(const BitPlane& plane, Boundary side, Connectivity neighbours);

}  // namespace orlix
