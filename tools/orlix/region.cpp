#include "region.hpp"

#include "console.hpp"

#include <orlix/client.hpp>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

namespace tool {

using namespace orlix;

std::vector<double> ParseNumbers(std::string_view list, std::string_view whole, bool allowEmpty) {
    std::vector<double> numbers;
    for (bool more = true; more;) {
        const size_t comma = std::min(list.find(','), list.size());
        const std::string_view item = list.substr(0, comma);
        more = comma < list.size();
        list.remove_prefix(std::min(comma + 1, list.size()));
        double value = std::numeric_limits<double>::quiet_NaN();
        if (!item.empty() || !allowEmpty) {
            const auto [end, error] = std::from_chars(item.data(), item.data() + item.size(), value);
            if (error != std::errc() || end != item.data() + item.size() || !std::isfinite(value))
                throw UsageError("'" + std::string(item) + "' in '" + std::string(whole) + "' is not a number");
        }
        numbers.push_back(value);
    }
    return numbers;
}

RegionShape ParseRegion(std::string_view text) {
    struct Form {
        std::string_view name;
        RegionShape::Kind kind;
        size_t count;
        const char* usage;
    };
    constexpr Form kForms[] = {
        {"rect", RegionShape::Kind::Rectangle, 4, "rect:LEFT,TOP,RIGHT,BOTTOM"},
        {"oriented", RegionShape::Kind::OrientedRectangle, 5, "oriented:WIDTH,HEIGHT,ANGLE,XCENTER,YCENTER"},
        {"circle", RegionShape::Kind::Circle, 3, "circle:XCENTER,YCENTER,RADIUS"},
    };
    const size_t colon = std::min(text.find(':'), text.size());
    for (const Form& form : kForms) {
        if (text.substr(0, colon) != form.name) continue;
        const auto numbers = ParseNumbers(text.substr(std::min(colon + 1, text.size())), text);
        if (numbers.size() != form.count)
            throw UsageError("a region of this kind is given as " + std::string(form.usage));
        RegionShape shape;
        shape.kind = form.kind;
        shape.text = text;
        std::copy(numbers.begin(), numbers.end(), shape.values.begin());
        if (shape.kind == RegionShape::Kind::Rectangle)
            for (const double value : numbers)
                if (value != std::floor(value) || std::fabs(value) > 2147483647)
                    throw UsageError("the corners of '" + shape.text + "' must be whole pixels");
        return shape;
    }
    throw UsageError("'" + std::string(text) +
                     "' is not a region: rect:L,T,R,B, oriented:W,H,ANGLE,XC,YC or circle:XC,YC,R");
}

PolarityType ParsePolarity(std::string_view text) {
    for (const PolarityType polarity : {PT_Inside, PT_Outside, PT_Frame})
        if (text == PolarityName(polarity)) return polarity;
    throw UsageError("'" + std::string(text) + "' is not a polarity: inside, outside or frame");
}

const char* PolarityName(PolarityType polarity) {
    return polarity == PT_Outside ? "outside" : polarity == PT_Frame ? "frame" : "inside";
}

ComPtr<IRegionOfInterest> MakeRegion(const RegionShape& shape, LONG width, LONG height) {
    auto region = CreateObject<IShapeRegionOfInterest>("Orlix.ShapeRegionOfInterest");
    const auto& v = shape.values;
    const auto whole = [&](size_t i) { return static_cast<LONG>(v[i]); };
    switch (shape.kind) {
        case RegionShape::Kind::Rectangle:
            Check(region->CreateRectangle(width, height, whole(0), whole(1), whole(2), whole(3)), region);
            break;
        case RegionShape::Kind::OrientedRectangle:
            Check(region->CreateOrientedRectangle(width, height, v[0], v[1], v[2], v[3], v[4]), region);
            break;
        case RegionShape::Kind::Circle:
            Check(region->CreateCircle(width, height, v[0], v[1], v[2]), region);
            break;
    }
    Check(region->put_Polarity(shape.polarity), region);
    return ComPtr<IRegionOfInterest>(region.get());
}

}  // namespace tool
