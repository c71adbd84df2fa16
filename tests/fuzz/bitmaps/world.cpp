#include "fuzz/bitmaps/world.hpp"

#include <orlix/counted_object.hpp>

#include <algorithm>
#include <cmath>
#include <cstdarg>
#include <cstdio>

#include "support/refusing.hpp"

namespace orlix::fuzz {
namespace {

// Writes a row of pixels; padding stays.
void PutRow(const Picture& picture, int32_t y, uint8_t* row) {
    for (int32_t x = 0; x < picture.width(); ++x) {
        const auto mask = static_cast<uint8_t>(0x80 >> x % 8);
        row[x / 8] = static_cast<uint8_t>(picture.bit(x, y) ? row[x / 8] | mask : row[x / 8] & ~mask);
    }
}

// A client's bitmap with rows of any length.
class OwnBitmap final : public CountedObject<Refusing<IBitmap>> {
public:
    OwnBitmap(const Picture& picture, LONG rowBytes, uint8_t padding)
        : width_(picture.width()),
          height_(picture.height()),
          rowBytes_(rowBytes),
          bytes_(static_cast<size_t>(rowBytes) * static_cast<size_t>(picture.height()), padding) {
        for (int32_t y = 0; y < height_; ++y) PutRow(picture, y, &bytes_[static_cast<size_t>(y * rowBytes)]);
    }
    STDMETHODIMP get_Bitmap(BITMAP* record) noexcept override {
        *record = {0, width_, height_, rowBytes_, 1, 1, bytes_.data()};
        return S_OK;
    }

private:
    LONG width_, height_, rowBytes_;
    std::vector<uint8_t> bytes_;
};

// A client's region: any runs, some of them empty, some reaching outside.
class OwnRegion final : public CountedObject<IRegionOfInterest> {
public:
    OwnRegion(World& world, LONG width, LONG height)
        : width_(width), height_(height), rows_(static_cast<size_t>(height)) {
        const LONG longest = 1 + world.Below(width + 4), gap = 1 + world.Below(20);
        for (auto& row : rows_) {
            if (world.choices.Chance(30)) continue;
            for (LONG x = world.Below(9) - 4; x < width + 3;) {
                const LONG stop = x + world.Below(longest) - 1;
                row.push_back({x, stop, 0, nullptr, nullptr, nullptr, nullptr});
                x = std::max(x, stop) + 1 + world.Below(gap);
            }
        }
    }
    STDMETHODIMP get_Width(LONG* width) noexcept override { return *width = width_, S_OK; }
    STDMETHODIMP get_Height(LONG* height) noexcept override { return *height = height_, S_OK; }
    STDMETHODIMP get_BoundingBox(RECT* box) noexcept override { return *box = {0, 0, width_ - 1, height_ - 1}, S_OK; }
    STDMETHODIMP GetRowRuns(LONG row, SRun** begin, SRun** end) noexcept override {
        *begin = *end = nullptr;
        if (row < 0 || row >= height_) return S_FALSE;
        auto& runs = rows_[static_cast<size_t>(row)];
        *begin = runs.data();
        *end = runs.data() + runs.size();
        return S_OK;
    }

private:
    LONG width_, height_;
    std::vector<std::vector<SRun>> rows_;
};

ComPtr<IRegionOfInterest> ShapeIn(World& world, LONG width, LONG height) {
    auto& choices = world.choices;
    const auto shape = CreateObject<IShapeRegionOfInterest>("Orlix.ShapeRegionOfInterest");
    const auto place = [&](LONG size) { return world.Below(size + 8) - 4; };
    const auto between = [&](LONG size) { return place(size) + static_cast<double>(choices.Below(8)) / 8; };
    switch (choices.Below(3)) {
        case 0: {
            const LONG left = place(width), top = place(height);
            Check(
                shape->CreateRectangle(width, height, left, top, left + world.Below(width), top + world.Below(height)),
                shape);
            break;
        }
        case 1:
            Check(shape->CreateCircle(width, height, between(width), between(height),
                                      static_cast<double>(choices.Below(200)) / 8),
                  shape);
            break;
        default:
            Check(shape->CreateOrientedRectangle(width, height, 1 + static_cast<double>(choices.Below(40)),
                                                 1 + static_cast<double>(choices.Below(20)),
                                                 static_cast<double>(choices.Below(360)), between(width),
                                                 between(height)),
                  shape);
    }
    Check(shape->put_Polarity(static_cast<PolarityType>(choices.Below(3))), shape);
    return Cast<IRegionOfInterest>(shape);
}

// Draws the pixels for which inside(x, y) holds.
template <class Inside>
void Draw(Picture& picture, DrawType how, const Inside& inside) {
    for (int32_t y = 0; y < picture.height(); ++y)
        for (int32_t x = 0; x < picture.width(); ++x)
            if (inside(x, y)) picture.setBit(x, y, how == DT_On || (how == DT_Xor && !picture.bit(x, y)));
}

// + for pixels that are set and should not be, - for those that should be.
std::string Drawn(const Picture& expected, const Picture& found) {
    std::string text;
    for (int32_t y = 0; y < expected.height(); ++y, text += '\n')
        for (int32_t x = 0; x < expected.width(); ++x) {
            const bool set = found.bit(x, y);
            text += set == expected.bit(x, y) ? (set ? '#' : '.') : set ? '+' : '-';
        }
    return text;
}
std::string Drawn(const Picture& picture) { return Drawn(picture, picture); }

}  // namespace

Picture PixelsOf(IRegionOfInterest* region, LONG width, LONG height) {
    RECT box = {};
    Check(region->get_BoundingBox(&box));
    Picture pixels(width, height);
    for (LONG y = std::max<LONG>(box.top, 0); y <= std::min<LONG>(box.bottom, height - 1); ++y) {
        SRun *begin = nullptr, *end = nullptr;
        if (Check(region->GetRowRuns(y, &begin, &end)) != S_OK) continue;
        for (const SRun* run = begin; run != end; ++run)
            for (LONG x = std::max<LONG>(run->m_lStart, 0); x <= std::min<LONG>(run->m_lStop, width - 1); ++x)
                pixels.setBit(x, y, true);
    }
    return pixels;
}

Picture PixelsOf(IBitmap* bitmap) {
    BITMAP record = {};
    Check(bitmap->get_Bitmap(&record));
    const auto* const bytes = static_cast<const uint8_t*>(record.bmBits);
    return EachPixel<Picture>(record.bmWidth, record.bmHeight, [&](int32_t x, int32_t y) {
        return (bytes[static_cast<ptrdiff_t>(y) * record.bmWidthBytes + x / 8] & (0x80 >> x % 8)) != 0;
    });
}

World::World(uint64_t seed, bool verbose) : choices(seed), verbose_(verbose) {
    choices.BeginStep(UINT32_MAX);
    for (auto& [width, height] : sizes_) {
        width = 1 + Below(70);
        height = 1 + Below(24);
        if (OneIn(16))
            width = 1 + Below(200);
        else if (OneIn(16))
            std::swap(width, height);
        if (width > 70) height = 1 + Below(9);
    }
    for (Canvas& canvas : canvases_) {
        canvas.bitmap = CreateObject<IBitmapProcess>("Orlix.Bitmap");
        Check(canvas.bitmap->Create(sizes_[0].first, sizes_[0].second, 1), canvas.bitmap);
        canvas.picture = Picture(sizes_[0].first, sizes_[0].second);
        Fill(canvas);
    }
}

void World::Say(const char* format, ...) {
    char text[200];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    call_ += text;
}

void World::Require(bool holds, const char* what, double expected, double found) const {
    if (holds) return;
    char numbers[80];
    std::snprintf(numbers, sizeof numbers, ": %.17g expected, %.17g found", expected, found);
    throw Difference(std::string(what) + numbers);
}

AnyConnectivity World::Connectivity() {
    const auto type = static_cast<ConnectivityType>(OneIn(64) ? Among({0, 6, kLeast, kMost}) : Among({4, 8}));
    Say("%d ", static_cast<int>(type));
    return {type, type == CT_4 ? orlix::Connectivity::Four : orlix::Connectivity::Eight};
}

LONG World::Amount() {
    LONG amount = 1 + Below(4);
    if (OneIn(5)) amount = Below(30);
    if (OneIn(24)) amount = Among({0, -1, kLeast, 200, kMost});
    Say("%d ", static_cast<int>(amount));
    return amount;
}

Operand World::AnyOperand() {
    const size_t which = choices.Below(canvases_.size());
    const Canvas& canvas = canvases_[which];
    if (!OneIn(3)) {
        Say("bitmap %d ", static_cast<int>(which));
        return {Cast<IBitmap>(canvas.bitmap), canvas.picture};
    }
    const LONG rowBytes = (canvas.picture.width() + 7) / 8 + Below(4);
    const uint8_t padding = choices.Byte();
    Say("bitmap %d with %d bytes a row ", static_cast<int>(which), static_cast<int>(rowBytes));
    const auto own = MakeCounted<OwnBitmap>(canvas.picture, rowBytes, padding);
    return {ComPtr<IBitmap>(own.get()), canvas.picture};
}

void World::ExpectResult(Canvas& canvas, HRESULT result, bool legal, const std::function<Picture()>& picture) {
    Require(legal ? result == S_OK : FAILED(result), "result of the call", legal ? 0 : E_FAIL, result);
    if (!legal) return;
    const Picture changed = picture();
    Draw(canvas.picture, DT_Xor,
         [&](int32_t x, int32_t y) { return canvas.InRegion(x, y) && canvas.picture.bit(x, y) != changed.bit(x, y); });
}

// ------------------------------------------------------------------------------------------------------------- content

// Writes rows, padding included, through the pointers that the bitmap hands out.
void World::Fill(Canvas& canvas) {
    Picture& picture = canvas.picture;
    const int32_t width = picture.width(), height = picture.height();
    const size_t kind = choices.Below(10);
    Say("fill %d ", static_cast<int>(kind));
    const auto place = [&](int32_t size) { return Below(size); };
    picture = Picture(width, height);
    if (kind < 4) {
        const int density = kind == 0 ? 128 : choices.Byte();
        Draw(picture, DT_On, [&](int32_t, int32_t) { return choices.Byte() < density; });
    } else if (kind < 6) {  // disks
        for (size_t left = 1 + choices.Below(12); left > 0; --left) {
            const int32_t cx = place(width), cy = place(height), r = 1 + place(1 + std::min(width, 9));
            Draw(picture, DT_On,
                 [&](int32_t x, int32_t y) { return (x - cx) * (x - cx) + (y - cy) * (y - cy) <= r * r; });
        }
    } else if (kind < 8) {  // lines, in all directions
        for (size_t left = 1 + choices.Below(10); left > 0; --left) {
            int32_t x = place(width), y = place(height);
            const LONG dx = Below(3) - 1, dy = Below(3) - 1;
            for (int32_t i = 0; i < 70 && IsInside(picture, x, y); ++i, x += dx, y += dy) picture.setBit(x, y, true);
        }
    } else if (kind == 8) {  // rings in one another
        const int32_t period = 1 + place(4), phase = place(4);
        Draw(picture, DT_On, [&](int32_t x, int32_t y) {
            return (std::min({x, y, width - 1 - x, height - 1 - y}) + phase) / period % 2 == 0;
        });
    } else if (OneIn(2)) {
        picture = Opposite(picture);
    }
    const auto padding = static_cast<uint8_t>(Among({0, 0xff, choices.Byte()}));
    for (LONG y = 0; y < height; ++y) {
        uint8_t* row = nullptr;
        Check(canvas.bitmap->GetWriteRowPtr(y, &row), canvas.bitmap);
        std::fill(row, row + (width + 7) / 8, padding);
        PutRow(picture, y, row);
    }
}

void World::PutRegion(Canvas& canvas) {
    const auto [width, height] = sizes_[OneIn(8)];
    ComPtr<IRegionOfInterest> region;
    switch (choices.Below(5)) {
        case 0:
            Say("no region ");
            break;
        case 1:
        case 2:
            Say("own region ");
            region = ComPtr<IRegionOfInterest>(MakeCounted<OwnRegion>(*this, width, height).get());
            break;
        case 3:
            Say("shape ");
            region = ShapeIn(*this, width, height);
            break;
        default: {
            Say("blob ");
            const auto blobs = Call(AnyCanvas().bitmap, &IBitmapProcess::FindBlobs, CT_8);
            const LONG count = Call(blobs, &IBlobs::get_Count);
            if (count > 0) region = Call(blobs, &IBlobs::get_Region, Below(count));
        }
    }
    Check(canvas.bitmap->put_RegionOfInterest(region.get()), canvas.bitmap);
    Require(Call(canvas.bitmap, &IBitmapProcess::get_RegionOfInterest).get() == region.get(), "region of interest");
    canvas.region.reset();
    if (region) canvas.region = PixelsOf(region.get(), canvas.picture.width(), canvas.picture.height());
}

// Another size.
void World::Create(Canvas& canvas) {
    const auto [width, height] = sizes_[OneIn(4)];
    Say("Create %d %d ", static_cast<int>(width), static_cast<int>(height));
    Check(canvas.bitmap->Create(width, height, 1), canvas.bitmap);
    canvas.picture = Picture(width, height);
    const auto region = Call(canvas.bitmap, &IBitmapProcess::get_RegionOfInterest);
    if (region) canvas.region = PixelsOf(region.get(), width, height);
}

// The methods that write pixels one by one or shape by shape: they know no region.
void World::Write(Canvas& canvas) {
    Picture& picture = canvas.picture;
    IBitmapProcess& bitmap = *canvas.bitmap.get();
    const auto how = static_cast<DrawType>(choices.Below(3));
    const LONG x = Below(picture.width()), y = Below(picture.height());
    const LONG x2 = x + Below(40), y2 = y + Below(20);
    const double radius = static_cast<double>(choices.Below(80)) / 8;
    const auto draw = [&](const char* name, HRESULT result, const auto& inside) {
        Say("%s %d %d %d %d %g how %d ", name, static_cast<int>(x), static_cast<int>(y), static_cast<int>(x2),
            static_cast<int>(y2), radius, static_cast<int>(how));
        Check(result, canvas.bitmap);
        Draw(picture, how, inside);
    };
    switch (choices.Below(9)) {
        case 0:
            return draw("DrawHorizontalLine", bitmap.DrawHorizontalLine(y, x - 3, x2, how),
                        [&](int32_t u, int32_t v) { return v == y && u >= x - 3 && u <= x2; });
        case 1:
            return draw("DrawRectangle", bitmap.DrawRectangle(x, y, x2, y2, how),
                        [&](int32_t u, int32_t v) { return v >= y && v <= y2 && u >= x && u <= x2; });
        case 2:
            return draw("DrawDisk", bitmap.DrawDisk(x, y, radius, how),
                        [&](int32_t u, int32_t v) { return (u - x) * (u - x) + (v - y) * (v - y) <= radius * radius; });
        case 3:
            Say("put_Bit %d %d ", static_cast<int>(x), static_cast<int>(y));
            Check(bitmap.put_Bit(x, y, how), canvas.bitmap);
            return picture.setBit(x, y, how != 0);
        case 4: {
            Say("GetWritePixelPtr %d %d ", static_cast<int>(x), static_cast<int>(y));
            const auto [byte, mask] = Call(canvas.bitmap, &IBitmapProcess::GetWritePixelPtr, x, y);
            *byte = static_cast<unsigned char>(*byte ^ mask);
            return picture.setBit(x, y, !picture.bit(x, y));
        }
        case 5:
            Say("Zero ");
            Check(bitmap.Zero(), canvas.bitmap);
            picture = Picture(picture.width(), picture.height());
            return;
        case 6:
            Say("One ");
            Check(bitmap.One(), canvas.bitmap);
            picture = Opposite(Picture(picture.width(), picture.height()));
            return;
        case 7: {
            Say("CreateFromBitmap ");
            const Operand other = AnyOperand();
            if (!other.picture.sameSize(picture)) return;
            Check(bitmap.CreateFromBitmap(other.bitmap.get()), canvas.bitmap);
            picture = other.picture;
            return;
        }
        default:
            return Create(canvas);
    }
}

// --------------------------------------------------------------------------------------------------------------- steps

void World::Compare(const Canvas& canvas) const {
    const Picture found = PixelsOf(canvas.bitmap.get());
    if (found == canvas.picture) return;
    const auto number = static_cast<int>(&canvas - canvases_.data());
    std::string text = "bitmap " + std::to_string(number) + " (" + std::to_string(found.width()) + " x " +
                       std::to_string(found.height()) + ")";
    if (!found.sameSize(canvas.picture)) throw Difference(text + " has another size");
    text += ", where + should be clear and - should be set:\n" + Drawn(canvas.picture, found);
    if (&canvas == target_) text += "before:\n" + Drawn(before_);
    if (canvas.region) text += "region:\n" + Drawn(*canvas.region);
    throw Difference(text);
}

void World::Step(uint64_t step) {
    choices.BeginStep(step);
    call_.clear();
    const size_t target = choices.Below(canvases_.size());
    Canvas& canvas = canvases_[target];
    Say("bitmap %d: ", static_cast<int>(target));
    try {
        // Operations leave little after a while.
        const int64_t count = canvas.picture.count();
        const bool dull = count == 0 || count == int64_t{canvas.picture.width()} * canvas.picture.height();
        if (choices.Chance(dull ? 200 : 40)) Fill(canvas);
        if (choices.Chance(24)) PutRegion(canvas);
        before_ = canvas.picture;
        target_ = &canvas;
        if (choices.Chance(24)) {
            Write(canvas);
        } else {
            const OperationOfBitmap& operation = Operations()[choices.Below(Operations().size())];
            Say("%s ", operation.name);
            operation.run(*this, canvas);
        }
        for (const Canvas& each : canvases_) Compare(each);
        const LONG x = Below(canvas.picture.width()), y = Below(canvas.picture.height());
        const LONG bit = Call(canvas.bitmap, &IBitmapProcess::get_Bit, x, y);
        Require(bit == canvas.picture.bit(x, y), "get_Bit", canvas.picture.bit(x, y), bit);
    } catch (const Error& error) {
        throw Difference(std::string("a call failed: ") + error.what());
    }
    if (verbose_) std::printf("step %d: %s\n", static_cast<int>(step), call_.c_str());
}

}  // namespace orlix::fuzz
