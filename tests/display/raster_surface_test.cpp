#include "display/raster_surface.hpp"

#include "support/testing.hpp"

namespace orlix {
namespace {

constexpr uint32_t kGuard = 0xa5a5a5a5;

// A surface between guards, bottom-up when asked.
class Canvas {
public:
    Canvas(int32_t width, int32_t height, bool bottomUp = false)
        : width_(width),
          stride_(width + 3),
          pixels_(static_cast<size_t>(stride_) * static_cast<size_t>(height + 2), kGuard) {
        height_ = height;
        if (bottomUp) stride_ = -stride_;
        first_ = pixels_.data() + (bottomUp ? -stride_ * height : stride_) + 1;
    }
    RasterSurface surface() { return {first_, stride_, width_, height_}; }
    uint32_t at(int64_t x, int64_t y) const { return first_[y * stride_ + x]; }
    std::vector<uint32_t> row(int64_t y) const { return {first_ + y * stride_, first_ + y * stride_ + width_}; }
    bool GuardsIntact() const {
        const auto outside = std::count(pixels_.begin(), pixels_.end(), kGuard);
        int64_t inside = 0;
        for (int y = 0; y < height_; ++y)
            for (int x = 0; x < width_; ++x) inside += at(x, y) == kGuard;
        return outside - inside == static_cast<int64_t>(pixels_.size()) - int64_t{width_} * height_;
    }

private:
    int32_t width_, height_ = 0;
    ptrdiff_t stride_;
    std::vector<uint32_t> pixels_;
    uint32_t* first_;
};

enum class Kind { Ramp, Grey, Colors, Pixels };
constexpr Kind kKinds[] = {Kind::Ramp, Kind::Grey, Kind::Colors, Kind::Pixels};

// A noise picture of each layout, and the pixels it shows.
struct Picture {
    std::vector<uint8_t> samples;
    std::vector<uint32_t> colors;
    RasterPicture view = {};
    uint32_t at(int64_t x, int64_t y) const {
        const auto sample = [&](int64_t i) { return view.samples[y * view.stride + i]; };
        if (view.layout == RasterPicture::Layout::Levels) return colors[sample(x)] & 0xffffff;
        return uint32_t{sample(4 * x + 2)} << 16 | uint32_t{sample(4 * x + 1)} << 8 | sample(4 * x);
    }
};

Picture NoisePicture(Kind kind, int32_t width, int32_t height) {
    std::mt19937 random(static_cast<uint32_t>(width * 31 + height));
    Picture picture;
    const ptrdiff_t stride = 4 * width + 4;
    picture.samples.resize(static_cast<size_t>(stride * height));
    for (uint8_t& sample : picture.samples) sample = static_cast<uint8_t>(random());
    for (uint32_t i = 0; i < 256; ++i)
        picture.colors.push_back(kind == Kind::Ramp   ? i * 0x010101u
                                 : kind == Kind::Grey ? 0xff000000u | (255 - i) * 0x010101u
                                                      : static_cast<uint32_t>(random()));
    using Layout = RasterPicture::Layout;
    // Levels bottom-up.
    const uint8_t* const last = picture.samples.data() + stride * (height - 1);
    picture.view = {Layout::Levels, last, -stride, width, height, picture.colors.data()};
    if (kind == Kind::Pixels) {
        for (size_t i = 3; i < picture.samples.size(); i += 4) picture.samples[i] = 0;
        picture.view = {Layout::Pixels, picture.samples.data(), stride, width, height, nullptr};
    }
    return picture;
}

// The weights of the documentation in another way: with counted units and quotients in double. They are exact wherever
// a half is, and far enough from it elsewhere.
std::vector<double> Weights(int64_t source, int64_t dest, int64_t i) {
    std::vector<double> weights(static_cast<size_t>(source));
    const auto weight = [&](int64_t k) -> double& {
        return weights[static_cast<size_t>(std::clamp<int64_t>(k, 0, source - 1))];
    };
    const auto s = static_cast<double>(source), d = static_cast<double>(dest);
    if (dest >= source) {
        const double center = (static_cast<double>(2 * i + 1) * s - d) / (2 * d);
        const double share = std::floor(4096 * (center - std::floor(center)) + 0.5);
        const auto left = static_cast<int64_t>(std::floor(center));
        weight(left) += 4096 - share;
        weight(left + 1) += share;
    } else {
        double units = 0, sum = 0;
        for (int64_t unit = i * source; unit < (i + 1) * source; ++unit) {
            units += 1;
            const double now = std::floor(4096 * units / s + 0.5);
            weight(unit / dest) += now - sum;
            sum = now;
        }
    }
    return weights;
}

uint32_t SmoothPixel(const Picture& picture, const Rectangle& source, const std::vector<double>& alongX,
                     const std::vector<double>& alongY) {
    double sums[3] = {};
    for (int64_t y = 0; y < source.height; ++y)
        for (int64_t x = 0; x < source.width; ++x) {
            const double weight = alongX[static_cast<size_t>(x)] * alongY[static_cast<size_t>(y)];
            const uint32_t pixel = picture.at(source.x + x, source.y + y);
            for (unsigned c = 0; c < 3; ++c) sums[c] += weight * (pixel >> 8 * c & 0xff);
        }
    uint32_t pixel = 0;
    for (unsigned c = 0; c < 3; ++c)
        pixel |= static_cast<uint32_t>(std::floor((sums[c] + 8388608) / 16777216)) << 8 * c;
    return pixel;
}

int64_t NearestTo(int64_t index, int64_t source, int64_t dest) {
    return static_cast<int64_t>(
        std::floor((static_cast<double>(index) + 0.5) * static_cast<double>(source) / static_cast<double>(dest)));
}

TEST(RasterSurface, EveryPixelFollowsTheRuleOfItsScaling) {
    std::mt19937 random(5);
    for (int round = 0; round < 600; ++round) {
        const auto upTo = [&](int n) { return static_cast<int32_t>(random() % static_cast<unsigned>(n)); };
        const Kind kind = kKinds[round % 4];
        const Picture picture = NoisePicture(kind, upTo(90) + 1, upTo(12) + 1);
        Rectangle source{upTo(picture.view.width), upTo(picture.view.height), 0, 0};
        source.width = 1 + upTo(picture.view.width - static_cast<int32_t>(source.x));
        source.height = 1 + upTo(picture.view.height - static_cast<int32_t>(source.y));
        Rectangle dest{upTo(30) - 5, upTo(14) - 2, upTo(220) + 1, upTo(20) + 1};
        if (upTo(4) == 0) dest.width = source.width;
        if (upTo(4) == 0) dest.height = source.height;
        if (upTo(3) == 0) dest = {dest.right(), dest.y, -dest.width, dest.height};
        if (upTo(3) == 0) dest = {dest.x, dest.bottom(), dest.width, -dest.height};
        const Rectangle covered = Normalized(dest);
        for (const Scaling scaling : {Scaling::Nearest, Scaling::Smooth}) {
            Canvas canvas(170, 20, round % 2 == 0);
            canvas.surface().Draw(picture.view, source, dest, scaling);
            for (int64_t y = 0; y < 20; ++y) {
                const int64_t j = dest.height < 0 ? dest.y - 1 - y : y - dest.y;
                const bool inside = y >= covered.y && y < covered.bottom();
                std::vector<double> alongY;
                if (inside) alongY = Weights(source.height, covered.height, j);
                for (int64_t x = 0; x < 170; ++x) {
                    const int64_t i = dest.width < 0 ? dest.x - 1 - x : x - dest.x;
                    uint32_t want = kGuard;
                    if (inside && x >= covered.x && x < covered.right())
                        want = scaling == Scaling::Nearest
                                   ? picture.at(source.x + NearestTo(i, source.width, covered.width),
                                                source.y + NearestTo(j, source.height, covered.height))
                                   : SmoothPixel(picture, source, Weights(source.width, covered.width, i), alongY);
                    ASSERT_EQ(want, canvas.at(x, y))
                        << "round " << round << ", kind " << static_cast<int>(kind) << ", smooth "
                        << static_cast<int>(scaling) << ", (" << x << ", " << y << ")";
                }
            }
            ASSERT_TRUE(canvas.GuardsIntact());
        }
    }
}

// One row of levels shown as greys; a guarded canvas just as large as the destination.
std::vector<uint32_t> Shown(const std::vector<uint8_t>& levels, int32_t columns, Scaling scaling) {
    const Picture ramp = NoisePicture(Kind::Ramp, 1, 1);
    const auto n = static_cast<int32_t>(levels.size());
    const RasterPicture picture{RasterPicture::Layout::Levels, levels.data(), 0, n, 1, ramp.colors.data()};
    Canvas canvas(std::abs(columns), 1);
    canvas.surface().Draw(picture, {0, 0, n, 1}, {columns < 0 ? -columns : 0, 0, columns, 1}, scaling);
    EXPECT_TRUE(canvas.GuardsIntact());
    std::vector<uint32_t> row = canvas.row(0);
    for (uint32_t& pixel : row) {
        EXPECT_EQ(pixel & 0xff, pixel >> 16);
        EXPECT_EQ(pixel & 0xff, pixel >> 8 & 0xff);
        pixel &= 0xff;
    }
    return row;
}

// Wide rows are worked on in parts.
TEST(RasterSurface, LongRowsAreAveragedInOnePiece) {
    const int32_t width = 30011;
    std::mt19937 random(6);
    std::vector<uint8_t> levels(static_cast<size_t>(width));
    for (uint8_t& level : levels) level = static_cast<uint8_t>(random());
    for (const int32_t columns : {2, 7500, -7501, 29000, 33333}) {
        const std::vector<uint32_t> shown = Shown(levels, columns, Scaling::Smooth);
        for (size_t x = 0; x < shown.size(); x += 1 + random() % 500) {
            const auto i = static_cast<int64_t>(columns < 0 ? shown.size() - 1 - x : x);
            const std::vector<double> weights = Weights(width, std::abs(columns), i);
            double sum = 0;
            for (size_t k = 0; k < weights.size(); ++k) sum += weights[k] * levels[k];
            ASSERT_EQ(std::floor(sum / 4096 + 0.5), shown[x]) << columns << ", " << x;
        }
    }
}

TEST(RasterSurface, LargestSizesAreDrawnWhereTheyAreSeen) {
    // 2^31 - 1 rows that are all the same row of memory.
    const Picture picture = NoisePicture(Kind::Colors, 7, 1);
    RasterPicture tall = picture.view;
    tall.stride = 0;
    tall.height = INT32_MAX;
    for (const Scaling scaling : {Scaling::Nearest, Scaling::Smooth})
        for (const Rectangle& dest : {Rectangle{0, 0, 7, 3}, {7, 3, -7, -3}, {0, -2000000000, 7, 4294967296}}) {
            Canvas canvas(7, 3);
            canvas.surface().Draw(tall, {0, 0, 7, INT32_MAX}, dest, scaling);
            for (int64_t y = 0; y < 3; ++y)
                for (int64_t x = 0; x < 7; ++x)
                    ASSERT_EQ(picture.at(dest.width < 0 ? 6 - x : x, 0), canvas.at(x, y)) << dest.height;
        }
    // Two columns stretched over 2^32; the middle is half of both.
    const std::vector<uint8_t> levels{10, 20};
    const Picture ramp = NoisePicture(Kind::Ramp, 1, 1);
    const RasterPicture two{RasterPicture::Layout::Levels, levels.data(), 0, 2, 1, ramp.colors.data()};
    const int64_t huge = int64_t{1} << 32;
    Canvas canvas(2, 1);
    canvas.surface().Draw(two, {0, 0, 2, 1}, {1 - huge / 2, 0, huge, 1}, Scaling::Smooth);
    EXPECT_EQ((std::vector<uint32_t>{0x0f0f0f, 0x0f0f0f}), canvas.row(0));
    canvas.surface().Draw(two, {0, 0, 2, 1}, {1 - huge / 2, 0, huge, 1}, Scaling::Nearest);
    EXPECT_EQ((std::vector<uint32_t>{0x0a0a0a, 0x141414}), canvas.row(0));
}

TEST(RasterSurface, DrawsNothingForRectanglesThatMakeNoSense) {
    const Picture picture = NoisePicture(Kind::Ramp, 5, 5);
    Canvas canvas(8, 8);
    const int64_t tooLarge = (int64_t{1} << 32) + 1;
    for (const auto& [source, dest] : {std::pair<Rectangle, Rectangle>{{0, 0, 6, 5}, {0, 0, 8, 8}},
                                       {{-1, 0, 5, 5}, {0, 0, 8, 8}},
                                       {{0, 0, 0, 5}, {0, 0, 8, 8}},
                                       {{5, 0, -5, 5}, {0, 0, 8, 8}},
                                       {{0, 0, 5, 5}, {0, 0, 0, 8}},
                                       {{0, 0, 5, 5}, {8, 0, 8, 8}},
                                       {{0, 0, 5, 5}, {0, 0, -8, 8}},
                                       {{0, 0, 5, 5}, {0, 0, tooLarge, 8}},
                                       {{0, 0, 5, 5}, {0, tooLarge, 8, -tooLarge}}}) {
        canvas.surface().Draw(picture.view, source, dest, Scaling::Smooth);
        canvas.surface().Draw(picture.view, source, dest, Scaling::Nearest);
        for (int64_t y = 0; y < 8; ++y) ASSERT_EQ(std::vector<uint32_t>(8, kGuard), canvas.row(y));
    }
}

TEST(RasterSurface, FillsInsideItsMemoryOnly) {
    Canvas canvas(5, 4, true);
    canvas.surface().Fill({-10, -10, 100, 100}, PixelOfColor(0x7f123456));
    EXPECT_EQ(std::vector<uint32_t>(5, 0x563412), canvas.row(0));
    canvas.surface().Fill({4, 2, -2, -1}, 1);
    canvas.surface().Fill({INT32_MAX, 0, INT32_MAX, 5}, 2);
    EXPECT_EQ((std::vector<uint32_t>{0x563412, 0x563412, 1, 1, 0x563412}), canvas.row(1));
    EXPECT_EQ(std::vector<uint32_t>(5, 0x563412), canvas.row(2));
    EXPECT_TRUE(canvas.GuardsIntact());
}

}  // namespace
}  // namespace orlix
