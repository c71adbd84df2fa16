// The display of one pixel type. Only displayed_image.cpp includes this.
#pragma once

#include <algorithm>
#include <vector>

#include "display/display_levels.hpp"
#include "display/displayed_image.hpp"
#include "display/raster_kernels.hpp"
#include "process/frame.hpp"

namespace orlix {

template <class Image>
class DisplayFrame final : public Frame<Image, DisplayedImage> {
    using Base = Frame<Image, DisplayedImage>;

public:
    using typename Base::Pixel;

    using Base::Base;

    void GetDisplayRange(double& lower, double& upper) const override {
        lower = lower_;
        upper = upper_;
    }

    void PutDisplayRange(double lower, double upper) override {
        lower_ = TruncateToPixel<Pixel>(lower);
        upper_ = TruncateToPixel<Pixel>(upper);
        this->PutDisplayDirty(true);
    }

    HRESULT SnapDisplayRange(double trimLeft, double trimRight, bool roundOut) override {
        constexpr LONG kBins = 1024;
        const auto range = TrimmedRange(this->Select(this->bandToDisplay()), trimLeft, trimRight, kBins);
        if (!range) return S_FALSE;
        PutDisplayRange(range->lower, range->upper);
        if (roundOut) RoundOut();
        return S_OK;
    }

    void EqualizeColorTable() override {
        constexpr size_t kPart = 512;  // the levels stay in the first cache
        const Selection<Pixel> at =
            this->Select(this->bandToDisplay());  // before the range is read: clients may put it
        const LevelMapping<Pixel> levelsOf(lower_, upper_);
        const Pixel least = std::min(lower_, upper_);
        const Pixel most = std::max(lower_, upper_);
        uint64_t counts[2][256] = {};  // of pixels outside, inside
        at.ForEachRun([&](const Pixel* pixels, size_t n, auto...) {
            uint8_t levels[kPart];
            for (size_t done = 0; done < n; done += kPart) {
                const size_t part = std::min(n - done, kPart);
                levelsOf(pixels + done, part, levels);
                for (size_t i = 0; i < part; ++i) {
                    const Pixel p = pixels[done + i];
                    ++counts[p >= least && p <= most][levels[i]];
                }
            }
        });
        this->Equalize(counts[1]);
    }

private:
    double ShownValue(int32_t x, int32_t y) override {
        return static_cast<double>(this->image_.view(this->ShownBand()).row(y)[x]);
    }

    void ComputeLevels(const DisplayBitmap& bitmap) override {
        if (bitmap.bitsPerPixel == 32) return ComputeColors(bitmap);
        const LevelMapping<Pixel> levelsOf(lower_, upper_);
        const auto width = static_cast<size_t>(bitmap.width);
        const PixelView<Pixel> view = this->image_.view(this->ShownBand());
        for (int32_t y = 0; y < bitmap.height; ++y) {
            uint8_t* const levels = bitmap.row(y);
            levelsOf(view.row(y), width, levels);
            std::fill(levels + width, levels + bitmap.rowStride, uint8_t{0});
        }
    }

    void ComputeColors(const DisplayBitmap& bitmap) {
        const LevelMapping<Pixel> levelsOf(lower_, upper_);
        const auto width = static_cast<size_t>(bitmap.width);
        const ExpandPlanesFn join = Choose(kExpandPlanes);
        const PixelView<Pixel> bands[] = {this->image_.view(0), this->image_.view(1), this->image_.view(2)};
        const PointOperation<uint8_t> colors[] = {this->ColorsOf(0), this->ColorsOf(1), this->ColorsOf(2)};
        std::vector<uint8_t> levels(3 * width);
        for (int32_t y = 0; y < bitmap.height; ++y) {
            for (size_t channel = 0; channel < 3; ++channel) {
                uint8_t* const plane = levels.data() + channel * width;
                levelsOf(bands[channel].row(y), width, plane);
                colors[channel](plane, width);
            }
            join(reinterpret_cast<uint32_t*>(bitmap.row(y)), levels.data(), levels.data() + width,
                 levels.data() + 2 * width, width);
        }
    }

    void RoundOut() {
        if (lower_ >= 0 && upper_ <= 1) return PutDisplayRange(0, 1);
        for (const double most : {255.0, 1023.0, 4095.0, 65535.0})
            if (upper_ <= most) return PutDisplayRange(0, most);
    }

    // Float images are mostly cast from bytes, and keep their grey levels.
    Pixel lower_ = kIsFloat<Pixel> ? 0 : kTypeMinimum<Pixel>;
    Pixel upper_ = kIsFloat<Pixel> ? 255 : kTypeMaximum<Pixel>;
};

}  // namespace orlix
