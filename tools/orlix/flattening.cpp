#include "flattening.hpp"

#include "console.hpp"
#include "surface.hpp"
#include "units.hpp"

#include <orlix/measure.hpp>

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <utility>

namespace tool {

using namespace orlix;

namespace {

std::vector<float> Values(const ComPtr<IImageVPAExPlus>& floats) {
    std::vector<float> out;
    for (const std::span<float> row : Rows<float>(floats)) out.insert(out.end(), row.begin(), row.end());
    return out;
}

// Figures of the values at which `region` is a number.
Json Figures(const std::vector<float>& values, const std::vector<float>& region, double shift,
             std::optional<double> zScale) {
    std::vector<float> heights;
    for (size_t i = 0; i < values.size(); ++i)
        if (std::isfinite(region[i])) heights.push_back(values[i]);
    const Roughness roughness = MeasureRoughness(heights);
    Json out;
    out["mean"] = Finite(roughness.mean + shift);
    out["minimum"] = Finite(roughness.minimum + shift);
    out["maximum"] = Finite(roughness.maximum + shift);
    const std::pair<const char*, double> lengths[] = {
        {"Sa", roughness.Sa}, {"Sq", roughness.Sq}, {"Sz", roughness.Sz}, {"trimmedSz", TrimmedSz(heights, 0.001)}};
    for (const auto& [name, levels] : lengths) out[name] = Finite(levels);
    out["Ssk"] = Finite(roughness.Ssk);
    out["Sku"] = Finite(roughness.Sku);
    for (const auto& [name, levels] : lengths)
        out[std::string(name) + "Microns"] = zScale ? Finite(levels * *zScale) : Json(nullptr);
    return out;
}

Json Described(const Surface& surface, const FlattenSettings& settings, double pixelSize) {
    Json out;
    out["kind"] = surface.id();
    out["robust"] = settings.robust ? Json(*settings.robust) : Json(nullptr);
    out["refit"] = nullptr;
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

namespace {

// The subject's band in floating point, so that the figures are free of rounding to grey levels.
class Heights {
public:
    explicit Heights(const Subject& subject) : region_(subject.region.get()) {
        image_ = CreateObject<IImageVPAExPlus>("Orlix.Image");
        Check(image_->Create(subject.width, subject.height, 1, DT_Float, 0), image_);
        const auto process = Cast<IOrlixImageProcess>(image_);
        Check(process->CastEquals(subject.image.get(), subject.band), process);
        inside_ = RegionMask(subject.region, subject.width, subject.height);
    }

    std::vector<float> Values() const { return tool::Values(image_); }

    // Heights less the surface; NaN outside the region.
    std::vector<float> Residual(const Surface& surface) const {
        auto less = CreateObject<IImageVPAExPlus>("Orlix.Image");
        Check(less->CreateFromImage(image_.get(), 0), less);
        const auto process = Cast<IOrlixImageProcess>(less);
        Check(process->put_RegionOfInterest(region_.get()), process);
        surface.Subtract(process, 0);
        std::vector<float> residual = tool::Values(less);
        for (size_t i = 0; i < inside_.size(); ++i)
            if (!inside_[i]) residual[i] = std::numeric_limits<float>::quiet_NaN();
        return residual;
    }

private:
    ComPtr<IImageVPAExPlus> image_;
    ComPtr<IRegionOfInterest> region_;
    std::vector<uint8_t> inside_;
};

// The residuals that belong to the surface.
struct Inliers {
    std::vector<uint8_t> mask;
    double limit = 0;  // grey levels
    int64_t count = 0;
};

// Residuals within 2.5 standard deviations. The deviation is estimated from the median of all absolute residuals, as if
// there were no outliers (P. J. Rousseeuw and A. M. Leroy, Robust Regression and Outlier Detection, 1987). Outliers
// raise it, by a factor of 1.6 at most: below 70 % of good pixels a lower quantile replaces the median. The limit is at
// least `rounding`, the residual that rounding to grey levels gives a pixel on the surface.
Inliers InliersOf(const std::vector<float>& residual, double good, double rounding) {
    std::vector<float> sizes;
    for (const float value : residual)
        if (std::isfinite(value)) sizes.push_back(std::fabs(value));
    Inliers inliers;
    inliers.mask.assign(residual.size(), 0);
    if (sizes.empty()) return inliers;
    const double quantile = std::min(0.5, good / 1.4);
    const auto half = sizes.begin() + static_cast<std::ptrdiff_t>(static_cast<double>(sizes.size() - 1) * quantile);
    std::nth_element(sizes.begin(), half, sizes.end());
    constexpr double kNormal = 0.6744897501960817;  // half of a normal distribution lies within so many deviations
    inliers.limit = std::max(2.5 * *half / kNormal, rounding);
    for (size_t i = 0; i < residual.size(); ++i) {
        inliers.mask[i] = std::fabs(residual[i]) <= inliers.limit;  // false for NaN
        inliers.count += inliers.mask[i];
    }
    return inliers;
}

double SquaresWithin(const std::vector<uint8_t>& mask, const std::vector<float>& residual) {
    double sum = 0;
    for (size_t i = 0; i < mask.size(); ++i)
        if (mask[i]) sum += double{residual[i]} * residual[i];
    return sum;
}

// A robust fit passes exactly through a few pixels, and so has their noise. Least squares over the pixels near it, then
// over those near the result and so on, remove that noise. A step that does not fit its pixels better is not taken (an
// algebraic fit may be worse). Returns a description of the steps.
Json Refit(std::unique_ptr<Surface>& surface, const Subject& subject, const Heights& heights, double good,
           std::vector<float>& residual) {
    constexpr int kMostRounds = 50;
    const auto process = Cast<IOrlixImageProcess>(subject.image);
    const double rounding =
        subject.type == DT_Float ? std::ldexp(std::fabs(surface->average()), -20) : 0.5;  // of whole grey levels
    Json out;
    std::vector<uint8_t> last;
    for (int round = 1; round <= kMostRounds; ++round) {
        Inliers inliers = InliersOf(residual, good, rounding);
        if (inliers.mask == last || inliers.count < surface->points()) break;
        auto candidate = MakeSurface(surface->id());
        Check(process->put_RegionOfInterest(RegionOfMask(inliers.mask, subject.width, subject.height).get()), process);
        const bool found = candidate->Fit(process, std::nullopt) == S_OK;
        Check(process->put_RegionOfInterest(subject.region.get()), process);
        if (!found) break;
        std::vector<float> candidateResidual = heights.Residual(*candidate);
        if (!(SquaresWithin(inliers.mask, candidateResidual) < SquaresWithin(inliers.mask, residual))) break;
        surface = std::move(candidate);
        residual = std::move(candidateResidual);
        out = {{"pixels", inliers.count}, {"within", inliers.limit}, {"rounds", round}};
        last = std::move(inliers.mask);
    }
    return out;
}

std::string Levels(double value) { return Digits(value, 5); }

}  // namespace

Flattening Flatten(const Subject& subject, const FlattenSettings& settings) {
    std::unique_ptr<Surface> surface = MakeSurface(settings.surface);
    const auto process = Cast<IOrlixImageProcess>(subject.image);
    if (surface->Fit(process, settings.robust) != S_OK) {
        const std::string name = std::string(settings.robust ? "robust " : "") + surface->id();
        if (subject.pixels < surface->points())
            throw std::runtime_error("the region holds " + std::to_string(subject.pixels) +
                                     (subject.pixels == 1 ? " pixel" : " pixels") + ", too few for a " + name +
                                     ", which needs " + std::to_string(surface->points()));
        throw std::runtime_error("the pixels of the region determine no " + name);
    }

    const Heights heights(subject);
    Flattening result;
    result.before = heights.Values();
    result.residual = heights.Residual(*surface);
    Json refit;
    if (settings.robust) refit = Refit(surface, subject, heights, *settings.robust, result.residual);
    surface->Subtract(process, surface->average());

    Json& out = result.document;
    out["zScale"] = settings.zScale ? Json(*settings.zScale) : Json(nullptr);
    out["surface"] = Described(*surface, settings, subject.PixelSize());
    out["surface"]["refit"] = std::move(refit);
    out["before"] = Figures(result.before, result.residual, 0, settings.zScale);
    out["after"] = Figures(result.residual, result.residual, surface->average(), settings.zScale);
    const double least = TypeMinimum(subject.type) - 0.5, most = TypeMaximum(subject.type) + 0.5;
    out["clippedPixels"] = std::count_if(result.residual.begin(), result.residual.end(), [&](double residual) {
        const double value = residual + surface->average();
        return value < least || value >= most;
    });
    const double before = NumberAt(out, "before.Sq"), after = NumberAt(out, "after.Sq");
    if (after > before)
        result.warnings.push_back({"rougher", "the " + settings.surface + " does not fit: the deviation is " +
                                                  Levels(after) + " grey levels after removing it, " + Levels(before) +
                                                  " before"});
    return result;
}

}  // namespace tool
