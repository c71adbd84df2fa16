// The image that a command processes, with its band, region and calibration, and the description of these in documents
// and texts.
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

// Stands for the luma of three bands, see Luma().
constexpr LONG kGreyBand = -2;

// The pixels to be measured: those of the region that the mask keeps and whose grey level is not ignored.
struct SubjectSettings {
    std::optional<RegionShape> region;
    std::string mask;                            // image file that keeps the pixels where it is not 0; empty: all
    std::vector<std::array<double, 2>> ignored;  // first and last grey level; NaN for no bound
    std::optional<double> pixelSize;             // microns; overrides the file
    LONG band = 0;
};

// The options --roi, --roi-polarity, --mask, --ignore, --band and --pixel-size.
class SubjectOptions {
public:
    explicit SubjectOptions(LONG defaultBand = 0) : defaultBand_(defaultBand) {}
    void AddRegion(Subcommand& command);
    void AddBand(Subcommand& command, const char* description, bool grey = false);  // grey: offers kGreyBand
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
    int64_t pixels = 0;                 // of the region within the image
    double xMicrons = 0, yMicrons = 0;  // size of a pixel; 0 if unknown

    // Sets band and region of the image, and the pixel size if it is given. Describes them, in this order: width,
    // height, bands, type, band (null: all; "grey"), micronsPerPixel {x, y, source}, region {shape, polarity, mask,
    // pixelsLeftOut (by mask or grey level), pixels, areaSquareMicrons}. Warns if the pixel size is that of a printer
    // or screen. Throws std::runtime_error if the image lacks the band, or the region has no pixels. With kGreyBand an
    // image of three bands is replaced by one of a single band.
    Subject(orlix::ComPtr<IImageVPAExPlus> image, const SubjectSettings& settings, Json& document);

    Json Area(int64_t pixelCount) const;                                      // square microns, or null
    double PixelSize() const { return xMicrons == yMicrons ? xMicrons : 0; }  // microns; 0 if unknown or not square
};

// Makes one band of three: 0.299 red + 0.587 green + 0.114 blue (luma of ITU-R BT.601), of the same pixel type, rounded
// to the nearest level.
orlix::ComPtr<IImageVPAExPlus> Luma(const orlix::ComPtr<IImageVPAExPlus>& image);

const char* TypeName(LONG dataType);    // "8-bit", "16-bit", ...
std::string TypePhrase(LONG dataType);  // "an 8-bit image", "a 16-bit image", ...
// Sets the luminance range. Throws std::runtime_error if the pixel type cannot hold it.
void PutLuminance(const Subject& subject, double lower, double upper);

// Text for a terminal.
std::string Padded(const std::string& text, size_t width, bool right = true);  // counted in characters
std::string TextLine(const std::string& name, const std::string& text);        // a line of the block about one image
std::string OutputName(const Json& document);                                  // the member "output"
std::string SubjectText(const Json& document);                                 // file, image and region

}  // namespace tool
