#include "leptonica_bench.hpp"

#include <benchmark/benchmark.h>
#include <leptonica/allheaders.h>

namespace orlix::bench {
namespace {

Pix* PixOf(const uint8_t* bits, int size) {
    Pix* pix = pixCreate(size, size, 1);
    for (int y = 0; y < size; ++y)
        for (int x = 0; x < size; ++x)
            if (bits[(y * size + x) / 8] >> (7 - x % 8) & 1) pixSetPixel(pix, x, y, 1);
    return pix;
}

}  // namespace

void RegisterLeptonica(const std::string& picture, const uint8_t* bits, int size) {
    const auto in = [&](const std::string& name, const auto& operation) {
        const std::string full = name + " (" + picture + ")/bits/" + std::to_string(size) + "/leptonica";
        benchmark::RegisterBenchmark(full.c_str(), [=](benchmark::State& state) {
            Pix* from = PixOf(bits, size);
            Pix* to = pixCreate(size, size, 1);
            for (auto _ : state) operation(from, to);
            pixDestroy(&from);
            pixDestroy(&to);
            state.SetItemsProcessed(state.iterations() * int64_t{size} * size);
            state.SetBytesProcessed(state.iterations() * int64_t{size} * size / 8);
        });
    };
    in("and", [](Pix* from, Pix* to) { pixAnd(to, to, from); });
    in("invert", [](Pix*, Pix* to) { pixInvert(to, to); });
    in("count", [](Pix* from, Pix*) {
        l_int32 count = 0;
        pixCountPixels(from, &count, nullptr);
        benchmark::DoNotOptimize(count);
    });
    for (const int side : {3, 31, 101})
        in("erode " + std::to_string(side) + "x" + std::to_string(side),
           [=](Pix* from, Pix* to) { pixErodeBrick(to, from, side, side); });
    in("erode 31x31, decomposed", [](Pix* from, Pix* to) { pixErodeCompBrick(to, from, 31, 31); });
    for (const int radius : {5, 15})
        in("erode disk " + std::to_string(radius), [=](Pix* from, Pix* to) {
            Pix* disk = pixCreate(2 * radius + 1, 2 * radius + 1, 1);
            for (int y = -radius; y <= radius; ++y)
                for (int x = -radius; x <= radius; ++x)
                    if (x * x + y * y <= radius * radius) pixSetPixel(disk, x + radius, y + radius, 1);
            Sel* sel = selCreateFromPix(disk, radius, radius, "disk");
            pixErode(to, from, sel);
            selDestroy(&sel);
            pixDestroy(&disk);
        });
}

}  // namespace orlix::bench
