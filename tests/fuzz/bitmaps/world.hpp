// What a sequence works on: some bitmaps of the library, and for each of them the picture that it must show.
#pragma once

#include <orlix/client.hpp>

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "binary/connectivity.hpp"
#include "fuzz/bitmaps/picture.hpp"
#include "fuzz/choices.hpp"
#include "support/slow_components.hpp"
#include "support/special_numbers.hpp"

namespace orlix::fuzz {

// Something is not as the slow definitions have it; what() tells what.
struct Difference : std::runtime_error {
    using std::runtime_error::runtime_error;
};

struct Canvas {
    ComPtr<IBitmapProcess> bitmap;
    Picture picture;
    std::optional<Picture> region;  // its pixels; none: no region is put

    bool InRegion(int32_t x, int32_t y) const { return !region || region->bit(x, y); }
    Picture PixelsInRegion() const {
        return EachPixel<Picture>(picture.width(), picture.height(),
                                  [&](int32_t x, int32_t y) { return picture.bit(x, y) && InRegion(x, y); });
    }
};

// A second bitmap of a call: one of the world's, or a client's own with rows of another length.
struct Operand {
    ComPtr<IBitmap> bitmap;
    Picture picture;
};

// The 4 or 8 of a call, now and then something else.
struct AnyConnectivity {
    ConnectivityType type;
    Connectivity slow;  // unless it is something else
    bool legal() const { return type == CT_4 || type == CT_8; }
};

// Blobs that are kept while the bitmap in which they were found changes.
struct KeptBlobs {
    ComPtr<IBlobs> blobs;
    Picture foreground;
    Connectivity connectivity;
};

class World {
public:
    World(uint64_t seed, bool verbose);

    // One call of the library, or a few that write pixels. Throws Difference.
    void Step(uint64_t step);
    const std::string& call() const { return call_; }

    // For operations. What is drawn is said, so that a report shows it.
    Choices choices;
    void Say(const char* format, ...) __attribute__((format(printf, 2, 3)));
    LONG Below(LONG n) { return static_cast<LONG>(choices.Below(static_cast<size_t>(n))); }
    LONG Among(std::initializer_list<LONG> values) { return values.begin()[choices.Below(values.size())]; }
    bool OneIn(size_t n) { return choices.Below(n) == 0; }
    AnyConnectivity Connectivity();
    // How often, how far: mostly a little, now and then none, less than none, or without end.
    LONG Amount();
    Operand AnyOperand();
    Canvas& AnyCanvas() { return canvases_[choices.Below(canvases_.size())]; }

    // The call must have succeeded, and the pixels of the canvas's region take `result()`; or else, for arguments that
    // make no sense, it must have failed and changed nothing.
    void ExpectResult(Canvas& canvas, HRESULT result, bool legal, const std::function<Picture()>& picture);
    void Require(bool holds, const char* what, double expected = 0, double found = 0) const;
    std::optional<KeptBlobs> kept;

private:
    void Fill(Canvas& canvas);
    void PutRegion(Canvas& canvas);
    void Write(Canvas& canvas);
    void Create(Canvas& canvas);
    void Compare(const Canvas& canvas) const;

    bool verbose_;
    std::string call_;
    std::array<std::pair<LONG, LONG>, 2> sizes_;  // width, height
    std::array<Canvas, 3> canvases_;
    const Canvas* target_ = nullptr;  // of the present step
    Picture before_;                  // what it showed
};

// The operations of IBitmapProcess.
struct OperationOfBitmap {
    const char* name;
    void (*run)(World& world, Canvas& canvas);
};
std::span<const OperationOfBitmap> Operations();

// Everything of the blobs of a foreground that has a slow definition. The region is the one in which they were found.
void CheckBlobs(World& world, const KeptBlobs& found, const std::optional<Picture>& region);
// That they are still the same.
void CheckLabels(World& world, const KeptBlobs& found);

// The pixels of a region of interest in an image of a size, run by run.
Picture PixelsOf(IRegionOfInterest* region, LONG width, LONG height);
Picture PixelsOf(IBitmap* bitmap);

}  // namespace orlix::fuzz
