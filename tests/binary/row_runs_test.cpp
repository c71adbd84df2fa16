#include "binary/row_runs.hpp"

#include "binary/binary_pictures.hpp"
#include "support/testing.hpp"

namespace orlix {
namespace {

using RowOfRuns = std::vector<Run>;

RowOfRuns Copied(std::span<const Run> runs) { return {runs.begin(), runs.end()}; }

// Pixel by pixel.
RowOfRuns RunsOfRow(const BitmapStore& store, int32_t y) {
    RowOfRuns runs;
    for (int32_t x = 0; x < store.width(); ++x)
        if (store.Bit(x, y)) {
            if (x > 0 && store.Bit(x - 1, y))
                runs.back().stop = x;
            else
                runs.push_back({x, x});
        }
    return runs;
}

void ExpectRunsOf(const BitmapStore& store, const RunTable& table) {
    ASSERT_EQ(store.width(), table.width);
    ASSERT_EQ(store.height(), table.height);
    ASSERT_EQ(static_cast<size_t>(store.height()) + 1, table.ends.size());
    ASSERT_EQ(table.runs.size(), table.ends.back());
    for (int32_t y = 0; y < store.height(); ++y) ASSERT_EQ(RunsOfRow(store, y), Copied(table.row(y))) << y;
}

TEST(RowRuns, AreThoseOfEveryWidthPaddingAndRegion) {
    for (int32_t width = 1; width <= 140; ++width)
        for (const Padding padding : {Padding::Clear, Padding::Set, Padding::Noise})
            for (const double density : {0.0, 0.1, 0.5, 0.95, 1.0}) {
                BitmapStore store = NoiseBitmap(width, 3, density, padding, static_cast<uint32_t>(width));
                ExpectRunsOf(store, RunsOf(RowsOf(store)));
                ExpectRunsOf(store, RunsOf(BitPlane(RowsOf(store))));
                const RunTable table = RunsOf(store);
                ExpectRunsOf(store, table);
                if (width % 9 != 0 || padding != Padding::Noise) continue;
                ForEachRegion(width, 3, [&](const RegionRows& region, const BitPlane& inside) {
                    BitmapStore part = NoiseBitmap(width, 3, density, padding, static_cast<uint32_t>(width));
                    for (int32_t y = 0; y < 3; ++y)
                        for (int32_t x = 0; x < width; ++x)
                            if (!inside.bit(x, y)) part.SetBit(x, y, false);
                    ExpectRunsOf(part, Intersection(table, region));
                });
            }
}

TEST(RowRuns, KeptOnesAreTrueAfterAnyChange) {
    // Narrow rows, whose runs fit in, and noise, whose runs do not.
    for (const int32_t width : {1, 20, 3000})
        for (const double density : {0.002, 0.5}) {
            BitmapStore store = NoiseBitmap(width, 60, density, Padding::Noise);
            std::mt19937 random(5);
            for (int step = 0; step < 200; ++step) {
                const auto y = static_cast<int32_t>(random() % 60), x = static_cast<int32_t>(random()) & 0xfff;
                if (step % 50 == 49)
                    store.Fill(step % 100 == 99 ? 0xff : 0);
                else if (step % 50 == 30)
                    store = NoiseBitmap(width, 60, 0.3, Padding::Set, static_cast<uint32_t>(step));
                else
                    for (int32_t i = 0; i < 50; ++i) store.SetBit((x + 7 * i) % width, y, i % 5 != 0);
                ASSERT_EQ(RunsOfRow(store, y), Copied(store.RowRuns(y)));
                if (step % 20 == 0) ExpectRunsOf(store, RunsOf(store));
            }
        }
}

TEST(RowRuns, KeptOnesAreTrueWhenRowsGrowAgainAndAgain) {
    BitmapStore store;
    store.Create(200, 20, true);
    for (int32_t x = 0; x < 200; x += 2)  // 100 runs a row in the end, 101,000 found on the way: 13 times what is kept
        for (int32_t y = 0; y < 20; ++y) {
            store.SetBit(x, y, true);
            ASSERT_EQ(static_cast<size_t>(x) / 2 + 1, store.RowRuns(y).size());
            ASSERT_FALSE(store.Modified(y));
            if (x % 20 == 0) {
                ASSERT_EQ(RunsOfRow(store, (y + 7) % 20), Copied(store.RowRuns((y + 7) % 20)));
            }
        }
}

TEST(RowRuns, MarksAreTakenFromRowsThatNobodyMayWriteTo) {
    BitmapStore store = NoiseBitmap(50, 3, 0.3, Padding::Clear);
    store.Lend(1);
    store.SetBit(7, 2, true);
    for (int round = 0; round < 2; ++round) {
        RunsOf(store);
        EXPECT_FALSE(store.Modified(0));
        EXPECT_TRUE(store.Modified(1));
        EXPECT_FALSE(store.Modified(2));
        // Through an address that was handed out earlier.
        const_cast<uint8_t*>(store.Row(1))[0] ^= 0x5a;
        ExpectRunsOf(store, RunsOf(store));
    }
    store.Create(50, 3, false);
    RunsOf(store);
    EXPECT_FALSE(store.Modified(1));
}

}  // namespace
}  // namespace orlix
