// The report of a flattened image as one HTML page.
#pragma once

#include "document.hpp"
#include "profile_plot.hpp"

#include <string>
#include <vector>

namespace tool {

// The pictures are data URIs; the ranges name the grey levels that are black and white in them.
struct FlattenPictures {
    std::string before, beforeRange, after, afterRange;
    std::string residualMap;  // SVG
    double limit = 0;         // end of its colour scale, in grey levels
    double beyond = 0;        // fraction of the region's pixels beyond that limit
    Profile horizontal, vertical;
    int32_t row = 0, column = 0;  // of the profiles
};

std::string FlattenReport(const Json& image, const std::string& version, const FlattenPictures& pictures);

// The page of a batch: a row for each image {file, ...} or {file, error}, with a link to its outputs.report.
std::string FlattenOverview(const Json& images, const Json& warnings, const std::string& version);

// "149.9069 grey levels (3.911383 nm)", for `when` "before" or "after" and the value "Sa", "Sq", "Sz" or "trimmedSz".
std::string Figure(const Json& image, const std::string& when, const std::string& value);

}  // namespace tool
