// The report of a measurement as an HTML page; see html_page.hpp.
#pragma once

#include "document.hpp"

#include <string>
#include <vector>

namespace tool {

// One image. The pictures are data URIs.
std::string ImageReport(const Json& measurement, const std::string& version, const std::string& imageUri,
                        const std::string& overlayUri);

// A batch: the summary, and a row for each image with a link to its report.
struct BatchEntry {
    Json measurement;        // or {file, error}
    std::string reportName;  // a file in the same folder; empty if there is none
    std::string overlayUri;  // small
};
std::string BatchReport(const std::vector<BatchEntry>& entries, const Json& summary, const std::string& version);

}  // namespace tool
