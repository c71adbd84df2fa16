// Slow definitions of thinning and of what is done with skeletons.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "support/slow_components.hpp"

namespace orlix {

// In a ringed plane: whether the pixel's removal changes neither the components of the foreground nor those of the
// background around it. Both are counted, by the definition of T. Y. Kong and A. Rosenfeld (1989): one component of
// neighbours in the 3x3 pixels that touches the pixel in its own connectivity, for either.
template <class Plane>
bool SlowSimple(const Plane& plane, int32_t x, int32_t y, Connectivity connectivity) {
    static const auto tables = [] {
        std::array<std::array<bool, 512>, 2> simple;
        const auto touching = [](const Plane& around, Connectivity kind) {
            const auto steps = StepsOf(kind);
            int count = 0;
            for (const auto& pixels : SlowComponents(around, kind).pixels)
                count += std::any_of(pixels.begin(), pixels.end(), [&](const Place& at) {
                    return std::find(steps.begin(), steps.end(), Place{at.x - 1, at.y - 1}) != steps.end();
                });
            return count;
        };
        for (uint32_t bits = 0; bits < 512; ++bits) {
            Plane set(3, 3), clear(3, 3);
            for (int32_t i = 0; i < 9; ++i)
                if (i != 4) (bits >> i & 1 ? set : clear).setBit(i % 3, i / 3, true);
            for (size_t k = 0; k < 2; ++k)
                simple[k][bits] =
                    touching(set, kConnectivities[k]) == 1 && touching(clear, Dual(kConnectivities[k])) == 1;
        }
        return simple;
    }();
    uint32_t bits = 0;
    for (int32_t i = 0; i < 9; ++i) bits |= uint32_t{plane.bit(x + i % 3 - 1, y + i / 3 - 1)} << i;
    return tables[connectivity == Connectivity::Eight][bits];
}

template <class Plane>
std::vector<Place> SlowNeighbours(const Plane& plane, int32_t x, int32_t y, Connectivity connectivity) {
    std::vector<Place> found;
    for (const auto& [dx, dy] : StepsOf(connectivity))
        if (IsSet(plane, x + dx, y + dy)) found.push_back({x + dx, y + dy});
    return found;
}

// One step of a pass, in a plane with a ring that stays.
template <class Plane>
bool SlowThinningStep(Plane& plane, Connectivity connectivity, const Place& side, bool removesEnds) {
    const Plane before = plane;
    for (int32_t y = 1; y < plane.height() - 1; ++y)
        for (int32_t x = 1; x < plane.width() - 1; ++x) {
            if (!before.bit(x, y) || before.bit(x + side.x, y + side.y)) continue;
            if (!SlowSimple(before, x, y, connectivity)) continue;
            const auto neighbours = SlowNeighbours(before, x, y, connectivity);
            // Opposite: on the other side of the line through the pixel across the direction.
            const bool opposite = (neighbours[0].x - x) * side.x + (neighbours[0].y - y) * side.y < 0;
            if (neighbours.size() > 1 || (removesEnds && opposite)) plane.setBit(x, y, false);
        }
    return plane != before;
}

template <class Plane>
void SlowPasses(Plane& plane, Connectivity connectivity, bool removesEnds, int64_t passes) {
    for (bool changed = true; changed && passes > 0; --passes) {
        changed = false;
        for (const Place& side : {Place{0, -1}, Place{0, 1}, Place{1, 0}, Place{-1, 0}})
            changed |= SlowThinningStep(plane, connectivity, side, removesEnds);
    }
}

template <class Plane>
Plane SlowThin(const Plane& image, Connectivity connectivity, int64_t passes) {
    Plane plane = Ringed(image, false, false);
    SlowPasses(plane, connectivity, false, passes);
    return EachPixel<Plane>(image.width(), image.height(),
                            [&](int32_t x, int32_t y) { return plane.bit(x + 1, y + 1); });
}
template <class Plane>
Plane SlowThicken(const Plane& image, Connectivity connectivity, int64_t passes) {
    Plane background = Ringed(image, true, true);
    SlowPasses(background, Dual(connectivity), true, passes);
    return EachPixel<Plane>(image.width(), image.height(),
                            [&](int32_t x, int32_t y) { return !background.bit(x + 1, y + 1); });
}

// Looks for all branches anew after each removal.
template <class Plane>
Plane SlowPrune(const Plane& image, Connectivity connectivity, int64_t longest) {
    Plane plane = image;
    for (;;) {
        std::optional<std::vector<Place>> shortest;
        Place junction = {};
        for (int32_t y = 0; y < plane.height(); ++y)
            for (int32_t x = 0; x < plane.width(); ++x) {
                if (!plane.bit(x, y) || SlowNeighbours(plane, x, y, connectivity).size() != 1) continue;
                std::vector<Place> branch = {{x, y}};
                Place at = SlowNeighbours(plane, x, y, connectivity)[0];
                auto next = SlowNeighbours(plane, at.x, at.y, connectivity);
                for (; next.size() == 2; next = SlowNeighbours(plane, at.x, at.y, connectivity)) {
                    const Place before = branch.back();
                    branch.push_back(at);
                    at = next[next[0] == before ? 1 : 0];
                }
                if (next.size() < 3 || static_cast<int64_t>(branch.size()) > longest) continue;
                if (shortest && shortest->size() <= branch.size()) continue;
                shortest = branch;
                junction = at;
            }
        if (!shortest) return plane;
        for (const auto& [x, y] : *shortest) plane.setBit(x, y, false);
        const auto [x, y] = junction;
        if (SlowNeighbours(plane, x, y, connectivity).size() == 2 &&
            SlowSimple(Ringed(plane, false, false), x + 1, y + 1, connectivity))
            plane.setBit(x, y, false);
    }
}

}  // namespace orlix
