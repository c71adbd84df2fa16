// One typed image with its processing frame.
#pragma once

#include <orlix/orlix.h>
#include <orlix/com_ptr.hpp>

#include "binary/orlix_bitmap.hpp"
#include "fits/hemisphere.hpp"
#include "fits/surface_polynomial.hpp"
#include "geometry/region_rows.hpp"
#include "histogram/orlix_histogram.hpp"
#include "image/image_store.hpp"

namespace orlix {

// Everything that a client can set stays while the pixel type stays: region, luminance range, number of bins, table.
// Only the band to process is set anew by a creation. The operations are those of IImageProcessBase and IImageProcess,
// which document them, those of surfaces are IOrlixImageProcess's; failures are raised, and an image without pixels (or
// with a refused buffer) raises NoImage.
class TypedImage {
public:
    virtual ~TypedImage() = default;
    TypedImage(const TypedImage&) = delete;
    TypedImage& operator=(const TypedImage&) = delete;

    virtual ImageStore& store() = 0;

    // To be called after every creation: the band to process is 0 for an image of one band, all bands for several.
    virtual void ContentReplaced();

    LONG bandToProcess() const { return bandToProcess_; }
    void PutBandToProcess(LONG band);
    const ComPtr<IRegionOfInterest>& region() const { return region_; }
    // The new region is in its place when the old one is given back: that may call anything.
    void PutRegion(IRegionOfInterest* region) { region_ = ComPtr<IRegionOfInterest>(region); }

    virtual LONG numberOfBins() const = 0;
    virtual void PutNumberOfBins(LONG bins) = 0;
    virtual void GetLuminanceRange(double& lower, double& upper) const = 0;
    virtual void PutLuminanceRange(double lower, double upper) = 0;
    virtual HRESULT SnapLuminanceRange(double trimLower, double trimUpper, bool roundOut) = 0;

    virtual ComPtr<OrlixBitmap> Threshold(double lower, double upper, bool inside) = 0;
    virtual ComPtr<OrlixHistogram> Histogram() = 0;
    virtual SGrayMeasurements GrayMeasurements(LONG desired) = 0;

    virtual double GetTable(LONG entry) const = 0;
    virtual void PutTable(LONG entry, double value) = 0;
    virtual void EqualizeTable(LONG type) = 0;
    virtual void LookUp() = 0;
    virtual void Invert() = 0;
    virtual void ScalarEquals(double value) = 0;
    virtual void ScalarDivideEquals(double value) = 0;
    virtual void ScalarPlusEquals(double value) = 0;
    virtual void CastEquals(IImageVPA* source, LONG band) = 0;
    virtual void PlusEquals(IImageVPA* source, LONG band) = 0;

    virtual void Sobel(IImageVPA* source, LONG band) = 0;
    virtual void Laplacian(IImageVPA* source, LONG band) = 0;
    virtual void SharpenLow(IImageVPA* source, LONG band) = 0;
    virtual void SharpenMedium(IImageVPA* source, LONG band) = 0;
    virtual void Gaussian3x3(IImageVPA* source, LONG band) = 0;
    virtual void Gaussian5x5(IImageVPA* source, LONG band) = 0;
    virtual void ExtremumSharpening(LONG halfSize, IImageVPA* source, LONG band) = 0;
    virtual void Median3x3(IImageVPA* source, LONG band) = 0;

    struct FitTexts {
        const char* multiband;
        const char* notFinite;
    };
    // Degree 1, 2 or 3. S_FALSE, and the surface stays as it was, for a region without pixels.
    virtual HRESULT FitPolynomial(int degree, const FitTexts& texts, SurfacePolynomial& surface) = 0;
    virtual void CorrectPolynomial(const SurfacePolynomial& surface, const char* notFinite) = 0;

    // S_FALSE, and the surface stays as it was, where the pixels determine no hemisphere.
    virtual HRESULT FitHemisphere(bool angled, const FitTexts& texts, AveragedHemisphere& surface) = 0;
    virtual void CorrectHemisphere(const AveragedHemisphere& surface, const char* notFinite) = 0;

    struct RobustTexts {
        const char* probability;
        const char* multiband;
    };
    // S_FALSE, and the surface stays as it was, for too few pixels or none that a surface was found through.
    virtual HRESULT RobustFit(int degree, double probability, const RobustTexts& texts, SurfacePolynomial& surface) = 0;
    virtual HRESULT RobustFit(bool angled, double probability, const RobustTexts& texts,
                              AveragedHemisphere& surface) = 0;

protected:
    TypedImage() = default;

private:
    LONG bandToProcess_ = 0;
    ComPtr<IRegionOfInterest> region_;
};

}  // namespace orlix
