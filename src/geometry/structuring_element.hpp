// Lists of pixel offsets, and the bytes that they address in a bitmap's row.
#pragma once

#include <orlix/orlix.h>

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace orlix {

// The pixels (x, y) with sqrt(x^2 + y^2) <= radius, the root rounded to double, row by row from the top, each row from
// the left. radius > 0. "IStructuringElement::CreateDisk: the disk has more than 16777216 pixels."
constexpr int64_t kLargestDisk = int64_t{1} << 24;
std::vector<SElement> DiskElements(double radius);

// Columns -n..n of row y belong to the disk; -1 for none. |y| and the radius are less than 1.4 * 2^31.
int64_t DiskHalfWidth(int64_t y, double radius);

// Modulo 2^32.
void Reflect(std::span<SElement> elements);
void Translate(std::span<SElement> elements, LONG x, LONG y);

// Columns and rows of the outermost elements. Requires at least one element.
struct Extent {
    LONG left, top, right, bottom;
};
Extent ExtentOf(std::span<const SElement> elements);

// Elements as bytes with masks, for each position of the reference pixel in its byte, 0 the leftmost. See
// IStructuringElement::BinaryElements for the rule. Each list is built on first use.
class ByteLists {
public:
    // Must be called whenever the elements change.
    void Reset();

    // 0 <= bit <= 7. `elements` has fewer than 2^31 entries and is the same list on every call since Reset(). The
    // result is valid until the next Reset().
    std::vector<SElement>& At(int32_t bit, std::span<const SElement> elements);

private:
    void Sort(std::span<const SElement> elements);

    // The elements' indices by row, then column; empty when they are already in that order or its reverse.
    std::optional<std::vector<uint32_t>> inOrder_;
    std::array<std::optional<std::vector<SElement>>, 8> lists_;
};

}  // namespace orlix
