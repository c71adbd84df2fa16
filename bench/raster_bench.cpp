// The raster surface, compared with a plain copy of the same number of 32-bit pixels and with OpenCV's resize where
// installed, on one thread: a window of 1920 x 1080 onto a picture of 4096 x 4096. OpenCV's results are made 32-bit
// pixels by its colour conversion. "live": images shown 1:1, as they were or after a change; "read": as they were, but
// the pixels that are shown have been copied into the first cache, a row at a time, as a change costs at least.
#include <benchmark/benchmark.h>

#include <cstring>
#include <functional>
#include <memory>

#ifdef ORLIX_BENCH_OPENCV
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#endif

#include "display/displayed_image.hpp"
#include "display/memory_surface.hpp"
#include "display/raster_surface.hpp"
#include "image/pixel_buffer.hpp"
#include "pictures.hpp"

namespace orlix::bench {
namespace {

constexpr int32_t kWidth = 1920, kHeight = 1080, kSize = 4096;

enum class Colors { Ramp, Grey, Table };

std::vector<uint32_t> TableOf(Colors colors) {
    std::vector<uint32_t> table(256);
    for (uint32_t i = 0; i < 256; ++i)
        table[i] = colors == Colors::Ramp   ? i * 0x010101u
                   : colors == Colors::Grey ? i / 2 * 0x010101u
                                            : i << 16 | (255 - i) << 8 | i / 3;
    return table;
}

void Register(const std::string& operation, const std::string& who, const std::function<void()>& draw) {
    benchmark::RegisterBenchmark(Name<uint8_t>(operation, kSize, who).c_str(), [draw](benchmark::State& state) {
        for (auto _ : state) {
            draw();
            benchmark::ClobberMemory();
        }
        state.SetItemsProcessed(state.iterations() * int64_t{kWidth} * kHeight);
    })->Unit(benchmark::kMicrosecond);
}

struct Case {
    const char* name;
    Rectangle source;
};
constexpr Case kCases[] = {
    {"1:1", {1000, 1500, kWidth, kHeight}}, {"4096x2304", {0, 800, 4096, 2304}}, {"3840x2160", {100, 800, 3840, 2160}},
    {"1000x562", {100, 800, 1000, 562}},    {"100x56", {100, 800, 100, 56}},
};

void RegisterRaster() {
    static std::vector<uint32_t> surface(size_t{kWidth} * kHeight), other(surface.size());
    static const std::vector<uint8_t>& picture = Picture<uint8_t>(kSize);
    static const std::vector<uint32_t> tables[] = {TableOf(Colors::Ramp), TableOf(Colors::Grey),
                                                   TableOf(Colors::Table)};
    Register("window", "memcpy", [] { std::memcpy(surface.data(), other.data(), surface.size() * 4); });
    for (const Case& c : kCases) {
        const auto draw = [](const Case& drawn, RasterPicture::Layout layout, size_t table, Scaling scaling) {
            // In a buffer like an image's, with large pages where the system has them.
            const bool pixels = layout == RasterPicture::Layout::Pixels;
            static const PixelBuffer colors = [] {
                PixelBuffer all = PixelBuffer::Unset(picture.size() * sizeof(uint32_t));
                for (size_t i = 0; i < picture.size(); ++i)
                    reinterpret_cast<uint32_t*>(all.data())[i] = picture[i] * 0x00010305u & 0x00ffffff;
                return all;
            }();
            const RasterPicture view{layout,
                                     pixels ? colors.data() : picture.data(),
                                     pixels ? 4 * kSize : kSize,
                                     kSize,
                                     kSize,
                                     tables[table].data()};
            RasterSurface(surface.data(), kWidth, kWidth, kHeight)
                .Draw(view, drawn.source, {0, 0, kWidth, kHeight}, scaling);
        };
        using Layout = RasterPicture::Layout;
        for (const Scaling scaling : {Scaling::Nearest, Scaling::Smooth}) {
            const std::string name = c.name + std::string(scaling == Scaling::Nearest ? " nearest" : " smooth");
            Register(name, "ramp", [=] { draw(c, Layout::Levels, 0, scaling); });
            Register(name, "greys", [=] { draw(c, Layout::Levels, 1, scaling); });
            Register(name, "colours", [=] { draw(c, Layout::Levels, 2, scaling); });
            Register(name, "32 bits", [=] { draw(c, Layout::Pixels, 0, scaling); });
        }
#ifdef ORLIX_BENCH_OPENCV
        const auto resize = [](const Case& drawn, int how) {
            const cv::Mat image(kSize, kSize, CV_8UC1, const_cast<uint8_t*>(picture.data()));
            const cv::Rect part(static_cast<int>(drawn.source.x), static_cast<int>(drawn.source.y),
                                static_cast<int>(drawn.source.width), static_cast<int>(drawn.source.height));
            static cv::Mat grey;
            cv::Mat to(kHeight, kWidth, CV_8UC4, surface.data());
            cv::resize(image(part), grey, cv::Size(kWidth, kHeight), 0, 0, how);
            cv::cvtColor(grey, to, cv::COLOR_GRAY2BGRA);
        };
        const bool grows = c.source.width <= kWidth;
        Register(c.name + std::string(" nearest"), "opencv", [=] { resize(c, cv::INTER_NEAREST); });
        Register(c.name + std::string(" smooth"), "opencv",
                 [=] { resize(c, grows ? cv::INTER_LINEAR : cv::INTER_AREA); });
#endif
    }
}

template <class T>
void RegisterLive(LONG dataType) {
    for (const LONG bands : {1, 3})
        for (const std::string who : {"unchanged", "unchanged, read", "changed"}) {
            const std::string operation = std::string(bands == 1 ? "live, " : "live colour, ") + NameOf<T>();
            benchmark::RegisterBenchmark(Name<uint8_t>(operation, kSize, who).c_str(), [=](benchmark::State& state) {
                Changes counts;
                const std::unique_ptr<DisplayedImage> image = DisplayedImage::Make(dataType, counts);
                image->store().Create(kSize, kSize, bands, dataType, true);
                for (LONG band = 0; band < bands; ++band)
                    std::memcpy(image->store().base(band), Picture<T>(kSize).data(),
                                Picture<T>(kSize).size() * sizeof(T));
                image->ContentReplaced();
                if (bands == 3) image->PutBandToDisplay(BI_AllBands);
                image->PutDisplayRange(0, std::is_same_v<T, uint16_t> ? 65535 : 255);
                std::vector<uint32_t> pixels(size_t{kWidth} * kHeight);
                MemorySurface surface(RasterSurface(pixels.data(), kWidth, kWidth, kHeight), Scaling::Nearest);
                const Rectangle shown = {1000, 1500, kWidth, kHeight};
                image->Bitmap();
                image->Show(shown);  // memory is taken now
                const bool changes = who == "changed";
                std::vector<T> row(kWidth);
                for (auto _ : state) {
                    if (who == "unchanged, read")
                        for (int64_t y = shown.y; y < shown.bottom(); ++y)
                            for (LONG band = 0; band < bands; ++band) {
                                const auto* const from = reinterpret_cast<const T*>(image->store().base(band));
                                std::memcpy(row.data(), from + y * kSize + shown.x, row.size() * sizeof(T));
                                benchmark::DoNotOptimize(row.data());
                                benchmark::ClobberMemory();
                            }
                    if (changes) image->PutDisplayDirty(true);
                    const DisplayBitmap& bitmap = image->Bitmap();
                    image->Show(shown);
                    surface.Draw(bitmap, image->displayState().colors, shown, {0, 0, kWidth, kHeight});
                }
                state.SetItemsProcessed(state.iterations() * int64_t{kWidth} * kHeight);
            });
        }
}

}  // namespace
}  // namespace orlix::bench

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    orlix::bench::RegisterRaster();
    orlix::bench::RegisterLive<uint8_t>(DT_BYTE);
    orlix::bench::RegisterLive<uint16_t>(DT_WORD);
    orlix::bench::RegisterLive<float>(DT_Float);
    benchmark::RunSpecifiedBenchmarks();
}
