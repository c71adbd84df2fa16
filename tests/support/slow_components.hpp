// Slow definitions of what is connected in a binary image. A Plane is any image with Plane(width, height) of clear
// pixels, width(), height(), bit(x, y), setBit(x, y, bit) and ==.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <span>
#include <utility>
#include <vector>

#include "binary/connectivity.hpp"

namespace orlix {

inline constexpr Connectivity kConnectivities[] = {Connectivity::Four, Connectivity::Eight};

// A pixel, or a step to one.
struct Place {
    int32_t x, y;
    friend bool operator==(const Place&, const Place&) = default;
};

// Steps to the neighbours, in raster order.
inline std::span<const Place> StepsOf(Connectivity connectivity) {
    static constexpr Place kFour[] = {{0, -1}, {-1, 0}, {1, 0}, {0, 1}};
    static constexpr Place kEight[] = {{-1, -1}, {0, -1}, {1, -1}, {-1, 0}, {1, 0}, {-1, 1}, {0, 1}, {1, 1}};
    if (connectivity == Connectivity::Four) return kFour;
    return kEight;
}

template <class Plane>
bool IsInside(const Plane& plane, int32_t x, int32_t y) {
    return x >= 0 && y >= 0 && x < plane.width() && y < plane.height();
}
template <class Plane>
bool IsSet(const Plane& plane, int32_t x, int32_t y) {
    return IsInside(plane, x, y) && plane.bit(x, y);
}
template <class Plane>
bool TouchesEdge(const Plane& plane, const std::vector<Place>& pixels) {
    return std::any_of(pixels.begin(), pixels.end(), [&](const Place& at) {
        return at.x == 0 || at.y == 0 || at.x == plane.width() - 1 || at.y == plane.height() - 1;
    });
}

// A new image with rule(x, y) in each pixel.
template <class Plane, class Rule>
Plane EachPixel(int32_t width, int32_t height, const Rule& rule) {
    Plane plane(width, height);
    for (int32_t y = 0; y < height; ++y)
        for (int32_t x = 0; x < width; ++x)
            if (rule(x, y)) plane.setBit(x, y, true);
    return plane;
}
template <class Plane>
Plane Opposite(const Plane& image) {
    return EachPixel<Plane>(image.width(), image.height(), [&](int32_t x, int32_t y) { return !image.bit(x, y); });
}
// The image, or its complement, within a ring of pixels of the given kind.
template <class Plane>
Plane Ringed(const Plane& image, bool complement, bool ring) {
    return EachPixel<Plane>(image.width() + 2, image.height() + 2, [&](int32_t x, int32_t y) {
        return IsInside(image, x - 1, y - 1) ? image.bit(x - 1, y - 1) != complement : ring;
    });
}

// The components by following neighbours, in raster order of their first pixels; -1 in the background.
struct SlowComponents {
    int32_t width;
    std::vector<int> label;
    std::vector<std::vector<Place>> pixels;  // of each component

    template <class Plane>
    SlowComponents(const Plane& image, Connectivity connectivity)
        : width(image.width()), label(static_cast<size_t>(image.width()) * static_cast<size_t>(image.height()), -1) {
        const auto steps = StepsOf(connectivity);
        for (int32_t y = 0; y < image.height(); ++y)
            for (int32_t x = 0; x < image.width(); ++x) {
                if (!image.bit(x, y) || At(x, y) >= 0) continue;
                const int number = static_cast<int>(pixels.size());
                auto& found = pixels.emplace_back();
                found.push_back({x, y});
                At(x, y) = number;
                for (size_t i = 0; i < found.size(); ++i) {
                    const auto [px, py] = found[i];
                    for (const auto& [dx, dy] : steps)
                        if (IsSet(image, px + dx, py + dy) && At(px + dx, py + dy) < 0) {
                            At(px + dx, py + dy) = number;
                            found.push_back({px + dx, py + dy});
                        }
                }
            }
    }
    int& At(int32_t x, int32_t y) {
        return label[static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x)];
    }
    int At(int32_t x, int32_t y) const {
        return label[static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x)];
    }
};

// The components of which `keep` says so, given their pixels.
template <class Plane, class Keep>
Plane SlowChoice(const Plane& image, Connectivity connectivity, const Keep& keep) {
    Plane kept(image.width(), image.height());
    for (const auto& pixels : SlowComponents(image, connectivity).pixels)
        if (keep(pixels))
            for (const auto& [x, y] : pixels) kept.setBit(x, y, true);
    return kept;
}

template <class Plane>
Plane SlowReconstruct(const Plane& seeds, const Plane& image, Connectivity connectivity) {
    return SlowChoice(image, connectivity, [&](const auto& pixels) {
        return std::any_of(pixels.begin(), pixels.end(), [&](const Place& at) { return seeds.bit(at.x, at.y); });
    });
}
template <class Plane>
Plane SlowClearBorder(const Plane& image, Connectivity connectivity) {
    return SlowChoice(image, connectivity, [&](const auto& pixels) { return !TouchesEdge(image, pixels); });
}
template <class Plane>
Plane SlowKeepArea(const Plane& image, Connectivity connectivity, int64_t least, int64_t most) {
    return SlowChoice(image, connectivity, [&](const auto& pixels) {
        const auto area = static_cast<int64_t>(pixels.size());
        return area >= least && area <= most;
    });
}
// Holes of at most `most` pixels.
template <class Plane>
Plane SlowFillHoles(const Plane& image, Connectivity connectivity, int64_t most) {
    const Plane background = Opposite(image);
    return Opposite(SlowChoice(background, Dual(connectivity), [&](const auto& pixels) {
        return TouchesEdge(background, pixels) || static_cast<int64_t>(pixels.size()) > most;
    }));
}

// A pixel lies outside the hull of others if a line through it has all of them on one side: the line may be turned
// until it passes through a point of the hull. The first and last pixels of each row have the same hull as all.
template <class Plane>
Plane SlowHulls(const Plane& image, Connectivity connectivity) {
    Plane hulls(image.width(), image.height());
    for (const auto& pixels : SlowComponents(image, connectivity).pixels) {
        std::map<int32_t, std::pair<int32_t, int32_t>> rows;
        for (const auto& [x, y] : pixels) {
            auto& [first, last] = rows.try_emplace(y, x, x).first->second;
            first = std::min(first, x);
            last = std::max(last, x);
        }
        std::vector<Place> ends;
        for (const auto& [y, row] : rows) ends.insert(ends.end(), {{row.first, y}, {row.second, y}});
        for (int32_t y = rows.begin()->first; y <= rows.rbegin()->first; ++y)
            for (int32_t x = 0; x < image.width(); ++x) {
                const bool outside = std::any_of(ends.begin(), ends.end(), [&](const Place& a) {
                    return std::all_of(ends.begin(), ends.end(), [&](const Place& b) {
                        const int32_t ax = a.x - x, ay = a.y - y, bx = b.x - x, by = b.y - y;
                        const int32_t turn = ax * by - ay * bx;
                        return turn > 0 || (turn == 0 && ax * bx + ay * by > 0);
                    });
                });
                if (!outside) hulls.setBit(x, y, true);
            }
    }
    return hulls;
}

}  // namespace orlix
