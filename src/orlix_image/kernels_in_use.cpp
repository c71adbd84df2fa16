#include "orlix_image/kernels_in_use.hpp"

#include <cstddef>
#include <iterator>
#include <vector>

#include "binary/logic_kernels.hpp"
#include "binary/morphology_kernels.hpp"
#include "binary/plane_kernels.hpp"
#include "display/display_level_kernels.hpp"
#include "display/raster_kernels.hpp"
#include "files/checksums.hpp"
#include "files/png_filter.hpp"
#include "filters/extremum_sharpening_kernels.hpp"
#include "filters/filter_table.hpp"
#include "fits/correction_kernels.hpp"
#include "fits/hemisphere_kernels.hpp"
#include "fits/hemisphere_sums_kernels.hpp"
#include "fits/moments_kernels.hpp"
#include "fits/quick_sums_kernels.hpp"
#include "fits/trimming_kernels.hpp"
#include "frames/mosaic_kernels.hpp"
#include "frames/unpacking_kernels.hpp"
#include "geometry/outline_kernels.hpp"
#include "measure/counting_kernels.hpp"
#include "measure/extremes_kernels.hpp"
#include "measure/measuring_kernels.hpp"
#include "points/casting_kernels.hpp"
#include "points/point_kernels.hpp"
#include "points/threshold_kernels.hpp"

