// The size of a pixel as TIFF files and the Exif data of JPEG files tell it.
#pragma once

#include <optional>
#include <string_view>
#include <utility>

#include "files/tiff_directory.hpp"
#include "image/image_store.hpp"

namespace orlix {

struct PixelSize {
    double micronsX = 0, micronsY = 0;  // IsPixelSize()
    const char* from = "";              // a literal, for people
};

// Size of a pixel by the resolution tags. If the image description begins with "ImageJ=" and has a line "unit=" with a
// unit of length, the resolution is in pixels per that unit ("yunit=" for rows, if it is there), and the size comes
// from the "ImageJ unit"; otherwise in pixels per inch or centimetre, and `name` says where it comes from. A single
// size, of x or of y, counts for both. Resolutions that programs write without knowing one (72 or 96 per inch) are
// taken as they are, because nothing tells them from real ones: people can see where the size comes from.
std::optional<PixelSize> FindResolution(const TiffDirectory& directory, const char* name);

// From "OME PhysicalSizeX", where the image description is OME-XML and has one: PhysicalSizeX and PhysicalSizeY of the
// first Pixels element, in microns or in their PhysicalSizeXUnit and PhysicalSizeYUnit. Otherwise FindResolution().
std::optional<PixelSize> FindPixelSize(const TiffDirectory& directory, const char* name);

// Microns of the unit that a description by ImageJ gives the resolution, for columns and rows.
std::optional<std::pair<double, double>> ImageJUnits(std::string_view description);

// What resolutions may be off that libraries have kept in single precision.
inline constexpr double kResolutionRounding = 1e-6;

// Whether the image has this size, which the file holds rounded: then no other program has changed the size since the
// exact one was written.
bool HasRounded(const ImageProperties& kept, const PixelSize& size, double rounding = kResolutionRounding);

// Microns of a unit of length by its name or symbol, in UTF-8; the micro sign also in Latin-1 or as an escape of Java
// or XML; nullopt for an unknown one, such as "pixel".
std::optional<double> MicronsOfUnit(std::string_view unit);

}  // namespace orlix
