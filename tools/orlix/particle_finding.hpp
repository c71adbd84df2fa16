// The particles of one image, for `orlix particles`, through the interfaces of the library.
#pragma once

#include "measurement.hpp"

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace tool {

// A neighbourhood filter of the library, applied so many times.
struct FilterPass {
    std::string name;
    int times = 1;
};

// See IBitmapProcess::ThresholdLocally.
struct LocalThreshold {
    LONG radius = 0;
    double contrast = 0;
    bool bright = false;  // the side of the phase
};

// The columns of --measure, in their order, as paths of members of a particle: "number" (from 1, always), "x", ...,
// "grey.mean", "outline.area". `list` has names of columns and groups, separated by commas. Throws UsageError.
std::vector<std::string> ParseColumns(const std::string& list);

struct ParticleSettings : MeasureSettings {
    std::vector<FilterPass> filters;      // before anything else, to the whole image
    std::optional<LocalThreshold> local;  // after the threshold
    std::optional<double> open, close;
    std::optional<LONG> fillHoles;                   // largest area; 0: all holes
    std::optional<std::pair<double, double>> split;  // depth in pixels, share
    std::optional<LONG> minimumArea, maximumArea;    // pixels
    bool excludeBorder = false;
    std::vector<std::string> columns = ParseColumns("usual");  // measured, beside those of each particle
    bool trust = true;                                         // find the particles again with the threshold moved
    ConnectivityType connectivity = CT_8;
};

// What --split stands for without a value. Of ellipses of all sizes with rough outlines none is split; discs that
// overlap are told apart where the neck is half of the smaller radius, or four fifths of it from 24 pixels on.
constexpr std::pair<double, double> kUsualSplit = {0.75, 0.05};

// Members of `measurement.document` after those of MeasureImage, all about the particles that are left after the steps;
// lengths and areas are in microns if the pixel size is known, else in pixels, and positions in pixels:
//   steps [{step, ...}]: what was done to the image and to the bitmap, in order
//   unit: "µm" or "pixel"
//   level: the grey level of the outlines; null for a phase between two levels, and with a local threshold
//   particleSummary
//     count, pixels, area, areaFraction (of the region)
//     atBorder: particles that the border of the image or of the region cuts; not those of `count` with
//       --exclude-border
//     counting {rule, counted, field {pixels, squareMicrons}}: see orlix/particles.hpp. In a rectangle the rule is
//       "counting-frame"; in other regions "half-of-cut": each particle that is cut counts half (Jeffries, Kline and
//       Zimmer 1916)
//     numberPerArea {value, lower, upper, unit}: with the 95 % interval of a Poisson distribution; the unit is "1/mm2"
//       or "1/megapixel"
//     edgeCorrection: "miles-lantuejoul" where the distributions use its weights (--exclude-border in a rectangle)
//     diameter {byNumber, byArea}: of the discs of the same area, each {count, mean, d10, d50, d90}
//   trust: what becomes of the particles when the threshold moves and all steps are made again; null without a
//     threshold, or if it is not asked for
//     oneLevel {shift, narrower, wider, change, particles}: by one grey level, or by one bin of the histogram where
//       bins are wider; valley {left, right, ...}: by half the width of the histogram's valley about the level
//       (orlix::ValleyAt), null where there is none, and then noValley says why
//     narrower, wider {lower, upper, count, pixels, area, d50ByNumber, d50ByArea}: with a narrower and a wider phase.
//       Of a phase between two levels both ends move. An end that is no threshold stays
//     change {count, area, d50ByNumber, d50ByArea}: the greater one of both, as a fraction
//     particles {same, splits, merges, vanishes}: how many of the particles have this fate
//   particles [{...}]: in raster order, with the settings' columns; always number, x, y, left, top, right, bottom,
//     pixels, area, diameter, extent, atBorder and weight, and with a threshold trust. Members of "trust.oneLevel" and
//     "trust.valley" (null without such a move)
//     narrowerArea, widerArea: of the particles there that share more pixels with this one than with any other; null if
//       it merges
//     fate: the worse one of both moves. "vanishes": no particle there has a pixel of it. "merges": the one that has
//       most of it has most of another one as well. "splits": several particles there lie mostly in it. A part or a
//       neighbour of less than a tenth of its area does not count
// Warnings: specks, all-at-border.
struct ParticleImage {
    Measurement measurement;      // its phase is what the threshold found
    orlix::ComPtr<IBlobs> blobs;  // those of "particles", in this order
};
ParticleImage FindParticles(orlix::ComPtr<IImageVPAExPlus> image, const std::string& shownName,
                            const ParticleSettings& settings);

// The distributions of the diameters of particles with the given documents: {byNumber, byArea}.
Json DiameterDistributions(const std::vector<const Json*>& particles);

}  // namespace tool
