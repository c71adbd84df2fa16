#include "blobs/skeleton_length.hpp"

#include "binary/binary_pictures.hpp"
#include "binary/thinning.hpp"
#include "blobs/labelling.hpp"
#include "blobs/shape_measurements.hpp"
#include "numerics/plane.hpp"

namespace orlix {
namespace {

using Cell = std::pair<int32_t, int32_t>;

double Distance(const Point& a, const Point& b, const PixelSize& pixel) {
    return std::hypot((a.x - b.x) * pixel.x, (a.y - b.y) * pixel.y);
}

// The definition, from the pixels of one component: all branches as lists of points.
class SlowSkeleton {
public:
    SlowSkeleton(const BitPlane& blob, const PixelSize& pixel) : blob_(blob), pixel_(pixel) {
        const BitPlane plane = Skeleton(blob, Connectivity::Eight);
        for (int32_t y = 0; y < blob.height(); ++y)
            for (int32_t x = 0; x < blob.width(); ++x) {
                if (!plane.bit(x, y)) continue;
                std::set<Cell>& links = links_[{x, y}];
                for (const auto& [dx, dy] : StepsOf(Connectivity::Eight))
                    if (IsSet(plane, x + dx, y + dy) &&
                        (dx == 0 || dy == 0 || (!plane.bit(x + dx, y) && !plane.bit(x, y + dy))))
                        links.insert({x + dx, y + dy});
            }
    }

    double Length() const {
        if (links_.size() == 1) return Chords(links_.begin()->first);
        double length = 0;
        std::set<std::pair<Cell, Cell>> walked;
        const auto walk = [&](const Cell& from, const Cell& next) {
            std::vector<Cell> branch = {from, next};
            while (branch.back() != from && links_.at(branch.back()).size() == 2) {
                const std::set<Cell>& links = links_.at(branch.back());
                const Cell before = branch[branch.size() - 2];
                branch.push_back(*links.begin() == before ? *links.rbegin() : *links.begin());
            }
            for (size_t i = 1; i < branch.size(); ++i) {
                walked.insert({branch[i - 1], branch[i]});
                walked.insert({branch[i], branch[i - 1]});
            }
            return branch;
        };
        for (const auto& [cell, links] : links_) {
            if (links.size() == 2) continue;
            for (const Cell& next : links) {
                const bool counted = walked.contains({cell, next});
                const std::vector<Cell> branch = walk(cell, next);
                if (!counted) length += Smoothed(branch, false);
                if (links.size() == 1) length += ToTheEdge(cell, branch[std::min<size_t>(4, branch.size() - 1)]);
            }
        }
        if (walked.empty()) {
            const auto& [cell, links] = *links_.begin();
            length = Smoothed(walk(cell, *links.begin()), true);
        }
        return length;
    }

private:
    double Smoothed(const std::vector<Cell>& branch, bool closed) const {
        std::vector<Point> points;
        for (const auto& [x, y] : branch) points.push_back({1.0 * x, 1.0 * y});
        if (closed) points.pop_back();
        const size_t n = points.size();
        for (int pass = 0; pass < 4; ++pass) {
            const std::vector<Point> old = points;
            for (size_t i = closed ? 0 : 1; i < (closed ? n : n - 1); ++i) {
                const Point &a = old[(i + n - 1) % n], &b = old[i], &c = old[(i + 1) % n];
                points[i] = {(a.x + 2 * b.x + c.x) / 4, (a.y + 2 * b.y + c.y) / 4};
            }
        }
        double length = closed ? Distance(points.back(), points.front(), pixel_) : 0;
        for (size_t i = 1; i < n; ++i) length += Distance(points[i - 1], points[i], pixel_);
        return length;
    }

    // In steps of 1/840 of the way from `back` to the end: all crossings with the sides of pixels are at whole ones, as
    // no more than four columns and rows lie between them. Half a step on, the point is inside a pixel.
    double ToTheEdge(const Cell& end, const Cell& back) const {
        const int32_t dx = end.first - back.first, dy = end.second - back.second;
        for (int64_t i = 0;; ++i) {
            const auto nearest = [&](int32_t d) {
                return static_cast<int32_t>(std::lround(static_cast<double>(d * (2 * i + 1)) / 1680));
            };
            if (!IsSet(blob_, end.first + nearest(dx), end.second + nearest(dy)))
                return static_cast<double>(i) / 840 * Distance({0, 0}, {1.0 * dx, 1.0 * dy}, pixel_);
        }
    }

    double Chords(const Cell& cell) const {
        const auto pixels = [&](int32_t dx, int32_t dy) {
            int count = 0;
            for (auto [x, y] = cell; IsSet(blob_, x, y); x += dx, y += dy) ++count;
            return count;
        };
        return ((pixels(1, 0) + pixels(-1, 0) - 1) * pixel_.x + (pixels(0, 1) + pixels(0, -1) - 1) * pixel_.y) / 2;
    }

    const BitPlane& blob_;
    const PixelSize pixel_;
    std::map<Cell, std::set<Cell>> links_;
};

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
                    const double slow = SlowSkeleton(blob, pixel).Length();
                    ASSERT_NEAR(slow, ruler.Length(label), 1e-12 * slow) << label << testing::PrintToString(image);
                    ASSERT_NEAR(slow, SkeletonRuler(labelling.blobs, pixel.x, pixel.y).Length(label), 1e-12 * slow);
                }
            }
}

}  // namespace
}  // namespace orlix
