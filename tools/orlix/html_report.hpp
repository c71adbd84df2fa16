// The report of a measurement as one HTML page that needs nothing beside itself; it follows the reader's light or dark
// setting and prints on white.
#pragma once

#include "document.hpp"

#include <string>
#include <vector>

namespace tool {

// One image. The pictures are data URIs.
std::string ImageReport(const Json& measurement, const std::string& version, const std::string& imageUri,
                        const std::string& overlayUri);

// A batch: the summary, and a row for each image, linked to its own report where there is one.
struct BatchEntry {
    Json measurement;        // or {file, error}
    std::string reportName;  // a file beside this one; empty: none
    std::string overlayUri;  // small
};
std::string BatchReport(const std::vector<BatchEntry>& entries, const Json& summary, const std::string& version);

}  // namespace tool
