#include "flattening.hpp"

#include "console.hpp"
#include "surface.hpp"

#include <orlix/client.hpp>

#include <algorithm>
#include <cmath>
#include <limits>

namespace tool {

using namespace orlix;

namespace {

std::vector<float> Values(const ComPtr<IImageVPAExPlus>& floats) {
    std::vector<float> out;
    for (const std::span<float> row : Rows<float>(floats)) out.insert(out.end(), row.begin(), row.end());
    return out;
}

// Of the values where `region` is a number.
Json Figures(const std::vector<float>& values, const std::vector<float>& region, double shift,
             std::optional<double> zScale) {
    double sum = 0, least = std::numeric_limits<double>::infinity(), most = -least;
    size_t count = 0;
    for (size_t i = 0; i < values.size(); ++i) {
        if (!std::isfinite(region[i])) continue;
        const double value = values[i];
        sum += value;
        least = std::min(least, value);
        most = std::max(most, value);
        ++count;
    }
    const double n = static_cast<double>(count), mean = sum / n;
    double squares = 0;
    for (size_t i = 0; i < values.size(); ++i)
        if (std::isfinite(region[i])) squares += (values[i] - mean) * (values[i] - mean);
    const double rms = std::sqrt(squares / n);
    const auto scaled = [&](double levels) { return zScale ? Finite(levels * *zScale) : Json(nullptr); };
    Json out;
    out["mean"] = Finite(mean + shift);
    out["minimum"] = Finite(least + shift);
    out["maximum"] = Finite(most + shift);
    out["rms"] = Finite(rms);
    out["peakToValley"] = Finite(most - least);
    out["rmsMicrons"] = scaled(rms);
    out["peakToValleyMicrons"] = scaled(most - least);
    return out;
}

Json Described(const Surface& surface, const FlattenSettings& settings, double pixelSize) {
    Json out;
    out["kind"] = surface.id();
    out["robust"] = settings.robust ? Json(*settings.robust) : Json(nullptr);
    out["formula"] = surface.formula();
    out["average"] = Finite(surface.average());
    for (const auto& [name, value] : surface.Coefficients()) out["coefficients"][name] = Finite(value);
    if (!settings.zScale || !(pixelSize > 0)) return out;
    const auto [slopeX, slopeY] = surface.Slopes();
    if (settings.surface == "plane") {
        out["slopeX"] = Finite(1000 * slopeX * *settings.zScale / pixelSize);
        out["slopeY"] = Finite(1000 * slopeY * *settings.zScale / pixelSize);
    }
    if (surface.ApexRadius() > 0)
        out["apexRadius"] = Finite(surface.ApexRadius() * pixelSize * pixelSize / *settings.zScale);
    return out;
}

}  // namespace

FlattenSettings MakeFlattenSettings(const std::string& surface, std::optional<double> robust,
                                    std::optional<double> zScale) {
    if (robust && !(*robust > 0 && *robust <= 1))
        throw UsageError("the probability of a good pixel must be above 0 and at most 1");
    if (zScale && !(*zScale > 0 && std::isfinite(*zScale)))
        throw UsageError("--z-scale must be a number of microns above 0");
    return {surface, robust, zScale};
}

Flattening Flatten(const Subject& subject, const FlattenSettings& settings) {
    const std::unique_ptr<Surface> surface = MakeSurface(settings.surface);
    const auto process = Cast<IOrlixImageProcess>(subject.image);
    if (surface->Fit(process, settings.robust) != S_OK) {
        const std::string name = std::string(settings.robust ? "robust " : "") + surface->id();
        if (subject.pixels < surface->points())
            throw std::runtime_error("the region holds " + std::to_string(subject.pixels) +
                                     (subject.pixels == 1 ? " pixel" : " pixels") + ", too few for a " + name +
                                     ", which needs " + std::to_string(surface->points()));
        throw std::runtime_error("the pixels of the region determine no " + name);
    }

    // The figures come from floating point, so that they do not hold the rounding to grey levels.
    auto floats = CreateObject<IImageVPAExPlus>("Orlix.Image");
    Check(floats->Create(subject.width, subject.height, 1, DT_Float, 0), floats);
    const auto floating = Cast<IOrlixImageProcess>(floats);
    Check(floating->CastEquals(subject.image.get(), subject.band), floating);
    Flattening result;
    result.before = Values(floats);
    Check(floating->put_RegionOfInterest(subject.region.get()), floating);
    surface->Subtract(floating, 0);
    result.residual = Values(floats);
    const std::vector<uint8_t> inside = RegionMask(subject.region, subject.width, subject.height);
    for (size_t i = 0; i < inside.size(); ++i)
        if (!inside[i]) result.residual[i] = std::numeric_limits<float>::quiet_NaN();
    surface->Subtract(process, surface->average());

    Json& out = result.document;
    out["zScale"] = settings.zScale ? Json(*settings.zScale) : Json(nullptr);
    out["surface"] = Described(*surface, settings, subject.PixelSize());
    out["before"] = Figures(result.before, result.residual, 0, settings.zScale);
    out["after"] = Figures(result.residual, result.residual, surface->average(), settings.zScale);
    const double least = TypeMinimum(subject.type) - 0.5, most = TypeMaximum(subject.type) + 0.5;
    out["clippedPixels"] = std::count_if(result.residual.begin(), result.residual.end(), [&](double residual) {
        const double value = residual + surface->average();
        return value < least || value >= most;
    });
    return result;
}

}  // namespace tool
