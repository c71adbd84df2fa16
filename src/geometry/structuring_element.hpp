// Lists of pixel offsets and their bytes in a bitmap's row.
#pragma once

#include <orlix/orlix.h>

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace orlix {

// The pixels (x, y) with sqrt(x^2 + y^2) <= radius, the root rounded to double, from the top, each row from the left.
// radius > 0. "IStructuringElement::CreateDisk: the disk has more than 16777216 pixels."
constexpr int64_t kLargestDisk = int64_t{1} << 24;
std::vector<SElement> DiskElements(double radius);

// Modulo 2^32.
void Reflect(std::span<SElement> elements);
void Translate(std::span<SElement> elements, LONG x, LONG y);

// Columns and rows of the outermost elements. At least one element.
struct Extent {
    LONG left, top, right, bottom;
};
Extent ExtentOf(std::span<const SElement> elements);

// Elements as bytes with masks, for each place of the reference pixel in its byte, 0 the leftmost; the contract of
// IStructuringElement::BinaryElements has the rule. Each list is made when it is first asked for.
class ByteLists {
public:
    // To be called whenever the elements change.
    void Reset();

    // 0 <= bit <= 7; fewer than 2^31 elements, the same ones since Reset(). Stays until then.
    std::vector<SElement>& At(int32_t bit, std::span<const SElement> elements);

private:
    void Sort(std::span<const SElement> elements);

    // The elements' indices by row, then column; none where they are in that order, or its reverse, already.
    std::optional<std::vector<uint32_t>> inOrder_;
    std::array<std::optional<std::vector<SElement>>, 8> lists_;
};

}  // namespace orlix
