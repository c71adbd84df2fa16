// Bitmaps, planes and regions for tests of operations on binary images.
#pragma once

#include "binary/bit_plane.hpp"
#include "binary/bitmap_store.hpp"
#include "binary/components.hpp"
#include "geometry/foreign_region.hpp"
#include "geometry/region_rows.hpp"
#include "support/slow_components.hpp"
#include "support/testing.hpp"

namespace orlix {

inline void PrintTo(const BitPlane& plane, std::ostream* out) {
    *out << plane.width() << " x " << plane.height();
    if (plane.width() > 200 || plane.height() > 200) return;
    for (int32_t y = 0; y < plane.height(); ++y) {
        *out << '\n';
        for (int32_t x = 0; x < plane.width(); ++x) *out << (plane.bit(x, y) ? '#' : '.');
    }
}

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
inline BitPlane NoisePlane(int32_t width, int32_t height, double density, uint32_t seed) {
    if (width == 0 || height == 0) return {};
    return BitPlane(RowsOf(NoiseBitmap(width, height, density, Padding::Clear, seed)));
}

// Rows of '#' and '.', separated by '|'.
inline BitPlane PlaneOf(std::string_view drawing) {
    const size_t width = std::min(drawing.find('|'), drawing.size());
    return EachPixel<BitPlane>(static_cast<int32_t>(width), static_cast<int32_t>((drawing.size() + 1) / (width + 1)),
                               [&](int32_t x, int32_t y) {
                                   return drawing[static_cast<size_t>(y) * (width + 1) + static_cast<size_t>(x)] == '#';
                               });
}

// Blobs with smooth outlines that touch: overlapping disks.
inline BitPlane DiskPlane(int32_t width, int32_t height, int disks, int32_t largest, uint32_t seed) {
    BitPlane plane(width, height);
    std::mt19937 random(seed);
    for (; disks > 0; --disks) {
        const auto cx = static_cast<int32_t>(random() % static_cast<uint32_t>(width));
        const auto cy = static_cast<int32_t>(random() % static_cast<uint32_t>(height));
        const auto r = static_cast<int32_t>(1 + random() % static_cast<uint32_t>(largest));
        for (int32_t y = std::max(0, cy - r); y <= std::min(height - 1, cy + r); ++y)
            for (int32_t x = std::max(0, cx - r); x <= std::min(width - 1, cx + r); ++x)
                if ((x - cx) * (x - cx) + (y - cy) * (y - cy) <= r * r) plane.setBit(x, y, true);
    }
    return plane;
}

// The pixels of one component.
inline BitPlane Alone(const Components& components, uint32_t label) {
    BitPlane plane(components.width(), components.height());
    for (const LabelledRun& run : components.runs(label)) SetRun(plane.row(run.row), {run.start, run.stop});
    return plane;
}

// Calls visit(plane) for every image of a size.
template <class Visit>
void ForEachPlaneOfSize(int32_t width, int32_t height, const Visit& visit) {
    for (uint32_t bits = 0; bits < uint32_t{1} << (width * height); ++bits)
        visit(EachPixel<BitPlane>(width, height,
                                  [&](int32_t x, int32_t y) { return (bits >> (y * width + x) & 1) != 0; }));
}

// Calls visit(plane) for noise and blobs of all widths 1..70.
template <class Visit>
void ForEachPlaneOfAnyWidth(const Visit& visit) {
    for (int32_t width = 1; width <= 70; ++width) {
        const auto seed = static_cast<uint32_t>(width);
        visit(NoisePlane(width, 1 + width % 5, 0.3, seed));
        visit(NoisePlane(width, 11, 0.6, seed));
        visit(NoisePlane(width, 9, 0.9, seed));
        visit(DiskPlane(width, 23, 1 + width / 5, 7, seed));
    }
    visit(BitPlane());
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
        BitPlane inside(width, height);
        for (int32_t y = region.top(); y <= region.bottom(); ++y)
            for (const Run run : region.row(y)) SetRun(inside.row(y), run);
        visit(region, inside);
    }
}

// apply(bitmap, region) gives the pixels of each region the values want(x, y, before), leaves all others, and marks the
// rows of the region.
template <class Apply, class Want>
void ExpectInRegions(int32_t width, int32_t height, const Apply& apply, const Want& want) {
    const BitmapStore before = NoiseBitmap(width, height, 0.5, Padding::Noise, 7);
    ForEachRegion(width, height, [&](const RegionRows& region, const BitPlane& inside) {
        BitmapStore bitmap = NoiseBitmap(width, height, 0.5, Padding::Noise, 7);
        apply(bitmap, region);
        for (int32_t y = 0; y < height; ++y) {
            EXPECT_EQ(!region.row(y).empty(), bitmap.Modified(y)) << width << " x " << height << ", row " << y;
            for (int32_t x = 0; x < width; ++x)
                ASSERT_EQ(inside.bit(x, y) ? want(x, y, before) : before.Bit(x, y), bitmap.Bit(x, y))
                    << width << " x " << height << ": " << x << ", " << y;
        }
    });
}

}  // namespace orlix
