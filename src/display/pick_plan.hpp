// The columns that a drawing picks from every row, computed once for all rows.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace orlix {

// Neighbouring columns that a kernel picks at once from a window of samples of a row.
struct PickShape {
    size_t group;  // a power of two up to kPickBlock
    int32_t window;
    bool operator==(const PickShape&) const = default;
};
inline constexpr PickShape kUngrouped = {0, 0};

inline constexpr size_t kPickBlock = 64;

// A plan as the kernels use it. Notes:
//  (1) The columns are non-decreasing or non-increasing.
//  (2) Unless ungrouped, group number g, columns g group .. (g + 1) group - 1, lies within `window` samples that begin
//      at bases[g] and lie inside the row. Shuffles give the positions: 0x80VVVVVV, V the distance from the base. They
//      and the bases continue up to a multiple of kPickBlock columns as if the last column were repeated. Shuffles are
//      aligned to 64 bytes.
struct Picks {
    const int32_t* columns;
    size_t n;
    PickShape shape;
    const int32_t* bases;
    const uint32_t* shuffles;
};

class PickPlan {
public:
    // For rows of rowLength samples. Uses the first of the shapes that all columns are close enough for, or none.
    PickPlan(std::vector<int32_t> columns, int32_t rowLength, std::span<const PickShape> shapes);

    // Valid while the plan lives.
    Picks picks() const;

private:
    struct alignas(64) Block {
        uint32_t shuffles[kPickBlock];
    };

    bool Group(int32_t rowLength, const PickShape& shape);

    std::vector<int32_t> columns_;
    PickShape shape_ = kUngrouped;
    std::vector<int32_t> bases_;
    std::vector<Block> blocks_;
};

}  // namespace orlix
