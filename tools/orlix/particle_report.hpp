// The reports of `orlix particles` as HTML pages; see html_page.hpp.
#pragma once

#include "document.hpp"

#include <orlix/com_ptr.hpp>

#include <orlix/orlix.h>

#include <string>
#include <vector>

namespace tool {

// The most particles that a page shows, the largest ones; the lists have all.
constexpr size_t kMostInReport = 5000;

// One image: a picture in which particles are outlined and numbered, the size distribution, the histogram with the
// threshold, and a table that a click on a column sorts. A click on a row marks the particle in the picture, and one on
// the particle its row. `blobs` are those of the document's particles; the picture is a data URI.
std::string ParticleReport(const Json& document, const orlix::ComPtr<IBlobs>& blobs, const std::string& version,
                           const std::string& imageUri);

// A batch: the summary, the distribution of all particles, and a row for each image with a link to its report.
struct ParticleEntry {
    Json document;           // or {file, error}
    std::string reportName;  // a file in the same folder; empty if there is none
    std::string overlayUri;  // small
};
std::string ParticleBatchReport(const std::vector<ParticleEntry>& entries, const Json& summary,
                                const std::string& version);

}  // namespace tool
