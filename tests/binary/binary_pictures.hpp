// Bitmaps and regions for tests of operations on binary images.
#pragma once

#include <cstddef>
#include <cstdint>
#include <random>
#include <vector>

#include "binary/bitmap_store.hpp"
#include "geometry/foreign_region.hpp"
#include "geometry/region_rows.hpp"

namespace orlix {

// What the bits beyond the width hold.
enum class Padding { Clear, Set, Noise };

// Pixels set with the given probability; no row is marked.
inline BitmapStore NoiseBitmap(int32_t width, int32_t height, double density, Padding padding, uint32_t seed = 1) {
    BitmapStore store;
    store.Create(width, height, true);
    std::mt19937 random(seed);
    const auto bound = static_cast<uint64_t>(density * 4294967296.0);
    for (int32_t y = 0; y < height; ++y) {
        uint8_t* row = store.WriteRow(y);
        for (int32_t x = 0; x < 8 * store.rowBytes(); ++x) {
            const bool noise = random() < bound;
            if (x < width ? noise : padding == Padding::Set || (padding == Padding::Noise && noise))
                row[x / 8] = static_cast<uint8_t>(row[x / 8] | BitmapStore::MaskOf(x));
        }
        store.ClearModified(y);
    }
    return store;
}

// Row by row.
inline std::vector<bool> PixelsOf(const BitmapStore& store) {
    std::vector<bool> pixels;
    for (int32_t y = 0; y < store.height(); ++y)
        for (int32_t x = 0; x < store.width(); ++x) pixels.push_back(store.Bit(x, y));
    return pixels;
}

// Calls visit(region, inside) for the whole bitmap and for regions with several runs a row, single pixels, and rows
// without any; inside tells for each pixel whether it belongs to the region.
template <class Visit>
void ForEachRegion(int32_t width, int32_t height, const Visit& visit) {
    std::mt19937 random(static_cast<uint32_t>(width * 1000 + height));
    for (int kind = 0; kind < 3; ++kind) {
        ForeignRegion foreign;
        foreign.box = {0, kind, width - 1, height - 1};
        for (int32_t y = kind; y < height; ++y)
            for (int32_t x = static_cast<int32_t>(random() % 9); x < width && (kind != 2 || y % 3 != 0);) {
                const auto stop = x + static_cast<int32_t>(random() % (kind == 1 ? 70 : 3));
                foreign.rows[y].push_back(MakeRun(x, stop));
                x = stop + 2 + static_cast<int32_t>(random() % 30);
            }
        const RegionRows region(kind == 0 ? nullptr : &foreign, width, height);
        std::vector<bool> inside(static_cast<size_t>(width) * static_cast<size_t>(height));
        for (int32_t y = region.top(); y <= region.bottom(); ++y)
            for (const Run run : region.row(y))
                for (int32_t x = run.start; x <= run.stop; ++x) inside[static_cast<size_t>(y * width + x)] = true;
        visit(region, inside);
    }
}

}  // namespace orlix