namespace orlix {

namespace {

// The filter kernels that have a choice of variants.
void AddFilters(std::vector<KernelInUse>& kernels) {
    for (size_t i = 0; i < std::size(kFilters<uint8_t>); ++i) {
        const auto add = [&](const auto& row, const char* pixels) {
            if (row.kernels.size() == 1) return;
            kernels.push_back({std::string(row.name) + ", " + pixels, ChosenVariant(row.kernels).name});
        };
        add(kFilters<uint8_t>[i], "8 bits");
        add(kFilters<uint16_t>[i], "16 bits");
        add(kFilters<uint32_t>[i], "32 bits");
        add(kFilters<float>[i], "float");
    }
}

std::vector<KernelInUse> Collect() {
    std::vector<KernelInUse> kernels = {
        {"invert and add, 8 bits", ChosenVariant(kRamp<uint8_t>).name},
        {"invert and add, 16 bits", ChosenVariant(kRamp<uint16_t>).name},
        {"invert and add, 32 bits", ChosenVariant(kRamp<uint32_t>).name},
        {"invert and add, float", ChosenVariant(kSum<float>).name},
        {"divide, 16 bits", ChosenVariant(kQuotient<uint16_t>).name},
        {"divide, 32 bits", ChosenVariant(kQuotient<uint32_t>).name},
        {"divide, float", ChosenVariant(kQuotient<float>).name},
        {"look-up table, 8 bits", ChosenVariant(kLookUp).name},
        {"threshold, 8 bits", ChosenVariant(kThreshold<uint8_t>).name},
        {"threshold, 16 bits", ChosenVariant(kThreshold<uint16_t>).name},
        {"threshold, 32 bits", ChosenVariant(kThreshold<uint32_t>).name},
        {"threshold, float", ChosenVariant(kThreshold<float>).name},
        {"histogram, 32 bits", ChosenVariant(kBins<uint32_t>).name},
        {"histogram, float", ChosenVariant(kBins<float>).name},
        {"gray measurements, 8 bits", ChosenVariant(kSums<uint8_t>).name},
        {"gray measurements, 16 bits", ChosenVariant(kSums<uint16_t>).name},
        {"gray measurements, 32 bits", ChosenVariant(kSums<uint32_t>).name},
        {"gray measurements, float", ChosenVariant(kSums<float>).name},
        {"extremes, 8 bits", ChosenVariant(kExtremes<uint8_t>).name},
        {"extremes, 16 bits", ChosenVariant(kExtremes<uint16_t>).name},
        {"extremes, 32 bits", ChosenVariant(kExtremes<uint32_t>).name},
        {"extremes, float", ChosenVariant(kExtremes<float>).name},
        {"cast, 16 bits to 8", ChosenVariant(kCast<uint8_t, uint16_t>).name},
        {"cast, float to 8 bits", ChosenVariant(kCast<uint8_t, float>).name},
        {"cast, 8 bits to 16", ChosenVariant(kCast<uint16_t, uint8_t>).name},
        {"cast, 8 bits to float", ChosenVariant(kCast<float, uint8_t>).name},
        {"add image, 8 bits", ChosenVariant(kPlus<uint8_t, uint8_t>).name},
        {"add image, 16 bits", ChosenVariant(kPlus<uint16_t, uint16_t>).name},
        {"add image, float", ChosenVariant(kPlus<float, float>).name},
        {"bitmap logic", ChosenVariant(kCombine<BitLogic::And>).name},
        {"bitmap count", ChosenVariant(kCountBits).name},
        {"bitmap translation", ChosenVariant(kMoveRows).name},
        {"binary 3x3 erosion and dilation", ChosenVariant(kSquare<false, true>).name},
        {"binary erosion and dilation, rectangles", ChosenVariant(kRectangle<false>).name},
        {"bit planes, union", ChosenVariant(kOrWords).name},
        {"bit planes, moved union", ChosenVariant(kOrMoved).name},
        {"neighbourhood tables", ChosenVariant(kChooseWords).name},
    };
    AddFilters(kernels);
    kernels.insert(kernels.end(),
                   {
                       {"extremum sharpening, 8 bits", ChosenVariant(kExtremum<uint8_t>).name},
                       {"extremum sharpening, 16 bits", ChosenVariant(kExtremum<uint16_t>).name},
                       {"extremum sharpening, 32 bits", ChosenVariant(kExtremum<uint32_t>).name},
                       {"extremum sharpening, float", ChosenVariant(kExtremum<float>).name},
                       {"extremum sharpening of 3x3, 8 bits", ChosenVariant(kExtremumSharpening3x3<uint8_t>).name},
                       {"extremum sharpening of 3x3, 16 bits", ChosenVariant(kExtremumSharpening3x3<uint16_t>).name},
                       {"extremum sharpening of 3x3, 32 bits", ChosenVariant(kExtremumSharpening3x3<uint32_t>).name},
                       {"extremum sharpening of 3x3, float", ChosenVariant(kExtremumSharpening3x3<float>).name},
                       {"plane, 8 bits", ChosenVariant(kMoments<uint8_t, 1>).name},
                       {"plane, 16 bits", ChosenVariant(kMoments<uint16_t, 1>).name},
                       {"plane, 32 bits", ChosenVariant(kMoments<uint32_t, 1>).name},
                       {"plane, float", ChosenVariant(kFloatMoments<1>).name},
                       {"surfaces, 8 bits", ChosenVariant(kMoments<uint8_t, 3>).name},
                       {"surfaces, 16 bits", ChosenVariant(kMoments<uint16_t, 3>).name},
                       {"surfaces, 32 bits", ChosenVariant(kMoments<uint32_t, 3>).name},
                       {"surfaces, float", ChosenVariant(kFloatMoments<3>).name},
                       {"surface values", ChosenVariant(kShifts).name},
                       {"hemisphere values", ChosenVariant(kHemisphereRow).name},
                       {"hemisphere sums", ChosenVariant(kAlgebraicSums).name},
                       {"hemisphere residuals", ChosenVariant(kRestSums).name},
                       {"tilted hemisphere sums", ChosenVariant(kCapSums).name},
                       {"robust score, quick, 8 bits", ChosenVariant(kQuickSums<uint8_t>).name},
                       {"robust score, quick, 16 bits", ChosenVariant(kQuickSums<uint16_t>).name},
                       {"robust score, quick, float", ChosenVariant(kQuickSums<float>).name},
                       {"robust score, 8 bits", ChosenVariant(kClippedSquares<uint8_t>).name},
                       {"robust score, selection, 8 bits", ChosenVariant(kDivideSquares<uint8_t>).name},
                       {"robust score, 16 bits", ChosenVariant(kClippedSquares<uint16_t>).name},
                       {"robust score, selection, 16 bits", ChosenVariant(kDivideSquares<uint16_t>).name},
                       {"robust score, 32 bits", ChosenVariant(kClippedSquares<uint32_t>).name},
                       {"robust score, selection, 32 bits", ChosenVariant(kDivideSquares<uint32_t>).name},
                       {"robust score, float", ChosenVariant(kClippedSquares<float>).name},
                       {"robust score, selection, float", ChosenVariant(kDivideSquares<float>).name},
                       {"correct, 8 bits", ChosenVariant(kCorrect<uint8_t>).name},
                       {"correct with a polynomial, 8 bits", ChosenVariant(kCorrectRow).name},
                       {"correct, 16 bits", ChosenVariant(kCorrect<uint16_t>).name},
                       {"correct, 32 bits", ChosenVariant(kCorrect<uint32_t>).name},
                       {"correct, float", ChosenVariant(kCorrect<float>).name},
                       {"outlines", ChosenVariant(kOutlineKernels).name},
                       {"display levels, 16 bits", ChosenVariant(kLevels<uint16_t>).name},
                       {"display levels, 32 bits", ChosenVariant(kLevels<uint32_t>).name},
                       {"display levels, float", ChosenVariant(kLevels<float>).name},
                       {"checksums, CRC-32", ChosenVariant(kCrc32).name},
                       {"checksums, Adler-32", ChosenVariant(kAdler32).name},
                       {"PNG filters", ChosenVariant(png::kApplyFilter).name},
                       {"PNG filters, undone", ChosenVariant(png::kUnfilter).name},
                       {"picture, greys", ChosenVariant(kExpandGrey).name},
                       {"picture, colour table", ChosenVariant(kExpandLevels).name},
                       {"picture, colours of planes", ChosenVariant(kExpandPlanes).name},
                       {"picture, greys of some columns", ChosenVariant(kPickGrey).name},
                       {"picture, colour table of some columns", ChosenVariant(kPickLevels).name},
                       {"picture, pixels of some columns", ChosenVariant(kPickPixels).name},
                       {"picture, rows", ChosenVariant(kWeighRows).name},
                       {"picture, interpolation", ChosenVariant(kInterpolate).name},
                       {"picture, averages", ChosenVariant(kAverage).name},
                       {"frames, words of 10 bits", ChosenVariant(kUnpack<Packing::Words10>).name},
                       {"frames, words of 12 bits", ChosenVariant(kUnpack<Packing::Words12>).name},
                       {"frames, words of 14 bits", ChosenVariant(kUnpack<Packing::Words14>).name},
                       {"frames, words of 16 bits", ChosenVariant(kUnpack<Packing::Words16>).name},
                       {"frames, 10p", ChosenVariant(kUnpack<Packing::Lsb10>).name},
                       {"frames, 12p", ChosenVariant(kUnpack<Packing::Lsb12>).name},
                       {"frames, 10Packed", ChosenVariant(kUnpack<Packing::Pairs10>).name},
                       {"frames, 12Packed", ChosenVariant(kUnpack<Packing::Pairs12>).name},
                       {"frames, colours", ChosenVariant(kSplitColours).name},
                       {"frames, mosaics of 8 bits", ChosenVariant(kMosaic<uint8_t>).name},
                       {"frames, mosaics of 16 bits", ChosenVariant(kMosaic<uint16_t>).name},
                   });
    return kernels;
}

}  // namespace

std::span<const KernelInUse> KernelsInUse() {
    static const std::vector<KernelInUse> kernels = Collect();
    return kernels;
}

}  // namespace orlix
