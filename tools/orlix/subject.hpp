// What the commands that process images have in common: the band, region and calibration that they work with, and what their
// documents and texts say of these.
#pragma once

#include "document.hpp"
#include "region.hpp"

#include <orlix/com_ptr.hpp>

#include <cstdint>
#include <optional>
#include <string>

namespace tool {

class Subcommand;

struct SubjectSettings {
    std::optional<RegionShape> region;
    std::optional<double> pixelSize;  // microns; instead of what the file says
    LONG band = 0;
};

// --roi, --roi-polarity, --band and --pixel-size as they come from the command line.
class SubjectOptions {
public:
    explicit SubjectOptions(LONG defaultBand = 0) : defaultBand_(defaultBand) {}
    void AddRegion(Subcommand& command);
    void AddBand(Subcommand& command, const char* description);
    void AddPixelSize(Subcommand& command);
    void Complete(SubjectSettings& settings) const;  // throws UsageError

private:
    std::string region_, polarity_ = "inside";
    std::optional<double> pixelSize_;
    std::optional<LONG> band_;
    LONG defaultBand_;
};

struct Subject {
    orlix::ComPtr<IImageVPAExPlus> image;
    orlix::ComPtr<IShapeRegionOfInterest> region;  // null: the whole image
    LONG band = 0, bands = 0, width = 0, height = 0, type = 0;
    int64_t pixels = 0;                 // of the region, in the image
    double xMicrons = 0, yMicrons = 0;  // of a pixel; 0: not known

    // Puts band and region into the image, with the given pixel size if any, and describes them, in this order: width, height,
    // bands, type, band, micronsPerPixel {x, y, source}, region {shape, polarity, pixels, areaSquareMicrons}.
    // std::runtime_error for a band that the image has not and for a region without pixels.
    Subject(orlix::ComPtr<IImageVPAExPlus> image, const SubjectSettings& settings, Json& document);

    Json Area(int64_t pixelCount) const;                                      // square microns, or null
    double PixelSize() const { return xMicrons == yMicrons ? xMicrons : 0; }  // microns; 0: not known or not square
};

const char* TypeName(LONG dataType);    // "8-bit", "16-bit", ...
std::string TypePhrase(LONG dataType);  // "an 8-bit image", "a 16-bit image", ...
// Of the pixel type; those of float are infinite.
double TypeMinimum(LONG type);
double TypeMaximum(LONG type);

// As the luminance range; std::runtime_error when the pixel type does not hold it.
void PutLuminance(const Subject& subject, double lower, double upper);

// Text for a terminal.
std::string Padded(const std::string& text, size_t width, bool right = true);  // counted in characters
std::string TextLine(const std::string& name, const std::string& text);        // of the block about one image
std::string OutputName(const Json& document);                                  // of its member "output"
std::string SubjectText(const Json& document);                                 // file, image and region

}  // namespace tool
