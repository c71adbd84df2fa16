#include "blobs/labelling.hpp"

#include "binary/binary_pictures.hpp"

namespace orlix {
namespace {

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

// The outer component around an inner one touches it, and keeps each path of the inner one's kind from the edge.
void ExpectParents(const Components& inner, Connectivity kind, const Components& outer,
                   const std::vector<uint32_t>& parents) {
    std::vector<BitPlane> enclosed;
    for (uint32_t label = 0; label < outer.count(); ++label)
        enclosed.push_back(SlowClearBorder(Opposite(Alone(outer, label)), kind));
    ASSERT_EQ(inner.count(), parents.size());
    for (uint32_t label = 0; label < inner.count(); ++label) {
        uint32_t expected = kNoLabel;
        for (const LabelledRun& run : inner.runs(label))
            for (int32_t x = run.start; x <= run.stop; ++x)
                for (const auto& [dx, dy] : StepsOf(Connectivity::Four)) {
                    const uint32_t touched = outer.LabelAt(x + dx, run.row + dy);
                    if (touched != kNoLabel && enclosed[touched].bit(x, run.row)) expected = touched;
                }
        ASSERT_EQ(expected, parents[label]) << label;
    }
}

void ExpectAsDefined(const BitPlane& image) {
    SCOPED_TRACE(testing::PrintToString(image));
    for (const Connectivity connectivity : kConnectivities) {
        const Components blobs = Label(RunsOf(image), connectivity).blobs;
        const SlowComponents slow(image, connectivity);
        ASSERT_EQ(slow.label, LabelImageOf(blobs));
        ExpectInOrder(blobs);
        for (int32_t y = 0; y < image.height(); ++y)
            for (int32_t x = 0; x < image.width(); ++x) ASSERT_EQ(slow.At(x, y), static_cast<int>(blobs.LabelAt(x, y)));

        const Connectivity dual = Dual(connectivity);
        const Holes tree = HolesOf(blobs);
        ASSERT_EQ(SlowComponents(SlowClearBorder(Opposite(image), dual), dual).label, LabelImageOf(tree.holes));
        ExpectInOrder(tree.holes);
        ExpectParents(blobs, connectivity, tree.holes, tree.holeOfBlob);
        ExpectParents(tree.holes, dual, blobs, tree.blobOfHole);
    }
}

TEST(Labelling, EqualsItsSlowDefinition) {
    for (int32_t width = 1; width <= 70; ++width)
        for (const double density : {0.1, 0.45, 0.62, 0.9})
            ExpectAsDefined(NoisePlane(width, 1 + width % 9, density, static_cast<uint32_t>(width)));
    for (const char* drawing :
         {// a spiral, a comb that joins at the end, rings in rings, diagonals, all, nothing
          "#########|........#|#######.#|#.....#.#|#.###.#.#|#.#...#.#|#.#####.#|#.......#|#########",
          "#.#.#.#.#|#.#.#.#.#|#.#.#.###|#.#.###..|#.###....|###......", "#.#.#.#.#|#########",
          "#########|#.......#|#.#####.#|#.#...#.#|#.#.#.#.#|#.#...#.#|#.#####.#|#.......#|#########",
          "#.......#|.#.....#.|..#...#..|...#.#...|....#....|...#.#...|..#...#..|.#.....#.|#.......#",
          "..#..|.#.#.|#...#|.#.#.|..#..", "###|###", "...|...", "#", "."})
        ExpectAsDefined(PlaneOf(drawing));
}

TEST(Labelling, RegionsLimitIt) {
    for (int32_t width = 1; width <= 60; ++width) {
        const BitPlane all = NoisePlane(width, 1 + width % 12, 0.6, static_cast<uint32_t>(width));
        ForEachRegion(all.width(), all.height(), [&](const RegionRows& region, const BitPlane& inside) {
            const Labelling labelling = Label(RunsOf(all), Connectivity::Eight, region);
            const auto both = EachPixel<BitPlane>(
                all.width(), all.height(), [&](int32_t x, int32_t y) { return all.bit(x, y) && inside.bit(x, y); });
            const SlowComponents slow(both, Connectivity::Eight);
            ASSERT_EQ(slow.label, LabelImageOf(labelling.blobs));
            if (region.whole()) return;
            std::vector<int64_t> contacts;
            for (const std::vector<Place>& pixels : slow.pixels)
                contacts.push_back(std::ranges::count_if(pixels, [&](const Place& at) {
                    return std::ranges::any_of(StepsOf(Connectivity::Four), [&](const Place& step) {
                        return IsInside(all, at.x + step.x, at.y + step.y) && !inside.bit(at.x + step.x, at.y + step.y);
                    });
                }));
            ASSERT_EQ(contacts, labelling.regionContacts);
        });
    }
}

}  // namespace
}  // namespace orlix
