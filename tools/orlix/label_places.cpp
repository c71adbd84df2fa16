#include "label_places.hpp"

#include <algorithm>
#include <cmath>
#include <span>

namespace tool {

template <class Visit>
void LabelPlaces::ForEachCell(const LabelBox& box, const Visit& visit) {
    const auto cell = [](double at) { return static_cast<int64_t>(std::floor(at / kCell)); };
    for (int64_t y = cell(box.top); y <= cell(box.bottom); ++y)
        for (int64_t x = cell(box.left); x <= cell(box.right); ++x) visit(cells_[{x, y}]);
}

bool LabelPlaces::IsFree(const LabelBox& box) {
    bool free = true;
    ForEachCell(box, [&](const std::vector<LabelBox>& taken) {
        free = free && std::ranges::none_of(taken, [&](const LabelBox& other) {
                   return other.left < box.right && box.left < other.right && other.top < box.bottom &&
                          box.top < other.bottom;
               });
    });
    return free;
}

LabelBox LabelPlaces::Take(const LabelBox& particle, double middleX, double middleY, bool inside, double width,
                           double height, double distance) {
    const auto at = [&](double left, double top) {
        left = std::clamp(left, 0.0, std::max(0.0, width_ - width));
        top = std::clamp(top, 0.0, std::max(0.0, height_ - height));
        return LabelBox{left, top, left + width, top + height};
    };
    const double left = middleX - width / 2, top = middleY - height / 2;
    const LabelBox places[] = {at(left, top), at(left, particle.top - height - distance),
                               at(left, particle.bottom + distance), at(particle.right + distance, top),
                               at(particle.left - width - distance, top)};
    const std::span<const LabelBox> wanted = std::span(places).subspan(inside ? 0 : 1);
    const auto free = std::ranges::find_if(wanted, [&](const LabelBox& box) { return IsFree(box); });
    const LabelBox box = free != wanted.end() ? *free : wanted.front();
    ForEachCell(box, [&](std::vector<LabelBox>& taken) { taken.push_back(box); });
    return box;
}

}  // namespace tool
