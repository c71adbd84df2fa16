#include "blobs/labelling.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "blobs/binary_sketches.hpp"
#include "geometry/foreign_region.hpp"

namespace orlix {
namespace {

// By flood fill, from the definition: components of the pixels that have the value, in raster order of their first
// pixels; -1 elsewhere. Components that reach the edge are left out if asked for.
std::vector<int> Flooded(const Sketch& sketch, bool value, Connectivity connectivity, bool withoutEdge) {
    std::vector<int> labels(sketch.pixels.size(), -1);
    int next = 0;
    for (int32_t y = 0; y < sketch.height; ++y)
        for (int32_t x = 0; x < sketch.width; ++x) {
            if (sketch.At(x, y) != value || labels[sketch.Index(x, y)] != -1) continue;
            std::vector<std::pair<int32_t, int32_t>> found{{x, y}};
            labels[sketch.Index(x, y)] = next;
            bool edge = false;
            for (size_t i = 0; i < found.size(); ++i) {
                const auto [u, v] = found[i];
                edge = edge || u == 0 || v == 0 || u == sketch.width - 1 || v == sketch.height - 1;
                for (int dy = -1; dy <= 1; ++dy)
                    for (int dx = -1; dx <= 1; ++dx) {
                        const int32_t p = u + dx, q = v + dy;
                        if ((dx != 0 && dy != 0 && connectivity == Connectivity::Four) || !sketch.Inside(p, q) ||
                            sketch.At(p, q) != value || labels[sketch.Index(p, q)] != -1)
                            continue;
                        labels[sketch.Index(p, q)] = next;
                        found.push_back({p, q});
                    }
            }
            if (withoutEdge && edge)
                for (const auto& [u, v] : found) labels[sketch.Index(u, v)] = -2;
            else
                ++next;
        }
    std::replace(labels.begin(), labels.end(), -2, -1);
    return labels;
}

std::vector<int> LabelImageOf(const Components& components) {
    std::vector<int> labels(static_cast<size_t>(components.width()) * static_cast<size_t>(components.height()), -1);
    for (const LabelledRun& run : components.runs())
        for (int32_t x = run.start; x <= run.stop; ++x)
            labels[static_cast<size_t>(run.row) * static_cast<size_t>(components.width()) + static_cast<size_t>(x)] =
                static_cast<int>(run.label);
    return labels;
}

// What Components promises about its arrays.
void ExpectInOrder(const Components& components) {
    size_t inRows = 0;
    for (int32_t y = 0; y < components.height(); ++y) {
        int32_t last = -2;
        for (const uint32_t i : components.row(y)) {
            const LabelledRun& run = components.runs()[i];
            ASSERT_EQ(y, run.row);
            ASSERT_GT(run.start, last);
            last = run.stop;
            ++inRows;
        }
    }
    EXPECT_EQ(components.runs().size(), inRows);
    for (uint32_t label = 0; label < components.count(); ++label) {
        ASSERT_FALSE(components.runs(label).empty());
        const LabelledRun* before = nullptr;
        for (const LabelledRun& run : components.runs(label)) {
            ASSERT_EQ(label, run.label);
            if (before) {
                ASSERT_TRUE(run.row == before->row ? run.start > before->stop + 1 : run.row == before->row + 1);
            }
            before = &run;
        }
    }
}

void ExpectAsFlooded(const Sketch& sketch) {
    for (const Connectivity connectivity : {Connectivity::Four, Connectivity::Eight}) {
        const Components blobs = Label(sketch.Table(), connectivity).blobs;
        const std::vector<int> labels = Flooded(sketch, true, connectivity, false);
        ASSERT_EQ(labels, LabelImageOf(blobs)) << sketch.Drawing();
        ExpectInOrder(blobs);
        for (int32_t y = 0; y < sketch.height; ++y)
            for (int32_t x = 0; x < sketch.width; ++x)
                ASSERT_EQ(labels[sketch.Index(x, y)], static_cast<int>(blobs.LabelAt(x, y)));

        const Holes tree = HolesOf(blobs);
        const std::vector<int> holes = Flooded(sketch, false, Dual(connectivity), true);
        ASSERT_EQ(holes, LabelImageOf(tree.holes)) << sketch.Drawing();
        ExpectInOrder(tree.holes);
        // A is around B if no path leads from B to the edge without A: B lies in a component of all pixels but A's that
        // does not reach the edge. The parent touches B as well.
        for (const bool blobsInside : {true, false}) {
            const std::vector<int>& inside = blobsInside ? labels : holes;
            const std::vector<int>& outside = blobsInside ? holes : labels;
            const std::vector<uint32_t>& parents = blobsInside ? tree.holeOfBlob : tree.blobOfHole;
            for (uint32_t i = 0; i < parents.size(); ++i) {
                const size_t first =
                    static_cast<size_t>(std::find(inside.begin(), inside.end(), static_cast<int>(i)) - inside.begin());
                std::set<int> touched;
                for (int32_t y = 0; y < sketch.height; ++y)
                    for (int32_t x = 0; x < sketch.width; ++x)
                        for (const auto& [dx, dy] : {std::pair{1, 0}, {-1, 0}, {0, 1}, {0, -1}})
                            if (inside[sketch.Index(x, y)] == static_cast<int>(i) && sketch.Inside(x + dx, y + dy))
                                touched.insert(outside[sketch.Index(x + dx, y + dy)]);
                touched.erase(-1);
                int expected = -1;
                for (const int parent : touched) {
                    Sketch wall = sketch;
                    for (size_t k = 0; k < outside.size(); ++k) wall.pixels[k] = outside[k] == parent;
                    const Connectivity around = blobsInside ? connectivity : Dual(connectivity);
                    if (Flooded(wall, false, around, true)[first] != -1) expected = parent;
                }
                ASSERT_EQ(expected, static_cast<int>(parents[i])) << sketch.Drawing();
            }
        }
    }
}

TEST(Labelling, EqualsFloodFillInEveryWidth) {
    std::mt19937 random(7);
    for (int32_t width = 1; width <= 70; ++width)
        for (const double density : {0.1, 0.45, 0.62, 0.9})
            ExpectAsFlooded(Sketch::Noise(width, 1 + static_cast<int32_t>(random() % 9), density, random));
}

TEST(Labelling, EqualsFloodFillOnStructuredImages) {
    for (const char* drawing :
         {// a spiral, a comb that joins at the end, rings in rings, diagonals, all, nothing
          "#########|........#|#######.#|#.....#.#|#.###.#.#|#.#...#.#|#.#####.#|#.......#|#########",
          "#.#.#.#.#|#.#.#.#.#|#.#.#.###|#.#.###..|#.###....|###......", "#.#.#.#.#|#########",
          "#########|#.......#|#.#####.#|#.#...#.#|#.#.#.#.#|#.#...#.#|#.#####.#|#.......#|#########",
          "#.......#|.#.....#.|..#...#..|...#.#...|....#....|...#.#...|..#...#..|.#.....#.|#.......#",
          "..#..|.#.#.|#...#|.#.#.|..#..", "###|###", "...|...", "#", "."})
        ExpectAsFlooded(Sketch::Of(drawing));
}

TEST(Labelling, RegionsLimitIt) {
    std::mt19937 random(3);
    for (int round = 0; round < 60; ++round) {
        const Sketch all = Sketch::Noise(1 + round, 1 + static_cast<int32_t>(random() % 12), 0.6, random);
        Sketch inside = all;  // the region's pixels, then what is set of them
        ForeignRegion region;
        region.box = {0, 0, all.width - 1, all.height - 1};
        std::fill(inside.pixels.begin(), inside.pixels.end(), false);
        for (int32_t y = 0; y < all.height; ++y)
            for (int32_t x = static_cast<int32_t>(random() % 5); x < all.width; x += 8) {
                const int32_t stop = x + static_cast<int32_t>(random() % 12);
                region.rows[y].push_back(MakeRun(x, stop));
                for (int32_t u = x; u <= std::min(stop, all.width - 1); ++u) inside.pixels[inside.Index(u, y)] = true;
            }
        const Labelling labelling = Label(all.Table(), Connectivity::Eight, RegionRows(&region, all.width, all.height));
        Sketch set = all;
        for (size_t i = 0; i < set.pixels.size(); ++i) set.pixels[i] = set.pixels[i] && inside.pixels[i];
        const std::vector<int> labels = Flooded(set, true, Connectivity::Eight, false);
        ASSERT_EQ(labels, LabelImageOf(labelling.blobs));
        std::vector<int64_t> contacts(labelling.blobs.count());
        for (int32_t y = 0; y < all.height; ++y)
            for (int32_t x = 0; x < all.width; ++x) {
                bool contact = false;
                for (const auto& [dx, dy] : {std::pair{1, 0}, {-1, 0}, {0, 1}, {0, -1}})
                    contact = contact || (all.Inside(x + dx, y + dy) && !inside.At(x + dx, y + dy));
                if (labels[set.Index(x, y)] >= 0 && contact) ++contacts[static_cast<size_t>(labels[set.Index(x, y)])];
            }
        if (inside.Count() < static_cast<int64_t>(inside.pixels.size())) {
            ASSERT_EQ(contacts, labelling.regionContacts);
        }
    }
}

}  // namespace
}  // namespace orlix
