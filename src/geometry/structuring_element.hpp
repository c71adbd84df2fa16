// Lists of pixel offsets and their bytes in a bitmap's row.
#pragma once

#include <orlix/orlix.h>

#include <array>
#include <cstdint>
#include <span>
#include <vector>

namespace orlix {

// The pixels (x, y) with sqrt(x^2 + y^2) <= radius, the root rounded to double, from the top, each row from the left.
// radius > 0. FailedResult(E_FAIL) for 2^31 pixels and more.
std::vector<SElement> DiskElements(double radius);

// Elements as bytes with masks, for each place of the reference pixel in its byte, 0 the leftmost; the contract of
// IStructuringElement::BinaryElements has the rule.
using BinaryElements = std::array<std::vector<SElement>, 8>;
BinaryElements BytesOf(std::span<const SElement> elements);

}  // namespace orlix
