// Places for the numbers of a picture's particles, none on top of another where that can be avoided.
#pragma once

#include <cstdint>
#include <map>
#include <utility>
#include <vector>

namespace tool {

// Edges in pixels.
struct LabelBox {
    double left, top, right, bottom;
};

class LabelPlaces {
public:
    LabelPlaces(double width, double height) : width_(width), height_(height) {}  // of the picture

    // Takes the place for a label of the given size: on the middle of the particle, where that is wanted, or at a
    // distance above it, below it, to its right or left. The first one that no earlier label touches, or the first of
    // all where there is none. Inside the picture, if the label is not larger.
    LabelBox Take(const LabelBox& particle, double middleX, double middleY, bool inside, double width, double height,
                  double distance);

private:
    static constexpr double kCell = 64;  // pixels, some labels wide

    template <class Visit>  // visit(boxes of a cell) for the cells of a box
    void ForEachCell(const LabelBox& box, const Visit& visit);
    bool IsFree(const LabelBox& box);

    double width_, height_;
    std::map<std::pair<int64_t, int64_t>, std::vector<LabelBox>> cells_;
};

}  // namespace tool
