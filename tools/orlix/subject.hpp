// What the commands that process images have in common: the band, region and calibration that they work with, and what
// their documents and texts say of these.
#pragma once

#include "document.hpp"
#include "region.hpp"

#include <orlix/com_ptr.hpp>

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tool {

class Subcommand;

// Not a band of the file: the luma of its three, see Luma().
constexpr LONG kGreyBand = -2;

// What is measured of an image: pixels of the region that the mask has and whose grey level is not ignored.
struct SubjectSettings {
    std::optional<RegionShape> region;
    std::string mask;                            // file: pixels that are not 0 there; empty: all
    std::vector<std::array<double, 2>> ignored;  // grey levels from..to, both included; NaN: no bound
    std::optional<double> pixelSize;             // microns; instead of what the file says
    LONG band = 0;
};

// --roi, --roi-polarity, --mask, --ignore, --band and --pixel-size as they come from the command line.
class SubjectOptions {
public:
    explicit SubjectOptions(LONG defaultBand = 0) : defaultBand_(defaultBand) {}
    void AddRegion(Subcommand& command);
    void AddBand(Subcommand& command, const char* description, bool grey = false);  // grey: kGreyBand too
    void AddPixelSize(Subcommand& command);
    void AddExclusions(Subcommand& command);         // --mask and --ignore
    void Complete(SubjectSettings& settings) const;  // throws UsageError

private:
    LONG Band() const;

    std::string region_, polarity_ = "inside", mask_;
    std::vector<std::string> ignored_;
    std::optional<double> pixelSize_;
    std::string band_;
    LONG defaultBand_;
    bool grey_ = false;
};

struct Subject {
    orlix::ComPtr<IImageVPAExPlus> image;
    orlix::ComPtr<IRegionOfInterest> region;  // the pixels that are measured; null: the whole image
    LONG band = 0, bands = 0, width = 0, height = 0, type = 0;
    int64_t pixels = 0;                 // of the region, in the image
    double xMicrons = 0, yMicrons = 0;  // of a pixel; 0: not known

    // Puts band and region into the image, with the given pixel size if any, and describes them, in this order: width,
    // height, bands, type, band (null: all; "grey"), micronsPerPixel {x, y, source}, region {shape, polarity, mask,
    // pixelsLeftOut (by mask or grey level), pixels, areaSquareMicrons}. Warns of a pixel size that is a printer's or a
    // screen's. std::runtime_error for a band that the image has not and for a region without pixels. With kGreyBand
    // the image of three bands becomes another one of a single band.
    Subject(orlix::ComPtr<IImageVPAExPlus> image, const SubjectSettings& settings, Json& document);

    Json Area(int64_t pixelCount) const;                                      // square microns, or null
    double PixelSize() const { return xMicrons == yMicrons ? xMicrons : 0; }  // microns; 0: not known or not square
};

// One band of 0.299 red + 0.587 green + 0.114 blue (luma of ITU-R BT.601) of an image's three, of the same pixel type,
// rounded to the nearest level.
orlix::ComPtr<IImageVPAExPlus> Luma(const orlix::ComPtr<IImageVPAExPlus>& image);

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
