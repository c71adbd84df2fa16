#include "geometry/shape_region.hpp"

#include <algorithm>
#include <cmath>

#include "component/failure.hpp"
#include "geometry/disk.hpp"
#include "geometry/line.hpp"
#include "geometry/rounding.hpp"
#include "numerics/elementary.hpp"

namespace orlix {
namespace {

constexpr char kTooManyRows[] =
    "IShapeRegionOfInterest::CreateOrientedRectangle: the shape covers more than 16777216 rows.";

struct Corner {
    double x, y;
};

// sqrt(dx^2 + dy^2) with the same bits on every platform, without intermediate overflow. NaN when an argument is NaN.
double Length(double dx, double dy) {
    const double square = dx * dx + dy * dy;
    if (square > 1e-280 && square < 1e300) return std::sqrt(square);
    constexpr double kDown = 0x1p-600;
    constexpr double kUp = 0x1p600;
    const double scale = square < 1 ? kUp : kDown;
    return std::sqrt(dx * scale * (dx * scale) + dy * scale * (dy * scale)) / scale;
}

// The edge's column at height y, or NaN when it does not reach that row.
double ColumnOfEdge(const Corner& a, const Corner& b, double y) {
    if (!(y >= std::min(a.y, b.y) && y <= std::max(a.y, b.y))) return std::nan("");
    if (std::abs(b.y - a.y) < 0.0001) return std::abs(y - b.y) <= std::abs(y - a.y) ? b.x : a.x;
    return a.x + (y - a.y) * (a.x - b.x) / (a.y - b.y);
}

void RequireSize(int32_t width, int32_t height, const char* widthMessage, const char* heightMessage) {
    if (width < 1) throw Failure(widthMessage);
    if (height < 1) throw Failure(heightMessage);
}

Box Clipped(const Box& box, int32_t width, int32_t height) {
    return {std::max(box.left, 0), std::max(box.top, 0), std::min(box.right, width - 1),
            std::min(box.bottom, height - 1)};
}

// An empty box: widening it by a pixel of the image gives that pixel.
Box NoBox(int32_t width, int32_t height) { return {width - 1, height - 1, 0, 0}; }

void Widen(Box& box, int32_t left, int32_t right, int32_t row) {
    box.left = std::min(box.left, left);
    box.right = std::max(box.right, right);
    box.top = std::min(box.top, row);
    box.bottom = std::max(box.bottom, row);
}

int64_t RowsBetween(int32_t top, int32_t bottom) { return std::max<int64_t>(int64_t{bottom} - top + 1, 0); }

}  // namespace

// The run of a row without pixels is empty, except in an image one pixel wide, where it reads as column 0.
void ShapeRegion::Reset(int32_t width, int32_t height) {
    width_ = width;
    height_ = height;
    other_ = {width - 1, 0};
    rows_ = nullptr;
}

std::vector<RawRun> ShapeRegion::RowsFor(int64_t rows, int32_t width, int32_t height, const char* tooMany) {
    if (rows > kMostRows) {
        Reset(width, height);
        throw Failure(tooMany);
    }
    return std::vector<RawRun>(static_cast<size_t>(rows));
}

void ShapeRegion::CreateRectangle(int32_t width, int32_t height, int32_t left, int32_t top, int32_t right,
                                  int32_t bottom) {
    RequireSize(width, height, "IShapeRegionOfInterest::CreateRectangle: width must be positive.",
                "IShapeRegionOfInterest::CreateRectangle: height must be positive.");
    Reset(width, height);
    if (left > right) throw Failure("IShapeRegionOfInterest::CreateRectangle: left cannot be greater than right.");
    if (top > bottom) throw Failure("IShapeRegionOfInterest::CreateRectangle: top cannot be below bottom.");
    box_ = Clipped({left, top, right, bottom}, width, height);
    other_ = {box_.left, box_.right};
}

void ShapeRegion::CreateCircle(int32_t width, int32_t height, double x, double y, double radius) {
    RequireSize(width, height, "IShapeRegionOfInterest::CreateCircle: width must be positive.",
                "IShapeRegionOfInterest::CreateCircle: height must be positive.");
    const Disk disk{x, y, radius};
    if (!disk.Defined()) {
        Reset(width, height);
        box_ = {0, 0, -1, -1};
        return;
    }
    const Box box =
        Clipped({CeilToInt32(x - radius), disk.Top(), FloorToInt32(x + radius), disk.Bottom()}, width, height);
    std::vector<RawRun> runs =
        RowsFor(RowsBetween(box.top, box.bottom), width, height,
                "IShapeRegionOfInterest::CreateCircle: the shape covers more than 16777216 rows.");
    for (size_t i = 0; i < runs.size(); ++i) runs[i] = disk.Row(box.top + static_cast<int32_t>(i));
    auto shared = std::make_shared<const std::vector<RawRun>>(std::move(runs));
    Reset(width, height);
    box_ = box;
    first_ = box.top;
    rows_ = std::move(shared);
}

void ShapeRegion::CreateOrientedRectangle(int32_t width, int32_t height, double x1, double y1, double x2, double y2,
                                          double across) {
    RequireSize(width, height, "IShapeRegionOfInterest::CreateOrientedRectangle: width must be positive.",
                "IShapeRegionOfInterest::CreateOrientedRectangle: height must be positive.");
    const double dx = x2 - x1;
    const double dy = y2 - y1;
    const double length = Length(dx, dy);
    if (!(length > 0)) {
        Reset(width, height);
        throw Failure("IShapeRegionOfInterest::CreateOrientedRectangle: no rectangle center line.");
    }
    if (across < 1.0) return CreateLine(width, height, x1, y1, x2, y2);

    const double hx = dy / length * across * 0.5;
    const double hy = -dx / length * across * 0.5;
    const std::array<Corner, 4> corners = {
        {{x1 - hx, y1 - hy}, {x1 + hx, y1 + hy}, {x2 + hx, y2 + hy}, {x2 - hx, y2 - hy}}};
    double least = corners[0].y;
    double most = corners[0].y;
    bool finite = true;
    for (const Corner& corner : corners) {
        least = std::min(least, corner.y);
        most = std::max(most, corner.y);
        finite = finite && std::isfinite(corner.x) && std::isfinite(corner.y);
    }
    const int32_t top = std::max(CeilToInt32(least), 0);
    const int32_t bottom = finite ? std::min(FloorToInt32(most), height - 1) : -1;

    Box box = NoBox(width, height);
    std::vector<RawRun> runs = RowsFor(RowsBetween(top, bottom), width, height, kTooManyRows);
    for (size_t i = 0; i < runs.size(); ++i) {
        const int32_t y = top + static_cast<int32_t>(i);
        double low = width - 1;
        double high = 0;
        for (size_t a = 0; a < 4; ++a) {
            const double column = ColumnOfEdge(corners[a], corners[(a + 1) % 4], y);
            if (column < low) low = column;
            if (column > high) high = column;
        }
        RawRun& run = runs[i] = {CeilToInt32(low), FloorToInt32(high)};
        if (run.start > run.stop || run.stop < 0 || run.start >= width) continue;
        run = {std::max(run.start, 0), std::min(run.stop, width - 1)};
        Widen(box, run.start, run.stop, y);
    }
    auto shared = std::make_shared<const std::vector<RawRun>>(std::move(runs));
    Reset(width, height);
    box_ = box;
    first_ = top;
    rows_ = std::move(shared);
}

void ShapeRegion::CreateLine(int32_t width, int32_t height, double x1, double y1, double x2, double y2) {
    const VisibleSteps steps(Line::BetweenRounded(x1, y1, x2, y2), width, height);
    std::vector<RawRun> runs = RowsFor(steps.Rows(), width, height, kTooManyRows);
    Box box = NoBox(width, height);
    steps.ForEachRow([&](int32_t y, int32_t left, int32_t right) { Widen(box, left, right, y); });
    steps.ForEachRow([&](int32_t y, int32_t left, int32_t right) {
        runs[static_cast<size_t>(y - box.top)] = {left, right};
    });
    auto shared = std::make_shared<const std::vector<RawRun>>(std::move(runs));
    Reset(width, height);
    box_ = box;
    first_ = box.top;
    rows_ = std::move(shared);
}

void ShapeRegion::CreateOrientedRectangleAround(int32_t width, int32_t height, double x, double y, double along,
                                                double across, double degrees) {
    const double radians = degrees * 0.017453292519943295;  // pi / 180
    const double c = Cos(radians);
    const double s = Sin(radians);
    const double half = along * 0.5;
    CreateOrientedRectangle(width, height, x + half * c, y + half * s, x - half * c, y - half * s, across);
}

Box ShapeRegion::BoundingBox() const { return polarity_ == PT_Outside ? Box{0, 0, width_ - 1, height_ - 1} : box_; }

ShapeRegion::RowRuns ShapeRegion::Row(int32_t y) const {
    const bool inBox = y >= box_.top && y <= box_.bottom;
    if (polarity_ == PT_Outside) {
        if (!inBox) return {{{{0, width_ - 1}}}, 1};
        const RawRun run = Stored(y);
        return {{{{0, SaturateToInt32(int64_t{run.start} - 1)}, {SaturateToInt32(int64_t{run.stop} + 1), width_ - 1}}},
                2};
    }
    if (!inBox) return {{}, 0};
    const RawRun run = Stored(y);
    if (polarity_ != PT_Frame || y == box_.top || y == box_.bottom) return {{{run}}, 1};
    if (run.empty()) return {{{run, run}}, 2};
    const RawRun above = Stored(y - 1);
    const RawRun below = Stored(y + 1);
    const int64_t left = int64_t{std::max({above.start, run.start, below.start})} - 1;
    const int64_t right = int64_t{std::min({above.stop, run.stop, below.stop})} + 1;
    const auto within = [&](int64_t x) { return static_cast<int32_t>(std::clamp<int64_t>(x, run.start, run.stop)); };
    return {{{{run.start, within(left)}, {within(right), run.stop}}}, 2};
}

}  // namespace orlix
