// Blobs and their holes, from the runs of a binary image.
#pragma once

#include <cstdint>
#include <vector>

#include "binary/components.hpp"
#include "binary/connectivity.hpp"
#include "binary/row_runs.hpp"
#include "geometry/region_rows.hpp"

namespace orlix {

// The foreground of an image.
struct Labelling {
    Components blobs;
    // Of each blob: pixels of which a neighbour (left, right, above or below) lies in the image and not in the region.
    // Empty when the region is the whole image.
    std::vector<int64_t> regionContacts;
};

// Pixels outside the region count as background. The region has the size of the table.
Labelling Label(const RunTable& table, Connectivity connectivity, const RegionRows& region);
Labelling Label(const RunTable& table, Connectivity connectivity);

// Holes: components of the background, in the connectivity that the blobs do not have, that do not reach the edge of
// the image. They form a tree with the blobs: each hole lies in one blob, and each blob in one hole or outside of all.
struct Holes {
    Components holes;
    std::vector<uint32_t> blobOfHole;  // the blob around each hole
    std::vector<uint32_t> holeOfBlob;  // the hole around each blob, or kNoLabel
};
Holes HolesOf(const Components& blobs);

}  // namespace orlix
