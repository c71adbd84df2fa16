// The length of a skeleton by its definition (see SBinaryMeasurements).
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <map>
#include <set>
#include <utility>
#include <vector>

#include "support/slow_components.hpp"

namespace orlix {

// From the pixels of one component and its skeleton: all branches as lists of points.
template <class Plane>
class SlowSkeletonLength {
    using Cell = std::pair<int32_t, int32_t>;
    struct At {
        double x, y;
    };

public:
    SlowSkeletonLength(const Plane& blob, const Plane& plane, double xScale, double yScale)
        : blob_(blob), sx_(xScale), sy_(yScale) {
        for (int32_t y = 0; y < blob.height(); ++y)
            for (int32_t x = 0; x < blob.width(); ++x) {
                if (!plane.bit(x, y)) continue;
                std::set<Cell>& links = links_[{x, y}];
                for (const auto& [dx, dy] : StepsOf(Connectivity::Eight))
                    if (IsSet(plane, x + dx, y + dy) &&
                        (dx == 0 || dy == 0 || (!plane.bit(x + dx, y) && !plane.bit(x, y + dy))))
                        links.insert({x + dx, y + dy});
            }
    }

    double Length() const {
        if (links_.size() == 1) return Chords(links_.begin()->first);
        double length = 0;
        std::set<std::pair<Cell, Cell>> walked;
        const auto walk = [&](const Cell& from, const Cell& next) {
            std::vector<Cell> branch = {from, next};
            while (branch.back() != from && links_.at(branch.back()).size() == 2) {
                const std::set<Cell>& links = links_.at(branch.back());
                const Cell before = branch[branch.size() - 2];
                branch.push_back(*links.begin() == before ? *links.rbegin() : *links.begin());
            }
            for (size_t i = 1; i < branch.size(); ++i) {
                walked.insert({branch[i - 1], branch[i]});
                walked.insert({branch[i], branch[i - 1]});
            }
            return branch;
        };
        for (const auto& [cell, links] : links_) {
            if (links.size() == 2) continue;
            for (const Cell& next : links) {
                const bool counted = walked.contains({cell, next});
                const std::vector<Cell> branch = walk(cell, next);
                if (!counted) length += Smoothed(branch, false);
                if (links.size() == 1) length += ToTheEdge(cell, branch[std::min<size_t>(4, branch.size() - 1)]);
            }
        }
        if (walked.empty()) {
            const auto& [cell, links] = *links_.begin();
            length = Smoothed(walk(cell, *links.begin()), true);
        }
        return length;
    }

private:
    double Distance(const At& a, const At& b) const { return std::hypot((a.x - b.x) * sx_, (a.y - b.y) * sy_); }

    double Smoothed(const std::vector<Cell>& branch, bool closed) const {
        std::vector<At> points;
        for (const auto& [x, y] : branch) points.push_back({1.0 * x, 1.0 * y});
        if (closed) points.pop_back();
        const size_t n = points.size();
        for (int pass = 0; pass < 4; ++pass) {
            const std::vector<At> old = points;
            for (size_t i = closed ? 0 : 1; i < (closed ? n : n - 1); ++i) {
                const At &a = old[(i + n - 1) % n], &b = old[i], &c = old[(i + 1) % n];
                points[i] = {(a.x + 2 * b.x + c.x) / 4, (a.y + 2 * b.y + c.y) / 4};
            }
        }
        double length = closed ? Distance(points.back(), points.front()) : 0;
        for (size_t i = 1; i < n; ++i) length += Distance(points[i - 1], points[i]);
        return length;
    }

    // In steps of 1/840 of the way from `back` to the end: all crossings with the sides of pixels are at whole ones, as
    // no more than four columns and rows lie between them. Half a step on, the point is inside a pixel.
    double ToTheEdge(const Cell& end, const Cell& back) const {
        const int32_t dx = end.first - back.first, dy = end.second - back.second;
        for (int64_t i = 0;; ++i) {
            const auto nearest = [&](int32_t d) {
                return static_cast<int32_t>(std::lround(static_cast<double>(d * (2 * i + 1)) / 1680));
            };
            if (!IsSet(blob_, end.first + nearest(dx), end.second + nearest(dy)))
                return static_cast<double>(i) / 840 * Distance({0, 0}, {1.0 * dx, 1.0 * dy});
        }
    }

    double Chords(const Cell& cell) const {
        const auto pixels = [&](int32_t dx, int32_t dy) {
            int count = 0;
            for (auto [x, y] = cell; IsSet(blob_, x, y); x += dx, y += dy) ++count;
            return count;
        };
        return ((pixels(1, 0) + pixels(-1, 0) - 1) * sx_ + (pixels(0, 1) + pixels(0, -1) - 1) * sy_) / 2;
    }

    const Plane& blob_;
    const double sx_, sy_;
    std::map<Cell, std::set<Cell>> links_;
};

}  // namespace orlix
