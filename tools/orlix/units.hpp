// Lengths and heights as people read them.
#pragma once

#include <optional>
#include <string>

namespace tool {

struct Unit {
    std::string name;  // "nm"
    double scale = 1;  // this many to a micron, or to a grey level or pixel where these have no length
};

Unit LengthUnit(double microns);  // nm, µm or mm, the one that gives the smaller numbers from 1 on

// For values of at most so many grey levels, with the microns of a grey level where known.
Unit HeightUnit(double greyLevels, std::optional<double> zScale);

std::string Digits(double value, int significant);  // never more than whole numbers need; "–" when not finite
std::string Length(double microns);                 // "75.28822 nm": seven digits

}  // namespace tool
