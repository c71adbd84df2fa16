// Lengths and heights as text for people.
#pragma once

#include <optional>
#include <string>

namespace tool {

struct Unit {
    std::string name;  // "nm"
    double scale = 1;  // units per micron, or per grey level or pixel if these have no length
};

Unit LengthUnit(double microns);  // the largest of nm, µm and mm that gives a number of at least 1

// The unit for values of up to `greyLevels`. zScale: microns per grey level, if known.
Unit HeightUnit(double greyLevels, std::optional<double> zScale);

std::string Digits(double value, int significant);  // no decimals for larger numbers; "–" if not finite
std::string Length(double microns);                 // with seven digits: "75.28822 nm"

}  // namespace tool
