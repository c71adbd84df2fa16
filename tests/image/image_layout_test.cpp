#include "image/image_layout.hpp"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <vector>

#include "component/failure.hpp"
#include "image/pixel_view.hpp"

namespace orlix {
namespace {

constexpr int32_t kMaximum = std::numeric_limits<int32_t>::max();

TEST(BytesPerSample, RoundsUpToTheSizesOfMachineTypes) {
    const std::pair<LONG, int32_t> cases[] = {{DT_BYTE, 1},  {DT_WORD, 2}, {DT_DWORD, 4},  {DT_Float, 4}, {DT_Char, 1},
                                              {DT_Short, 2}, {DT_Long, 4}, {DT_Double, 8}, {9, 2},        {17, 4},
                                              {24, 4},       {33, 8},      {40, 8},        {64, 8}};
    for (const auto& [type, bytes] : cases) EXPECT_EQ(bytes, BytesPerSample(type)) << type;
    EXPECT_THROW(BytesPerSample(65), FailedResult);
    EXPECT_THROW(BytesPerSample(0x1ff), FailedResult);
}

TEST(MakeLayout, PadsRowsToFourBytes) {
    const ImageLayout layout = MakeLayout(5, 3, 2, DT_BYTE);
    EXPECT_EQ(8, layout.rowStride);
    EXPECT_EQ(24u, layout.bandSize);
    EXPECT_EQ(48u, layout.totalSize);
    EXPECT_EQ(8, MakeLayout(3, 1, 1, DT_WORD).rowStride);
    EXPECT_EQ(12, MakeLayout(3, 1, 1, DT_Float).rowStride);
}

TEST(MakeLayout, RefusesRowsThatStartBeyond32Bits) {
    EXPECT_THROW(MakeLayout(kMaximum, 2, 1, DT_BYTE), FailedResult);  // row 1 would start at 2^31
    EXPECT_THROW(MakeLayout(4, kMaximum / 4 + 2, 1, DT_BYTE), FailedResult);
    EXPECT_THROW(MakeLayout(kMaximum, kMaximum, kMaximum, DT_Double), FailedResult);
    EXPECT_EQ(1000000000u, MakeLayout(1000000000, 1, 1, DT_BYTE).totalSize);
}

TEST(MakeLayout, TakesWhatTheAddressSpaceHolds) {
    // 2^31 bytes: one more than half a 32-bit address space.
    if (sizeof(void*) == 4) {
        EXPECT_THROW(MakeLayout(kMaximum, 1, 1, DT_BYTE), FailedResult);
        EXPECT_THROW(MakeLayout(4, kMaximum / 4 + 1, 1, DT_BYTE), FailedResult);
        EXPECT_THROW(MakeLayout(1000, 1000, 3000, DT_BYTE), FailedResult);
    } else {
        EXPECT_EQ(int64_t{1} << 31, MakeLayout(kMaximum, 1, 1, DT_BYTE).rowStride);
        EXPECT_EQ(uint64_t{1} << 31, MakeLayout(4, kMaximum / 4 + 1, 1, DT_BYTE).totalSize);
        EXPECT_EQ(3000000000u, MakeLayout(1000, 1000, 3000, DT_BYTE).totalSize);
    }
}

// Walks from pixel to pixel and turns back at the edges: the mirror rule without arithmetic.
std::vector<LONG> Walk(int32_t length, int32_t steps, int32_t direction) {
    std::vector<LONG> visited;
    int32_t at = direction > 0 ? length - 1 : 0;
    for (int32_t i = 0; i < steps; ++i) {
        if (length > 1 && (at + direction < 0 || at + direction >= length)) direction = -direction;
        if (length > 1) at += direction;
        visited.push_back(at);
    }
    return visited;
}

TEST(OffsetTable, MirrorsOnBothAxesWithoutRepeatingTheEdge) {
    for (const auto& [width, height] : {std::pair{1, 1},
                                        {1, 7},
                                        {2, 1},
                                        {2, 2},
                                        {3, 500},
                                        {199, 200},
                                        {201, 202},
                                        {1000, 3},
                                        {30, 2999},
                                        {5000, 700}}) {
        SCOPED_TRACE(::testing::Message() << width << " x " << height);
        const ImageLayout layout = MakeLayout(width, height, 1, DT_WORD);
        const std::vector<VPAEntry> table = MakeOffsetTable(layout);
        ASSERT_EQ(static_cast<size_t>(std::max(width, height) + 400), table.size());
        const VPAEntry* const origin = table.data() + 200;
        const LONG stride = static_cast<LONG>(layout.rowStride / 2);
        for (LONG x = 0; x < width; ++x) ASSERT_EQ(x, origin[x].XEntry);
        for (LONG y = 0; y < height; ++y) ASSERT_EQ(y * stride, origin[y].YEntry);
        const auto left = Walk(width, 200, -1), right = Walk(width, 200, 1);
        const auto above = Walk(height, 200, -1), below = Walk(height, 200, 1);
        for (int i = 1; i <= 200; ++i) {
            const auto k = static_cast<size_t>(i - 1);
            ASSERT_EQ(left[k], origin[-i].XEntry) << i;
            ASSERT_EQ(right[k], origin[width - 1 + i].XEntry) << i;
            ASSERT_EQ(above[k] * stride, origin[-i].YEntry) << i;
            ASSERT_EQ(below[k] * stride, origin[height - 1 + i].YEntry) << i;
        }
    }
}

// Offsets that leave their steps at one index. Large steps wrap around, which no table of a real image does.
TEST(PixelView, FindsWhereRowsAndColumnsStopFollowingEachOther) {
    for (const int32_t step : {1, 7, 1 << 26, 3 << 25})
        for (const int32_t entries : {1, 2, 31, 32, 33, 34, 64, 65, 100})
            for (int32_t odd = 1; odd <= entries; ++odd) {
                std::vector<VPAEntry> table;
                for (int32_t i = 0; i < entries; ++i) {
                    const auto offset = static_cast<LONG>(uint32_t(i) * uint32_t(step) + (i >= odd));
                    table.push_back({offset, offset});
                }
                const int32_t last = step == 1 ? odd : std::min(odd, kMaximum / step + 1);
                EXPECT_EQ(std::min(last, entries),
                          PixelView<uint8_t>(nullptr, table.data(), step, entries).EndOfBlock(0, entries));
                if (step == 1) {
                    EXPECT_EQ(odd, PixelView<uint8_t>(nullptr, table.data(), entries, 1).AdjacentColumns());
                }
            }
}

}  // namespace
}  // namespace orlix
