// The operations of IBitmapProcess, each beside its slow definition.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <vector>

#include "fuzz/bitmaps/gray_image.hpp"
#include "fuzz/bitmaps/world.hpp"
#include "support/slow_distance.hpp"
#include "support/slow_morphology.hpp"
#include "support/slow_thinning.hpp"

namespace orlix::fuzz {
namespace {

enum class How { Erosion, Dilation, Opening, Closing };

// --------------------------------------------------------------------------------------------------------------- logic

template <auto method, class Rule>
void Combine(World& world, Canvas& canvas, const Rule& rule) {
    const Operand other = world.AnyOperand();
    const HRESULT result = (canvas.bitmap.get()->*method)(other.bitmap.get());
    world.ExpectResult(canvas, result, other.picture.sameSize(canvas.picture), [&] {
        return EachPixel<Picture>(canvas.picture.width(), canvas.picture.height(), [&](int32_t x, int32_t y) {
            return rule(canvas.picture.bit(x, y), other.picture.bit(x, y));
        });
    });
}

void Shift(World& world, Canvas& canvas) {
    const auto distance = [&](int32_t size) {
        const LONG small = world.Below(2 * size + 3) - size - 1;
        return world.OneIn(16) ? world.Among({0, kLeast, kMost, 64, -64}) : small;
    };
    const LONG right = distance(canvas.picture.width()), down = distance(canvas.picture.height());
    world.Say("%d %d", static_cast<int>(right), static_cast<int>(down));
    world.ExpectResult(canvas, canvas.bitmap->ShiftEquals(right, down), true, [&] {
        return EachPixel<Picture>(canvas.picture.width(), canvas.picture.height(), [&](int32_t x, int32_t y) {
            const int64_t fromX = int64_t{x} - right, fromY = int64_t{y} - down;
            return fromX >= 0 && fromY >= 0 && fromX < canvas.picture.width() && fromY < canvas.picture.height() &&
                   canvas.picture.bit(static_cast<int32_t>(fromX), static_cast<int32_t>(fromY));
        });
    });
}

void CountPixels(World& world, Canvas& canvas) {
    const LONG count = Call(canvas.bitmap, &IBitmapProcess::get_PixelCount);
    const int64_t expected = canvas.PixelsInRegion().count();
    world.Require(count == expected, "get_PixelCount", static_cast<double>(expected), count);
}

// ---------------------------------------------------------------------------------------------------------- morphology

template <auto method, How how>
void Square(World& world, Canvas& canvas) {
    const AnyConnectivity neighbours = world.Connectivity();
    const LONG times = world.Amount();
    const HRESULT result = (canvas.bitmap.get()->*method)(neighbours.type, times);
    world.ExpectResult(canvas, result, neighbours.legal(),
                       [&] { return SlowMorphology(canvas.picture, NeighboursAnd(neighbours.slow), how, times); });
}

template <auto method, How how>
void Rectangle(World& world, Canvas& canvas) {
    const auto length = [&] {
        if (world.OneIn(40)) return world.Among({0, -1, kLeast, kMost});
        return 1 + world.Below(world.OneIn(8) ? 100 : 9);
    };
    const LONG width = length(), height = length();
    world.Say("%d %d", static_cast<int>(width), static_cast<int>(height));
    const HRESULT result = (canvas.bitmap.get()->*method)(width, height);
    world.ExpectResult(canvas, result, width > 0 && height > 0, [&] {
        const Offsets window = Window(width, height, canvas.picture.width(), canvas.picture.height());
        return SlowMorphology(canvas.picture, window, how);
    });
}

// Without what reaches outside from every pixel.
Offsets DiskOf(double radius, const Picture& picture) {
    Offsets offsets;
    for (int64_t y = 1 - picture.height(); y < picture.height(); ++y)
        for (int64_t x = 1 - picture.width(); x < picture.width(); ++x)
            if (std::sqrt(static_cast<double>(x * x + y * y)) <= radius) offsets.push_back({x, y});
    return offsets;
}

template <auto method, How how>
void Disk(World& world, Canvas& canvas) {
    double radius = static_cast<double>(world.choices.Below(world.OneIn(6) ? 400 : 60)) / 8;
    if (world.OneIn(8)) radius = std::sqrt(static_cast<double>(world.choices.Below(60)));
    constexpr double kOdd[] = {0, 1e300, kInfinity, kNaN, -1, -0.0};
    if (world.OneIn(24)) radius = kOdd[world.choices.Below(std::size(kOdd))];
    world.Say("%.17g", radius);
    const HRESULT result = (canvas.bitmap.get()->*method)(radius);
    world.ExpectResult(canvas, result, radius >= 0,
                       [&] { return SlowMorphology(canvas.picture, DiskOf(radius, canvas.picture), how); });
}

struct AnyElement {
    ComPtr<IStructuringElement> object;
    Offsets offsets;
};

AnyElement ElementFrom(World& world) {
    AnyElement element{CreateObject<IStructuringElement>("Orlix.StructuringElement"), {}};
    const auto coordinate = [&](LONG reach) {
        if (world.OneIn(60)) return world.Among({kLeast, kMost, 1000, -1000});
        return world.Below(2 * reach + 1) - reach;
    };
    const LONG reach = world.OneIn(6) ? 70 : 4;
    for (size_t left = world.OneIn(24) ? 0 : 1 + world.choices.Below(8); left > 0; --left) {
        const LONG x = coordinate(reach), y = coordinate(std::min(reach, LONG{24}));
        const auto run = static_cast<LONG>(world.OneIn(3) && x > -100 && x < 100 ? world.choices.Below(9) : 0);
        for (LONG i = 0; i <= run; ++i) {
            Check(element.object->AddElement(x + i, y), element.object);
            element.offsets.push_back({x + i, y});
        }
        world.Say("(%d..%d, %d) ", static_cast<int>(x), static_cast<int>(x + run), static_cast<int>(y));
    }
    return element;
}

template <auto method, How how>
void Element(World& world, Canvas& canvas) {
    const AnyElement element = ElementFrom(world);
    const HRESULT result = (canvas.bitmap.get()->*method)(element.object.get());
    world.ExpectResult(canvas, result, !element.offsets.empty(),
                       [&] { return SlowMorphology(canvas.picture, element.offsets, how); });
}

void HitOrMiss(World& world, Canvas& canvas) {
    const AnyElement hit = ElementFrom(world);
    world.Say("and ");
    const AnyElement miss = ElementFrom(world);
    IStructuringElement* const nothing = nullptr;
    const bool hitIsNull = hit.offsets.empty() && world.OneIn(2), missIsNull = miss.offsets.empty() && world.OneIn(2);
    const HRESULT result =
        canvas.bitmap->HitOrMiss(hitIsNull ? nothing : hit.object.get(), missIsNull ? nothing : miss.object.get());
    world.ExpectResult(canvas, result, !hit.offsets.empty() || !miss.offsets.empty(),
                       [&] { return SlowHitOrMiss(canvas.picture, hit.offsets, miss.offsets); });
}

// -------------------------------------------------------------------------------------------------------------- tables

void ApplyTable(World& world, Canvas& canvas) {
    std::array<unsigned char, 512> table = {};
    const size_t kind = world.choices.Below(4);
    const int density = world.choices.Byte();
    for (size_t i = 0; i < table.size(); ++i) {
        const bool centre = (i & 16) != 0, random = world.choices.Byte() < density;
        const bool entries[] = {random, centre || random, centre && random, random != centre};
        table[i] = static_cast<unsigned char>(entries[kind] ? 1 + world.choices.Below(255) : 0);
    }
    // Tables that only add or only remove come to rest, others may never do so.
    const bool comesToRest = kind == 1 || kind == 2;
    LONG times = comesToRest && world.OneIn(2) ? kMost : world.Below(8);
    if (world.OneIn(32)) times = world.Among({-1, kLeast});
    world.Say("kind %d density %d times %d", static_cast<int>(kind), density, static_cast<int>(times));
    LONG passes = -1;
    const HRESULT result = canvas.bitmap->ApplyTable(table.data(), times, &passes);
    LONG expected = 0;
    Picture picture = canvas.picture;
    for (; expected < times; ++expected) {
        Picture next = SlowTablePass(picture, table);
        if (next == picture) break;
        picture = std::move(next);
    }
    world.ExpectResult(canvas, result, true, [&] { return picture; });
    world.Require(passes == expected, "passes of ApplyTable", expected, passes);
}

void Boundary(World& world, Canvas& canvas) {
    const AnyConnectivity connectivity = world.Connectivity();
    const auto side = static_cast<BoundaryType>(world.OneIn(64) ? 2 : world.Among({0, 1}));
    world.Say("side %d", static_cast<int>(side));
    world.ExpectResult(canvas, canvas.bitmap->Boundary(side, connectivity.type),
                       connectivity.legal() && (side == BT_Inner || side == BT_Outer),
                       [&] { return SlowBoundary(canvas.picture, side == BT_Inner, connectivity.slow); });
}

// --------------------------------------------------------------------------------------------------- what is connected

// A method of the connectivity alone.
template <auto method, class Slow>
void Connected(World& world, Canvas& canvas, const Slow& slow) {
    const AnyConnectivity connectivity = world.Connectivity();
    const HRESULT result = (canvas.bitmap.get()->*method)(connectivity.type);
    world.ExpectResult(canvas, result, connectivity.legal(), [&] { return slow(canvas.picture, connectivity.slow); });
}

// A method that has an amount as well.
template <auto method, class Slow>
void ConnectedBy(World& world, Canvas& canvas, const Slow& slow) {
    const AnyConnectivity connectivity = world.Connectivity();
    const LONG amount = world.Amount();
    const HRESULT result = (canvas.bitmap.get()->*method)(connectivity.type, amount);
    world.ExpectResult(canvas, result, connectivity.legal(),
                       [&] { return slow(canvas.picture, connectivity.slow, amount); });
}

// The simple pixels that thinning leaves are ends; so it is the skeleton.
Picture SlowSkeleton(const Picture& image, Connectivity connectivity) {
    return SlowThin(image, connectivity, INT64_MAX);
}

void Reconstruct(World& world, Canvas& canvas) {
    const AnyConnectivity connectivity = world.Connectivity();
    const Operand seeds = world.AnyOperand();
    world.ExpectResult(canvas, canvas.bitmap->Reconstruct(seeds.bitmap.get(), connectivity.type),
                       connectivity.legal() && seeds.picture.sameSize(canvas.picture),
                       [&] { return SlowReconstruct(seeds.picture, canvas.picture, connectivity.slow); });
}

void FillHoles(World& world, Canvas& canvas) {
    const AnyConnectivity connectivity = world.Connectivity();
    const LONG area = world.OneIn(3) ? 0 : world.Amount();
    world.ExpectResult(
        canvas, canvas.bitmap->FillHoles(area, connectivity.type), connectivity.legal() && area >= 0,
        [&] { return SlowFillHoles(canvas.picture, connectivity.slow, area == 0 ? int64_t{kMost} : area); });
}

void KeepArea(World& world, Canvas& canvas) {
    const AnyConnectivity connectivity = world.Connectivity();
    const LONG least = world.Amount(), most = world.OneIn(3) ? kMost : world.Amount();
    world.ExpectResult(canvas, canvas.bitmap->KeepArea(least, most, connectivity.type), connectivity.legal(),
                       [&] { return SlowKeepArea(canvas.picture, connectivity.slow, least, most); });
}

void Split(World& world, Canvas& canvas) {
    const AnyConnectivity connectivity = world.Connectivity();
    constexpr double kDepths[] = {0, 0, 0.25, 0.5, 0.75, 1, 2, kInfinity, -1, kNaN};
    constexpr double kShares[] = {0, 0, 0.05, 0.2, 0.5, 1, 1.01, kNaN};
    const double depth = kDepths[world.choices.Below(std::size(kDepths) - (world.OneIn(8) ? 0 : 2))];
    const double share = kShares[world.choices.Below(std::size(kShares) - (world.OneIn(8) ? 0 : 2))];
    world.Say("%g %g", depth, share);
    world.ExpectResult(
        canvas, canvas.bitmap->Split(depth, share, connectivity.type),
        connectivity.legal() && depth >= 0 && share >= 0 && share <= 1,
        [&] { return SlowSplit(canvas.picture, SlowDistances(canvas.picture), connectivity.slow, depth, share); });
}

void ThresholdLocally(World& world, Canvas& canvas) {
    Picture size = canvas.picture;
    if (world.OneIn(20)) size = Picture(size.width() + 1, size.height());
    const GrayImage gray = AnyGrayImage(world, size);
    const LONG radius = world.Amount();
    const double contrast = world.Among({0, 1, 3, 40, 200, 300}), offset = world.Among({0, 0, 1, -2}) / 4.0;
    const bool bright = world.OneIn(2);
    world.Say("radius %d, contrast %g, offset %g, %d", static_cast<int>(radius), contrast, offset, bright);
    const HRESULT result = canvas.bitmap->ThresholdLocally(gray.image.get(), 0, radius, contrast, offset, bright);
    world.ExpectResult(canvas, result, radius >= 0 && size.sameSize(canvas.picture), [&] {
        const int32_t reach = std::min<int32_t>(radius, size.width() + size.height());
        return EachPixel<Picture>(size.width(), size.height(), [&](int32_t x, int32_t y) {
            double low = kInfinity, high = -kInfinity;
            for (int32_t v = std::max(y - reach, 0); v <= std::min(y + reach, size.height() - 1); ++v)
                for (int32_t u = std::max(x - reach, 0); u <= std::min(x + reach, size.width() - 1); ++u) {
                    low = std::min(low, gray.At(u, v));
                    high = std::max(high, gray.At(u, v));
                }
            if (high - low < contrast) return canvas.picture.bit(x, y);
            return (gray.At(x, y) > (low + high) / 2 + offset) == bright;
        });
    });
}

void DistanceMap(World& world, Canvas& canvas) {
    const auto map = Call(canvas.bitmap, &IBitmapProcess::get_DistanceMap);
    const std::vector<int64_t> squares = SlowDistances(canvas.picture);
    auto square = squares.begin();
    for (const std::span<float> row : Rows<float>(map))
        for (const float distance : row) {
            // The squares are small enough for float, whose root is rounded once.
            const float expected =
                *square == INT64_MAX ? static_cast<float>(kInfinity) : std::sqrt(static_cast<float>(*square));
            ++square;
            world.Require(distance == expected, "get_DistanceMap", expected, distance);
        }
    world.Require(square == squares.end(), "size of the distance map");
}

void FindBlobs(World& world, Canvas& canvas) {
    const AnyConnectivity connectivity = world.Connectivity();
    KeptBlobs found = {{}, canvas.PixelsInRegion(), connectivity.slow};
    const HRESULT result = canvas.bitmap->FindBlobs(connectivity.type, found.blobs.Out());
    world.Require(connectivity.legal() ? result == S_OK : result == E_INVALIDARG, "result of FindBlobs", 0, result);
    if (result != S_OK) return;
    CheckBlobs(world, found, canvas.region);
    world.kept = std::move(found);
}

void KeepBlobs(World& world, Canvas&) {
    if (world.kept) CheckLabels(world, *world.kept);
}

using B = IBitmapProcess;
constexpr OperationOfBitmap kOperations[] = {
    {"get_PixelCount", CountPixels},
    {"Invert",
     [](World& w, Canvas& c) { w.ExpectResult(c, c.bitmap->Invert(), true, [&] { return Opposite(c.picture); }); }},
    {"AndEquals", [](World& w, Canvas& c) { Combine<&B::AndEquals>(w, c, [](bool a, bool b) { return a && b; }); }},
    {"OrEquals", [](World& w, Canvas& c) { Combine<&B::OrEquals>(w, c, [](bool a, bool b) { return a || b; }); }},
    {"XorEquals", [](World& w, Canvas& c) { Combine<&B::XorEquals>(w, c, [](bool a, bool b) { return a != b; }); }},
    {"AndNotEquals",
     [](World& w, Canvas& c) { Combine<&B::AndNotEquals>(w, c, [](bool a, bool b) { return a && !b; }); }},
    {"ShiftEquals", Shift},
    {"Erode", Square<&B::Erode, How::Erosion>},
    {"Dilate", Square<&B::Dilate, How::Dilation>},
    {"Open", Square<&B::Open, How::Opening>},
    {"Close", Square<&B::Close, How::Closing>},
    {"ErodeRectangle", Rectangle<&B::ErodeRectangle, How::Erosion>},
    {"DilateRectangle", Rectangle<&B::DilateRectangle, How::Dilation>},
    {"OpenRectangle", Rectangle<&B::OpenRectangle, How::Opening>},
    {"CloseRectangle", Rectangle<&B::CloseRectangle, How::Closing>},
    {"ErodeDisk", Disk<&B::ErodeDisk, How::Erosion>},
    {"DilateDisk", Disk<&B::DilateDisk, How::Dilation>},
    {"OpenDisk", Disk<&B::OpenDisk, How::Opening>},
    {"CloseDisk", Disk<&B::CloseDisk, How::Closing>},
    {"ErodeElement", Element<&B::ErodeElement, How::Erosion>},
    {"DilateElement", Element<&B::DilateElement, How::Dilation>},
    {"OpenElement", Element<&B::OpenElement, How::Opening>},
    {"CloseElement", Element<&B::CloseElement, How::Closing>},
    {"ApplyTable", ApplyTable},
    {"HitOrMiss", HitOrMiss},
    {"Boundary", Boundary},
    {"Thin", [](World& w, Canvas& c) { ConnectedBy<&B::Thin>(w, c, SlowThin<Picture>); }},
    {"Skeleton", [](World& w, Canvas& c) { Connected<&B::Skeleton>(w, c, SlowSkeleton); }},
    {"Prune", [](World& w, Canvas& c) { ConnectedBy<&B::Prune>(w, c, SlowPrune<Picture>); }},
    {"Thicken", [](World& w, Canvas& c) { ConnectedBy<&B::Thicken>(w, c, SlowThicken<Picture>); }},
    {"ConvexHulls", [](World& w, Canvas& c) { Connected<&B::ConvexHulls>(w, c, SlowHulls<Picture>); }},
    {"UltimatePoints",
     [](World& w, Canvas& c) {
         Connected<&B::UltimatePoints>(w, c, [](const Picture& image, Connectivity connectivity) {
             return SlowUltimatePoints(image, SlowDistances(image), connectivity);
         });
     }},
    {"Reconstruct", Reconstruct},
    {"FillHoles", FillHoles},
    {"ClearBorder", [](World& w, Canvas& c) { Connected<&B::ClearBorder>(w, c, SlowClearBorder<Picture>); }},
    {"KeepArea", KeepArea},
    {"Split", Split},
    {"ThresholdLocally", ThresholdLocally},
    {"get_DistanceMap", DistanceMap},
    {"FindBlobs", FindBlobs},
    {"blobs found before", KeepBlobs},
};

}  // namespace

std::span<const OperationOfBitmap> Operations() { return kOperations; }

}  // namespace orlix::fuzz
