// Small binary images for tests of components and shapes.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "binary/row_runs.hpp"

namespace orlix {

struct Sketch {
    int32_t width = 0;
    int32_t height = 0;
    std::vector<bool> pixels;

    // Rows of '#' and '.', separated by '|'.
    static Sketch Of(const std::string& drawing) {
        Sketch sketch;
        sketch.width = static_cast<int32_t>(std::min(drawing.find('|'), drawing.size()));
        for (const char c : drawing)
            if (c != '|') sketch.pixels.push_back(c == '#');
        sketch.height = static_cast<int32_t>(sketch.pixels.size()) / sketch.width;
        return sketch;
    }
    static Sketch Noise(int32_t width, int32_t height, double density, std::mt19937& random) {
        Sketch sketch{width, height, {}};
        for (int64_t i = 0; i < int64_t{width} * height; ++i)
            sketch.pixels.push_back(static_cast<double>(random()) < density * 4294967296.0);
        return sketch;
    }

    size_t Index(int32_t x, int32_t y) const {
        return static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x);
    }
    bool Inside(int32_t x, int32_t y) const { return x >= 0 && x < width && y >= 0 && y < height; }
    bool At(int32_t x, int32_t y) const { return Inside(x, y) && pixels[Index(x, y)]; }
    int64_t Count() const { return std::count(pixels.begin(), pixels.end(), true); }

    // Pixel by pixel.
    RunTable Table() const {
        RunTable table;
        table.width = width;
        table.height = height;
        for (int32_t y = 0; y < height; ++y) {
            for (int32_t x = 0; x < width; ++x)
                if (At(x, y)) {
                    if (At(x - 1, y))
                        table.runs.back().stop = x;
                    else
                        table.runs.push_back({x, x});
                }
            table.ends.push_back(static_cast<uint32_t>(table.runs.size()));
        }
        return table;
    }

    std::string Drawing() const {
        std::string drawing;
        for (int32_t y = 0; y < height; ++y, drawing += '\n')
            for (int32_t x = 0; x < width; ++x) drawing += At(x, y) ? '#' : '.';
        return drawing;
    }
};

}  // namespace orlix
