#include "blobs/skeleton_length.hpp"

#include "binary/binary_pictures.hpp"
#include "binary/thinning.hpp"
#include "blobs/labelling.hpp"
#include "blobs/shape_measurements.hpp"
#include "support/slow_skeleton_length.hpp"

namespace orlix {
namespace {

double LengthOf(const char* drawing, PixelSize pixel = {}) {
    const Labelling labelling = Label(RunsOf(PlaneOf(drawing)), Connectivity::Eight);
    return SkeletonRuler(labelling.blobs, pixel.x, pixel.y).Length(0);
}

TEST(SkeletonLength, KnownShapes) {
    const double root = std::sqrt(2.0);
    const struct {
        const char* drawing;
        double length;
    } shapes[] = {
        {"#", 1},
        {"##|##", 2},
        {"###|###|###", 3},
        {"#######", 7},
        {"#######|#######|#######|#######", 7},
        {"#...|.#..|..#.|...#", 4 * root},
        // Two lines that cross, each from tip to tip.
        {"..#..|..#..|#####|..#..|..#..", 10},
    };
    for (const auto& shape : shapes) {
        EXPECT_DOUBLE_EQ(shape.length, LengthOf(shape.drawing)) << shape.drawing;
        EXPECT_DOUBLE_EQ(3 * shape.length, LengthOf(shape.drawing, {3, 3})) << shape.drawing;
    }
    EXPECT_EQ(2.5, LengthOf("#", {2, 3}));
    EXPECT_EQ(15, LengthOf("#|#|#|#|#", {2, 3}));
    EXPECT_DOUBLE_EQ(10, LengthOf("#.|.#", {3, 4}));
}

// All components of a picture one after the other, which takes boxes first and the whole picture in the end.
TEST(SkeletonLength, AgreesWithTheDefinition) {
    std::mt19937 random(7);
    // Rings around each other, which with 4 neighbours touch at corners.
    std::vector<BitPlane> images = {PlaneOf(".#.#.#.|#.#.#.#|.#.#.#.|#.#.#.#|.#.#.#."),
                                    EachPixel<BitPlane>(61, 67, [](int32_t x, int32_t y) {
                                        return (std::min({x, y, 60 - x, 66 - y}) + (x == y ? 1 : 0)) % 3 != 0;
                                    })};
    for (uint32_t i = 0; i < 24; ++i)
        images.push_back(NoisePlane(1 + static_cast<int32_t>(random() % 90), 1 + static_cast<int32_t>(random() % 50),
                                    0.1 * (1 + i % 9), i));
    for (const BitPlane& image : images)
        for (const Connectivity connectivity : kConnectivities)
            for (const PixelSize pixel : {PixelSize{1, 1}, {0.5, 1.25}}) {
                const Labelling labelling = Label(RunsOf(image), connectivity);
                SkeletonRuler ruler(labelling.blobs, pixel.x, pixel.y);
                for (uint32_t label = 0; label < labelling.blobs.count(); ++label) {
                    const BitPlane blob = Alone(labelling.blobs, label);
                    const double slow =
                        SlowSkeletonLength(blob, Skeleton(blob, Connectivity::Eight), pixel.x, pixel.y).Length();
                    ASSERT_NEAR(slow, ruler.Length(label), 1e-12 * slow) << label << testing::PrintToString(image);
                    ASSERT_NEAR(slow, SkeletonRuler(labelling.blobs, pixel.x, pixel.y).Length(label), 1e-12 * slow);
                }
            }
}

}  // namespace
}  // namespace orlix
