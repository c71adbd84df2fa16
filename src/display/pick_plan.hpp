// The columns that a drawing takes from every row, worked out once for all rows.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace orlix {

// Neighbouring columns that a vector takes from so many samples of a row. The kernel can do with any power of two times least, up
// to most.
struct PickShape {
    size_t group = 0;  // a power of two up to kPickBlock; 0: none
    int32_t least = 0, most = 0;
};

inline constexpr size_t kPickBlock = 64;

// What kernels see of a plan. Notes:
//  (1) The columns do not decrease, or do not increase.
//  (2) Unless window is 0, columns group g .. group g + group - 1 lie within window samples of a row that begin at bases[g]
//      and lie inside the row. Shuffles tell where: 0x80VVVVVV, V the distance from the base. They and the bases go on
//      up to a multiple of kPickBlock columns as if the last column was repeated. Shuffles are aligned to 64 bytes.
struct Picks {
    const int32_t* columns;
    size_t n;
    int32_t window;
    const int32_t* bases;
    const uint32_t* shuffles;
};

class PickPlan {
public:
    // For rows of so many samples. Columns that lie too far apart for the shape are left ungrouped, all of them.
    PickPlan(std::vector<int32_t> columns, int32_t rowLength, const PickShape& shape);

    Picks picks() const;

private:
    struct alignas(64) Block {
        uint32_t shuffles[kPickBlock];
    };

    bool Group(int32_t rowLength, size_t group, int32_t window);

    std::vector<int32_t> columns_;
    int32_t window_ = 0;
    std::vector<int32_t> bases_;
    std::vector<Block> blocks_;
};

}  // namespace orlix
