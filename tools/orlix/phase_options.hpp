// The options with which a command chooses a phase: region, mask, flattening, threshold and its side, histogram.
#pragma once

#include "measurement.hpp"

#include <optional>
#include <string>
#include <vector>

namespace tool {

class Subcommand;

// What the help of a command says about --threshold.
extern const char kThresholdHelp[];

class PhaseOptions {
public:
    void Add(Subcommand& command);
    // Checks the options and sets `settings` by them. Throws UsageError.
    void Complete(MeasureSettings& settings) const;

private:
    SubjectOptions subject_;
    std::string threshold_ = "minimize-variance", flatten_;
    std::optional<double> flattenRobust_;
    bool dark_ = false, bright_ = false;
    std::vector<double> luminance_;
    LONG bins_ = MeasureSettings().bins, smoothing_ = MeasureSettings().smoothing;
};

}  // namespace tool
