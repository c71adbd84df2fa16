#include "image/pixel_buffer.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <span>

namespace orlix {
namespace {

// Through the size from which on blocks are large.
TEST(PixelBuffer, GrowsAlignedWithItsBytesAndZeros) {
    PixelBuffer buffer;
    uint8_t last = 0;
    for (const size_t size : {size_t{1}, kLargeBlock - 1, kLargeBlock, kLargeBlock + 100, 3 * kLargeBlock}) {
        const size_t before = buffer.size();
        buffer.Resize(size);
        const std::span bytes(buffer.data(), size);
        EXPECT_EQ(0u, reinterpret_cast<uintptr_t>(bytes.data()) % (size < kLargeBlock ? 64 : kLargeBlockAlignment));
        EXPECT_EQ(static_cast<ptrdiff_t>(before), std::ranges::count(bytes.first(before), last));
        EXPECT_EQ(static_cast<ptrdiff_t>(size - before), std::ranges::count(bytes.subspan(before), 0));
        std::ranges::fill(bytes, ++last);
    }
    PixelBuffer other;
    for (const size_t tooLarge : {std::numeric_limits<size_t>::max(), std::numeric_limits<size_t>::max() / 2 + 1})
        EXPECT_THROW(buffer.Resize(tooLarge), std::bad_alloc);
    other = std::move(buffer);
    EXPECT_EQ(3 * kLargeBlock, other.size());
    EXPECT_EQ(last, other.data()[other.size() - 1]);
}

}  // namespace
}  // namespace orlix
