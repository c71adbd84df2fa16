// How far the figures of particles can be trusted: what becomes of them when the threshold moves.
#pragma once

#include "document.hpp"

#include <orlix/com_ptr.hpp>

#include <functional>

namespace tool {

// The particles of the phase that a threshold gives.
struct ParticlesAt {
    orlix::ComPtr<IBlobs> blobs;
    double lower, upper;  // first and last grey level of the phase
};

struct TrustSettings {
    double level = 0;      // between the two sides of the threshold; NaN for a phase between two levels
    bool integer = true;   // pixels
    double pixelArea = 1;  // in the unit of the documents
    std::function<double(const SBinaryMeasurements&)> weightOf;  // in the size distributions
    // All steps again with a phase that is wider by so many grey levels (below 0: narrower) at each threshold.
    std::function<ParticlesAt(double shift)> movedBy;
};

// For the member "trust" of the image's document, of which the histogram is read; see FindParticles. `particles` are
// the documents of `blobs`, in their order: each gets a member "trust".
Json TrustOf(const Json& histogram, const ParticlesAt& found, const TrustSettings& settings, Json& particles);

// Over several images: the greatest `change` of each figure {oneLevel, valley}; null where no image has one.
Json GreatestChanges(const Json& images);

}  // namespace tool
