#include "orlix_image/orlix_image.hpp"

using namespace orlix;

STDMETHODIMP OrlixImage::get_BandToProcess(LONG* band) noexcept {
    return Guarded([&] {
        Require(band);
        *band = Typed()->bandToProcess();
    });
}

STDMETHODIMP OrlixImage::put_BandToProcess(LONG band) noexcept {
    return Guarded([&] { Typed()->PutBandToProcess(band); });
}

STDMETHODIMP OrlixImage::get_RegionOfInterest(IRegionOfInterest** region) noexcept {
    return Guarded([&] {
        Require(region);
        *region = nullptr;
        *region = ComPtr<IRegionOfInterest>(Typed()->region()).Detach();
    });
}

STDMETHODIMP OrlixImage::put_RegionOfInterest(IRegionOfInterest* region) noexcept {
    return Guarded([&] { Typed()->PutRegion(region); });
}

STDMETHODIMP OrlixImage::GetLuminanceRange(double* lower, double* upper) noexcept {
    return Guarded([&] {
        Require(lower), Require(upper);
        Typed()->GetLuminanceRange(*lower, *upper);
    });
}

STDMETHODIMP OrlixImage::get_NumberOfBins(LONG* bins) noexcept {
    return Guarded([&] {
        Require(bins);
        *bins = Typed()->numberOfBins();
    });
}

STDMETHODIMP OrlixImage::Threshold(double lower, double upper, LONG inside, IBitmap** bitmap) noexcept {
    return Guarded([&] {
        Require(bitmap);
        *bitmap = nullptr;
        *bitmap = Typed()->Threshold(lower, upper, inside != 0).Detach();
    });
}

STDMETHODIMP OrlixImage::get_Histogram(IHistogram** histogram) noexcept {
    return Guarded([&] {
        Require(histogram);
        *histogram = nullptr;
        *histogram = Typed()->Histogram().Detach();
    });
}

STDMETHODIMP OrlixImage::get_GrayMeasurements(GrayExtractMeasurementType desired, SGrayMeasurements* measure) noexcept {
    return Guarded([&] {
        Require(measure);
        SGrayMeasurements result = Typed()->GrayMeasurements(static_cast<LONG>(desired));
        result.m_lSize = measure->m_lSize;
        *measure = result;
    });
}

STDMETHODIMP OrlixImage::put_NumberOfBins(LONG bins) noexcept {
    return Guarded([&] {
        Typed()->PutNumberOfBins(bins);
        modified_ = true;
    });
}

STDMETHODIMP OrlixImage::PutLuminanceRange(double lower, double upper) noexcept {
    return Guarded([&] {
        Typed()->PutLuminanceRange(lower, upper);
        modified_ = true;
    });
}

STDMETHODIMP OrlixImage::SnapLuminanceRange(double trimLower, double trimUpper, LONG roundOut) noexcept {
    return Guarded([&] {
        const HRESULT result = Typed()->SnapLuminanceRange(trimLower, trimUpper, roundOut != 0);
        if (result == S_OK) modified_ = true;
        return result;
    });
}

STDMETHODIMP OrlixImage::get_Table(LONG entry, double* value) noexcept {
    return Guarded([&] {
        Require(value);
        *value = Typed()->GetTable(entry);
    });
}

STDMETHODIMP OrlixImage::put_Table(LONG entry, double value) noexcept {
    return Guarded([&] { Typed()->PutTable(entry, value); });
}

STDMETHODIMP OrlixImage::EqualizeTable(EqualizationType type) noexcept {
    return Guarded([&] { Typed()->EqualizeTable(static_cast<LONG>(type)); });
}

STDMETHODIMP OrlixImage::LUT() noexcept {
    return Guarded([&] { Typed()->LookUp(); });
}

STDMETHODIMP OrlixImage::Invert() noexcept {
    return Guarded([&] { Typed()->Invert(); });
}

STDMETHODIMP OrlixImage::ScalarEquals(double value) noexcept {
    return Guarded([&] { Typed()->ScalarEquals(value); });
}

STDMETHODIMP OrlixImage::ScalarDivideEquals(double value) noexcept {
    return Guarded([&] { Typed()->ScalarDivideEquals(value); });
}

STDMETHODIMP OrlixImage::ScalarPlusEquals(double value) noexcept {
    return Guarded([&] { Typed()->ScalarPlusEquals(value); });
}

STDMETHODIMP OrlixImage::CastEquals(IImageVPA* source, LONG band) noexcept {
    return Guarded([&] {
        Require(source);
        Typed()->CastEquals(source, band);
    });
}

STDMETHODIMP OrlixImage::PlusEquals(IImageVPA* source, LONG band) noexcept {
    return Guarded([&] {
        Require(source);
        Typed()->PlusEquals(source, band);
    });
}
