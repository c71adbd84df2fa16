#include "binary/element_runs.hpp"

#include <algorithm>

#include "geometry/structuring_element.hpp"

namespace orlix {

ElementRuns RunsOf(std::span<const SElement> elements, int32_t width, int32_t height) {
    ElementRuns runs;
    for (const SElement& element : elements) {
        const LONG x = element.m_lX, y = element.m_lY;
        if (x <= -width || x >= width || y <= -height || y >= height) continue;
        if (!runs.empty() && runs.back().y == y && runs.back().stop == x - 1)
            runs.back().stop = x;
        else
            runs.push_back({y, x, x});
    }
    std::sort(runs.begin(), runs.end(),
              [](const ElementRun& a, const ElementRun& b) { return a.y != b.y ? a.y < b.y : a.start < b.start; });
    // Joined with those that they touch or overlap.
    size_t kept = 0;
    for (const ElementRun& run : runs) {
        if (kept > 0 && runs[kept - 1].y == run.y && run.start <= runs[kept - 1].stop + 1)
            runs[kept - 1].stop = std::max(runs[kept - 1].stop, run.stop);
        else
            runs[kept++] = run;
    }
    runs.resize(kept);
    return runs;
}

ElementRuns RunsOfDisk(double radius, int32_t width, int32_t height) {
    // No two pixels are farther apart.
    const double most = static_cast<double>(width) + static_cast<double>(height);
    const double reach = radius >= most ? most : radius > 0 ? radius : 0;
    const auto last = static_cast<int32_t>(std::min(reach, static_cast<double>(height - 1)));
    ElementRuns runs;
    runs.reserve(2 * static_cast<size_t>(last) + 1);
    for (int32_t y = -last; y <= last; ++y) {
        const auto half = static_cast<int32_t>(std::min<int64_t>(DiskHalfWidth(y, reach), width - 1));
        runs.push_back({y, -half, half});
    }
    return runs;
}

ElementRuns Reflected(const ElementRuns& runs) {
    ElementRuns reflected;
    reflected.reserve(runs.size());
    for (auto run = runs.rbegin(); run != runs.rend(); ++run) reflected.push_back({-run->y, -run->stop, -run->start});
    return reflected;
}

}  // namespace orlix
