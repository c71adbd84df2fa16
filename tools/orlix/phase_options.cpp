#include "phase_options.hpp"

#include "console.hpp"
#include "subcommand.hpp"
#include "surface.hpp"

namespace tool {

const char kThresholdHelp[] = R"(
Thresholds (METHOD, or METHOD:PARAMETER,PARAMETER)
  minimize-variance, otsu         smallest fractions of the pixels left and right       0,0
  trim, percentile                fractions that are the dark and the bright tail       0.05,0.05
  search-for-minimum, minimum     fractions trimmed off before the search               0.005,0.005
  gaussian-mixture, mixture       smallest fractions left and right                     0.005,0.005
  maximize-entropy, entropy       smallest fractions left and right                     0.005,0.005
  exponential, exp                fraction left above the threshold; only when chosen   0.05
  LO,HI   the grey levels of the phase, both included; LO, or ,HI for an open end
  The level of an automatic threshold is the last one of the dark side. With trim, the dark phase is
  below the left limit and the bright phase above the right one.
)";

void PhaseOptions::Add(Subcommand& command) {
    subject_.AddRegion(command);
    subject_.AddExclusions(command);
    command.Add("--flatten", flatten_, "Remove a surface from the region first: " + SurfaceList())
        .OneOf(SurfaceNames())
        .Named("SURFACE");
    command
        .Add("--flatten-robust", flattenRobust_,
             "Robust fit of it: probability that a pixel belongs to the surface, up to 1")
        .Named("P");
    command.Add("--threshold", threshold_, "METHOD or LO,HI; see below")
        .Named("METHOD")
        .ShowDefault("minimize-variance");
    const Parameter dark = command.AddFlag("--dark", dark_, "The phase is the dark side of the threshold (default)");
    command.AddFlag("--bright", bright_, "The phase is the bright side").Excludes(dark);
    subject_.AddPixelSize(command);
    subject_.AddBand(
        command, "Band of a colour image: 0 red (default), 1 green, 2 blue; grey 0.299 R + 0.587 G + 0.114 B", true);
    command.Add("--luminance", luminance_, "Grey levels on which thresholds are chosen").Pair("LOW HIGH");
    command.Add("--bins", bins_, "Bins at most, where thresholds are chosen (default 1024)").Between(2, 65536);
    command
        .Add("--smooth", smoothing_,
             "Smooth the histogram with 3, 5, 7 or 9 binomial weights before choosing thresholds")
        .OneOf(std::vector{0, 3, 5, 7, 9});
}

void PhaseOptions::Complete(MeasureSettings& settings) const {
    settings.threshold = ParseThreshold(threshold_);
    if (!settings.threshold.method && (dark_ || bright_))
        throw UsageError("levels name the phase themselves: neither --dark nor --bright goes with them");
    settings.bright = bright_;
    subject_.Complete(settings);
    if (!flatten_.empty())
        settings.flatten = MakeFlattenSettings(flatten_, flattenRobust_, std::nullopt);
    else if (flattenRobust_)
        throw UsageError("--flatten-robust needs --flatten");
    if (!luminance_.empty()) {
        if (!(luminance_[0] <= luminance_[1])) throw UsageError("--luminance: LOW is above HIGH");
        settings.luminance = {luminance_[0], luminance_[1]};
    }
    settings.bins = bins_;
    settings.smoothing = smoothing_;
}

}  // namespace tool
