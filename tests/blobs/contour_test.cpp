#include "blobs/contour.hpp"

#include "binary/binary_pictures.hpp"

namespace orlix {
namespace {

using PointList = std::vector<Point>;

struct Traced {
    BitPlane blob;  // the pixels of one component
    Outlines edges, centres;
    Connectivity connectivity;
    size_t holes;
};

template <class Visit>
void ForEachBlob(const BitPlane& image, const Visit& visit) {
    for (const Connectivity connectivity : kConnectivities) {
        const Components blobs = Label(RunsOf(image), connectivity).blobs;
        const Holes tree = HolesOf(blobs);
        for (uint32_t label = 0; label < blobs.count(); ++label)
            visit(Traced{Alone(blobs, label), OutlinesOf(blobs.runs(label), connectivity, OutlineKind::PixelEdges),
                         OutlinesOf(blobs.runs(label), connectivity, OutlineKind::PixelCentres), connectivity,
                         static_cast<size_t>(std::ranges::count(tree.blobOfHole, label))});
    }
}

std::vector<PointList> AllOf(const Outlines& outlines) {
    std::vector<PointList> all = outlines.holes;
    all.insert(all.begin(), outlines.outer);
    return all;
}

Point Next(const PointList& outline, size_t i) { return outline[(i + 1) % outline.size()]; }

// Every edge between a pixel of the blob and another one belongs to one path, once, with the blob on its right.
void ExpectEdges(const Traced& traced) {
    std::map<std::pair<std::pair<double, double>, int>, int> edges;  // first end, direction
    static constexpr double kX[] = {-0.5, 0.5, 0.5, -0.5}, kY[] = {-0.5, -0.5, 0.5, 0.5};
    static constexpr Place kAcross[] = {{0, -1}, {1, 0}, {0, 1}, {-1, 0}};
    for (int32_t y = 0; y < traced.blob.height(); ++y)
        for (int32_t x = 0; x < traced.blob.width(); ++x)
            for (int i = 0; i < 4; ++i)
                if (traced.blob.bit(x, y) && !IsSet(traced.blob, x + kAcross[i].x, y + kAcross[i].y))
                    ++edges[{{x + kX[i], y + kY[i]}, i}];
    for (const PointList& outline : AllOf(traced.edges))
        for (size_t i = 0; i < outline.size(); ++i) {
            Point p = outline[i];
            const Point q = Next(outline, i);
            ASSERT_TRUE((p.x == q.x) != (p.y == q.y));
            ASSERT_EQ(p.x == q.x, q.y == Next(outline, (i + 1) % outline.size()).y);  // a corner
            const int direction = q.x > p.x ? 0 : q.y > p.y ? 1 : q.x < p.x ? 2 : 3;
            for (; !(p == q);
                 p = {p.x + (direction == 0) - (direction == 2), p.y + (direction == 1) - (direction == 3)})
                --edges[{{p.x, p.y}, direction}];
        }
    for (const auto& [edge, count] : edges) ASSERT_EQ(0, count) << testing::PrintToString(traced.blob);
    ASSERT_EQ(traced.holes, traced.edges.holes.size()) << testing::PrintToString(traced.blob);
    ASSERT_GT(TwiceSignedArea(traced.edges.outer).value.high, 0);
    for (const PointList& hole : traced.edges.holes) ASSERT_LT(TwiceSignedArea(hole).value.high, 0);
}

// The chains step from neighbour to neighbour, and pass all pixels at the border and no others.
void ExpectChains(const Traced& traced) {
    const bool eight = traced.connectivity == Connectivity::Eight;
    std::set<std::pair<double, double>> passed, border;
    for (const PointList& chain : AllOf(traced.centres))
        for (size_t i = 0; i < chain.size(); ++i) {
            passed.insert({chain[i].x, chain[i].y});
            const double dx = std::fabs(Next(chain, i).x - chain[i].x), dy = std::fabs(Next(chain, i).y - chain[i].y);
            ASSERT_TRUE(chain.size() == 1 || (eight ? std::max(dx, dy) == 1 : dx + dy == 1))
                << testing::PrintToString(traced.blob);
        }
    for (int32_t y = 0; y < traced.blob.height(); ++y)
        for (int32_t x = 0; x < traced.blob.width(); ++x)
            for (int i = 0; i < 9; ++i)
                if (traced.blob.bit(x, y) && (!eight || i % 2 != 0) &&
                    !IsSet(traced.blob, x + i % 3 - 1, y + i / 3 - 1))
                    border.insert({x, y});
    ASSERT_EQ(border, passed) << testing::PrintToString(traced.blob);
    ASSERT_EQ(traced.edges.holes.size(), traced.centres.holes.size());
}

TEST(Contour, PathsFollowAllEdgesAndBorderPixelsOfNoise) {
    for (int32_t width = 1; width <= 24; ++width)
        for (const double density : {0.3, 0.5, 0.65, 0.8, 0.95})
            ForEachBlob(NoisePlane(width, 1 + width % 12, density, static_cast<uint32_t>(width)),
                        [](const Traced& traced) {
                            ExpectEdges(traced);
                            ExpectChains(traced);
                        });
}

TEST(Contour, KnownOutlines) {
    const auto outlines = [](const char* drawing, Connectivity connectivity, OutlineKind kind) {
        return OutlinesOf(Label(RunsOf(PlaneOf(drawing)), connectivity).blobs.runs(0), connectivity, kind);
    };
    using K = OutlineKind;
    const auto eight = Connectivity::Eight, four = Connectivity::Four;
    EXPECT_EQ((PointList{{0.5, 0.5}, {1.5, 0.5}, {1.5, 1.5}, {0.5, 1.5}}),
              outlines("..|.#", eight, K::PixelEdges).outer);
    EXPECT_EQ((PointList{{1, 1}}), outlines("..|.#", eight, K::PixelCentres).outer);
    EXPECT_EQ((PointList{{0, 0}, {1, 0}, {2, 0}, {1, 0}}), outlines("###", four, K::PixelCentres).outer);
    // A ring whose pixels touch at corners: one path outside, one inside.
    const char* ring = ".#.|#.#|.#.";
    EXPECT_EQ((std::vector<PointList>{{{0.5, 0.5}, {0.5, 1.5}, {1.5, 1.5}, {1.5, 0.5}}}),
              outlines(ring, eight, K::PixelEdges).holes);
    EXPECT_EQ((PointList{{1, 0}, {2, 1}, {1, 2}, {0, 1}}), outlines(ring, eight, K::PixelCentres).outer);
    EXPECT_EQ((std::vector<PointList>{{{0, 1}, {1, 2}, {2, 1}, {1, 0}}}), outlines(ring, eight, K::PixelCentres).holes);
    // In chains of 4-connected blobs the pixel in the corner stands between.
    EXPECT_EQ((PointList{{0, 0}, {0, 1}, {1, 1}, {0, 1}}), outlines("#.|##", four, K::PixelCentres).outer);
    EXPECT_EQ((PointList{{0, 0}, {1, 1}, {0, 1}}), outlines("#.|##", eight, K::PixelCentres).outer);
}

}  // namespace
}  // namespace orlix
