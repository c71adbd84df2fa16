// Regions of interest as the command line names them.
#pragma once

#include <orlix/com_ptr.hpp>

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tool {

struct RegionShape {
    enum class Kind { Rectangle, OrientedRectangle, Circle };
    Kind kind = Kind::Rectangle;
    std::array<double, 5> values = {};
    PolarityType polarity = PT_Inside;
    std::string text;  // as given
};

// Parses "rect:L,T,R,B" (whole pixels, both ends included), "oriented:W,H,ANGLE,XC,YC" or "circle:XC,YC,R". Throws
// UsageError for anything else.
RegionShape ParseRegion(std::string_view text);
// "inside", "outside" or "frame".
PolarityType ParsePolarity(std::string_view text);
const char* PolarityName(PolarityType polarity);

// Parses finite numbers separated by commas. An empty one becomes NaN if allowed. Throws UsageError, which names the
// whole text.
std::vector<double> ParseNumbers(std::string_view list, std::string_view whole, bool allowEmpty = false);

orlix::ComPtr<IRegionOfInterest> MakeRegion(const RegionShape& shape, LONG width, LONG height);

}  // namespace tool
