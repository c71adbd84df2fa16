#include "pictures.hpp"

#include <algorithm>
#include <cmath>
#include <map>
#include <random>

namespace orlix::bench {
namespace {

// Levels in units of 1/257 grey level.
std::vector<float> Levels(int size) {
    std::mt19937 random(7);
    std::uniform_real_distribution<float> unit(0.0f, 1.0f);
    std::normal_distribution<float> noise(0.0f, 5.0f);
    const size_t n = static_cast<size_t>(size);
    std::vector<float> levels(n * n);
    for (size_t y = 0; y < n; ++y)
        for (size_t x = 0; x < n; ++x)
            levels[y * n + x] = 70.0f + 20.0f * static_cast<float>(x) / static_cast<float>(n) +
                                10.0f * static_cast<float>(y) / static_cast<float>(n);
    for (int grain = 0; grain < size * size / 3000; ++grain) {
        const float cx = unit(random) * static_cast<float>(size), cy = unit(random) * static_cast<float>(size);
        const float radius = 4.0f + 16.0f * unit(random);
        const int reach = static_cast<int>(radius) + 3;
        for (int dy = -reach; dy <= reach; ++dy)
            for (int dx = -reach; dx <= reach; ++dx) {
                const int x = static_cast<int>(cx) + dx, y = static_cast<int>(cy) + dy;
                if (x < 0 || y < 0 || x >= size || y >= size) continue;
                const float inside = radius - std::hypot(static_cast<float>(dx), static_cast<float>(dy));
                float& level = levels[static_cast<size_t>(y) * n + static_cast<size_t>(x)];
                level = std::max(level, 80.0f + 100.0f * std::clamp(inside / 2.0f, 0.0f, 1.0f));
            }
    }
    for (float& level : levels) level = std::clamp(level + noise(random), 0.0f, 255.0f);
    return levels;
}

}  // namespace

template <class T>
const std::vector<T>& Picture(int size) {
    static std::map<int, std::vector<T>> pictures;
    std::vector<T>& picture = pictures[size];
    if (picture.empty())
        for (const float level : Levels(size))
            picture.push_back(static_cast<T>(std::is_same_v<T, uint16_t> ? 257.0f * level : level));
    return picture;
}

template const std::vector<uint8_t>& Picture(int);
template const std::vector<uint16_t>& Picture(int);
template const std::vector<float>& Picture(int);

}  // namespace orlix::bench
