// Particles that the command line finds in specimens, beside those that are there.
#pragma once

#include "particle_finding.hpp"
#include "particle_pictures.hpp"
#include "specimen_image.hpp"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace tool {

struct SpecimenCase {
    std::string name;
    samples::SpecimenSettings specimen;
    ParticleSettings settings;
};

// Over several specimens. A particle is found where one that was found shares more than half of the pixels of both.
struct FoundAndTrue {
    int64_t particles = 0, found = 0;
    int64_t others = 0;    // found and not there
    double totalArea = 0;  // of all that was found, over the true one, less 1
    double bias = 0;       // of the area of a single particle that is found, as a fraction
    double scatter = 0;    // standard deviation of that
    double distance = 0;   // root mean square distance of the centroids, in pixels

    double Share() const { return static_cast<double>(found) / static_cast<double>(particles); }
};

inline FoundAndTrue Compare(const SpecimenCase& of, uint64_t seeds) {
    FoundAndTrue out;
    double area = 0, trueArea = 0, errors = 0, squares = 0, distances = 0;
    for (uint64_t seed = 1; seed <= seeds; ++seed) {
        samples::SpecimenSettings specimenSettings = of.specimen;
        specimenSettings.seed = seed;
        const samples::Specimen specimen = samples::MakeSpecimen(specimenSettings);
        ParticleImage image = FindParticles(ImageOf(specimen), of.name, of.settings);
        const Json& list = image.measurement.document["particles"];
        const LabelRows labels(image.blobs);
        std::map<std::pair<int32_t, uint32_t>, int32_t> shared;  // pixels by both labels
        for (int32_t y = 0; y < labels.height(); ++y)
            for (int32_t x = 0; x < labels.width(); ++x) {
                const int32_t label = specimen.labels[static_cast<size_t>(y * labels.width() + x)];
                if (label > 0 && labels.at(x, y) > 0) ++shared[{label, labels.at(x, y)}];
            }
        int64_t found = 0;
        for (const auto& [pair, pixels] : shared) {
            const samples::Particle& truth = specimen.particles[static_cast<size_t>(pair.first) - 1];
            const Json& particle = list[pair.second - 1];
            if (2 * pixels <= truth.area || 2 * pixels <= particle["pixels"].get<int32_t>()) continue;
            ++found;
            const double error = particle["pixels"].get<double>() / truth.area - 1;
            errors += error;
            squares += error * error;
            const double x = NumberAt(particle, "x") - truth.xCentroid, y = NumberAt(particle, "y") - truth.yCentroid;
            distances += x * x + y * y;
        }
        out.particles += static_cast<int64_t>(specimen.particles.size());
        out.found += found;
        out.others += static_cast<int64_t>(list.size()) - found;
        area += NumberAt(image.measurement.document, "particleSummary.pixels");
        trueArea += static_cast<double>(specimen.particleArea);
    }
    const auto n = static_cast<double>(std::max<int64_t>(out.found, 1));
    out.totalArea = area / trueArea - 1;
    out.bias = errors / n;
    out.scatter = std::sqrt(std::max(0.0, squares / n - out.bias * out.bias));
    out.distance = std::sqrt(distances / n);
    return out;
}

inline std::vector<SpecimenCase> SpecimenCases() {
    const auto with = [](std::vector<FilterPass> filters, LONG least, const char* flatten = "", bool split = false,
                         bool bright = false) {
        ParticleSettings settings;
        settings.filters = std::move(filters);
        settings.minimumArea = least;
        if (*flatten) settings.flatten = MakeFlattenSettings(flatten, 0.8, std::nullopt);
        if (split) settings.split = kUsualSplit;
        settings.bright = bright;
        settings.trust = false;
        return settings;
    };
    using S = samples::SpecimenSettings;
    const FilterPass once = {"gaussian3x3", 1}, twice = {"gaussian3x3", 2};
    const S touching = {.particles = 200, .minimumRadius = 7, .maximumRadius = 18, .gap = -2, .raggedShare = 0};
    const S rough = {.particles = 160, .minimumRadius = 7, .maximumRadius = 18, .gap = -6, .raggedShare = 1};
    return {
        {"as `orlix specimen` makes it", {}, with({}, 12)},
        {"16 bits", {.bits = 16}, with({}, 12)},
        {"bright particles", {.matrixGrey = 60, .particleContrast = 110}, with({}, 12, "", false, true)},
        {"ragged particles only", {.raggedShare = 1}, with({}, 12)},
        {"radii 2 to 6", {.particles = 300, .minimumRadius = 2, .maximumRadius = 6}, with({}, 6)},
        {"noise 12", {.noise = 12}, with({}, 12)},
        {"noise 22, `--filter gaussian3x3`", {.noise = 22}, with({once}, 12)},
        {"noise 40, `--filter gaussian3x3:2`", {.noise = 40}, with({twice}, 12)},
        {"domed light, span 100", {.background = samples::Background::Domed, .backgroundSpan = 100}, with({}, 12)},
        {"the same, `--flatten biquadratic --flatten-robust 0.8`",
         {.background = samples::Background::Domed, .backgroundSpan = 100},
         with({}, 12, "biquadratic")},
        {"low contrast, 30 levels", {.particleContrast = -30, .pitContrast = -20}, with({once}, 12, "plane")},
        {"200 discs that touch", touching, with({}, 12)},
        {"the same, `--split`", touching, with({}, 12, "", true)},
        {"160 ragged particles that touch, `--split`", rough, with({}, 12, "", true)},
    };
}

}  // namespace tool
