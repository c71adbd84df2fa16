#include "units.hpp"

#include "document.hpp"

#include <cmath>

namespace tool {

Unit LengthUnit(double microns) {
    const double size = std::fabs(microns);
    return size < 1 ? Unit{"nm", 1000} : size < 1000 ? Unit{"µm", 1} : Unit{"mm", 0.001};
}

Unit HeightUnit(double greyLevels, std::optional<double> zScale) {
    if (!zScale) return {"grey levels", 1};
    Unit unit = LengthUnit(greyLevels * *zScale);
    unit.scale *= *zScale;
    return unit;
}

std::string Digits(double value, int significant) {
    if (value == 0) return "0";
    int digits = significant - 1;
    for (double power = 10; std::fabs(value) >= power && digits > 0; power *= 10) --digits;
    for (double power = 1; std::fabs(value) < power && digits < 30; power /= 10) ++digits;
    return Rounded(value, digits);
}

std::string Length(double microns) {
    const Unit unit = LengthUnit(microns);
    return Digits(microns * unit.scale, 7) + " " + unit.name;
}

}  // namespace tool
